// SPDX-License-Identifier: GPL-3.0-or-later
#include "Calendar/CalendarLayout.h"

#include "Support/Require.h"

#include <algorithm>
#include <functional>
#include <queue>
#include <ranges>
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

DaySegment segmentOn(DayKey day, InstantInterval interval, const TimeEntryResponse &entry, Instant end,
                     const UserTime &time)
{
    DaySegment segment{.entry = entry, .day = day};
    segment.continuesBefore = entry.start < interval.from;
    segment.continuesAfter = end > interval.to;
    if (!segment.continuesBefore)
        segment.startMinute = minuteOn(day, entry.start, time);
    segment.endMinute = end >= interval.to ? dayMinutes : minuteOn(day, end, time);
    if (segment.endMinute <= segment.startMinute) {
        const double length = secondsBetween(std::max(entry.start, interval.from), end) / 60;
        segment.endMinute = std::min(segment.startMinute + length, dayMinutes);
    }
    return segment;
}

void sort(std::vector<DaySegment> &segments)
{
    struct Key {
        double start;
        double end;
        std::size_t index;
        auto operator<=>(const Key &) const = default;
    };
    std::vector<Key> keys;
    for (const DaySegment &segment : segments)
        keys.push_back({segment.startMinute, segment.endMinute, keys.size()});
    std::ranges::sort(keys);
    std::vector<DaySegment> sorted;
    sorted.reserve(segments.size());
    for (const Key &key : keys)
        sorted.push_back(std::move(segments[key.index]));
    segments = std::move(sorted);
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
    for (const TimeEntryResponse &entry : entries) {
        const Instant end = std::max(entry.start, entry.stop.value_or(now));
        // The first day that is not over at the entry's start.
        const auto next = std::ranges::upper_bound(starts | std::views::drop(1), entry.start);
        for (auto index = static_cast<std::size_t>(next - starts.begin() - 1); index < days.size(); ++index) {
            const InstantInterval interval{starts[index], starts[index + 1]};
            if (end <= interval.from && entry.start < interval.from)
                break;
            if (interval.from == interval.to)
                continue;
            CalendarDay &column = days[index];
            column.segments.push_back(segmentOn(column.day, interval, entry, end, time));
            if (end <= interval.to)
                break;
        }
    }
    for (CalendarDay &column : days)
        arrange(column.segments);
    return days;
}

void CalendarLayout::arrange(std::vector<DaySegment> &segments)
{
    sort(segments);
    auto group = segments.begin();
    double groupEnd = -1;
    LaneBook lanes;
    const auto close = [&](auto end) {
        std::for_each(group, end, [&](DaySegment &segment) { segment.lanes = lanes.count(); });
        group = end;
        lanes = {};
    };
    for (auto segment = segments.begin(); segment != segments.end(); ++segment) {
        if (segment->startMinute >= groupEnd)
            close(segment);
        // A block without length would lie in the middle of another one and could not be pressed.
        const double end = std::max(segment->endMinute, segment->startMinute + 1);
        segment->lane = lanes.take(segment->startMinute, end);
        groupEnd = std::max(groupEnd, end);
    }
    close(segments.end());
}

} // namespace orvane
