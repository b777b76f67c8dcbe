// SPDX-License-Identifier: GPL-3.0-or-later
#include "Calendar/CalendarLayout.h"

#include "Support/Require.h"

#include <algorithm>
#include <functional>
#include <queue>
#include <ranges>
#include <tuple>
#include <utility>

namespace orvane {

namespace {

constexpr double dayMinutes = 1440;

/// What the clock shows at an instant within a day. For a minute or an hour after midnight it can show the
/// day before once more (St. John's turned its clock back at 0:01).
double minuteOn(DayKey day, Instant instant, const UserTime &time)
{
    return time.dayKey(instant) < day ? 0 : time.minuteOfDay(instant);
}

/// A segment without its entry, which is large and is copied once, when all is known.
struct Block {
    double start = 0;
    double end = 0;
    std::size_t index = 0; ///< of its entry, or of the segment that it stands for
    bool continuesBefore = false;
    bool continuesAfter = false;
    int lane = 0;
    int lanes = 1;
};

Block blockOn(DayKey day, InstantInterval interval, Instant start, Instant end, const UserTime &time)
{
    Block block{.continuesBefore = start<interval.from, .continuesAfter = end> interval.to};
    if (!block.continuesBefore)
        block.start = minuteOn(day, start, time);
    block.end = end >= interval.to ? dayMinutes : minuteOn(day, end, time);
    if (block.end <= block.start)
        block.end =
            std::min(block.start + secondsBetween(std::max(start, interval.from), end) / 60, dayMinutes);
    return block;
}

/// The lanes of one group of overlapping segments. Segments come by their start, so a lane once free stays
/// free until it is taken, and finding the leftmost free one takes a logarithm.
class LaneBook {
public:
    int take(double start, double end)
    {
        while (!m_taken.empty() && m_taken.top().first <= start) {
            m_free.push(m_taken.top().second);
            m_taken.pop();
        }
        int lane = m_count;
        if (m_free.empty()) {
            ++m_count;
        } else {
            lane = m_free.top();
            m_free.pop();
        }
        m_taken.emplace(end, lane);
        return lane;
    }
    int count() const { return m_count; }

private:
    template <class T>
    using Smallest = std::priority_queue<T, std::vector<T>, std::greater<>>;

    Smallest<std::pair<double, int>> m_taken; ///< by the minute at which it becomes free
    Smallest<int> m_free;
    int m_count = 0;
};

/// Sorts the blocks of a day and gives them their lanes.
void layOut(std::vector<Block> &blocks)
{
    std::ranges::sort(blocks, {},
                      [](const Block &block) { return std::tuple(block.start, block.end, block.index); });
    auto group = blocks.begin();
    double groupEnd = -1;
    LaneBook lanes;
    const auto close = [&](auto end) {
        std::for_each(group, end, [&](Block &block) { block.lanes = lanes.count(); });
        group = end;
        lanes = {};
    };
    for (auto block = blocks.begin(); block != blocks.end(); ++block) {
        if (block->start >= groupEnd)
            close(block);
        // A block without length would lie in the middle of another one and could not be pressed.
        const double end = std::max(block->end, block->start + 1);
        block->lane = lanes.take(block->start, end);
        groupEnd = std::max(groupEnd, end);
    }
    close(blocks.end());
}

/// The blocks of each of the days that begin at `starts`; the last start is the end of the last day.
std::vector<std::vector<Block>> cut(const std::vector<TimeEntryResponse> &entries, DayKey first,
                                    const std::vector<Instant> &starts, const UserTime &time, Instant now)
{
    std::vector<std::vector<Block>> days(starts.size() - 1);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Instant start = entries[i].start;
        const Instant end = std::max(start, entries[i].stop.value_or(now));
        // The first day that is not over at the entry's start.
        const auto next = std::ranges::upper_bound(starts | std::views::drop(1), start);
        for (auto day = static_cast<std::size_t>(next - starts.begin() - 1); day < days.size(); ++day) {
            const InstantInterval interval{starts[day], starts[day + 1]};
            if (end <= interval.from && start < interval.from)
                break;
            if (interval.from == interval.to)
                continue;
            days[day].push_back(
                blockOn(first.adding(static_cast<std::int64_t>(day)), interval, start, end, time));
            days[day].back().index = i;
            if (end <= interval.to)
                break;
        }
    }
    return days;
}

} // namespace

std::vector<CalendarDay> CalendarLayout::days(const std::vector<TimeEntryResponse> &entries, DayKey first,
                                              DayKey last, const UserTime &time, Instant now)
{
    ORVANE_REQUIRE(first <= last, "the days are in the wrong order");
    std::vector<CalendarDay> days;
    std::vector<Instant> starts{time.startOfDay(first)};
    for (DayKey day = first; day <= last; day = day.adding(1)) {
        days.push_back({.day = day, .segments = {}});
        starts.push_back(time.startOfDay(day.adding(1)));
    }
    auto blocks = cut(entries, first, starts, time, now);
    for (std::size_t i = 0; i < days.size(); ++i) {
        layOut(blocks[i]);
        days[i].segments.reserve(blocks[i].size());
        for (const Block &block : blocks[i])
            days[i].segments.push_back({.entry = entries[block.index],
                                        .day = days[i].day,
                                        .startMinute = block.start,
                                        .endMinute = block.end,
                                        .continuesBefore = block.continuesBefore,
                                        .continuesAfter = block.continuesAfter,
                                        .lane = block.lane,
                                        .lanes = block.lanes});
    }
    return days;
}

void CalendarLayout::arrange(std::vector<DaySegment> &segments)
{
    std::vector<Block> blocks;
    blocks.reserve(segments.size());
    for (const DaySegment &segment : segments)
        blocks.push_back({.start = segment.startMinute, .end = segment.endMinute, .index = blocks.size()});
    layOut(blocks);
    std::vector<DaySegment> arranged;
    arranged.reserve(segments.size());
    for (const Block &block : blocks) {
        DaySegment &segment = arranged.emplace_back(std::move(segments[block.index]));
        segment.lane = block.lane;
        segment.lanes = block.lanes;
    }
    segments = std::move(arranged);
}

} // namespace orvane
