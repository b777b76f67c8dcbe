// SPDX-License-Identifier: GPL-3.0-or-later
#include "Calendar/CalendarDrag.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

constexpr double snapStep = 15;
constexpr double minimumBlock = 15;
constexpr double clickLength = 60;
constexpr double dragSlop = 4; // points
constexpr double latestMoveStart = 1425;
constexpr double dayLength = 1440;

/// Anything that is no number is the start of the day.
double bounded(double minute, double latest = dayLength)
{
    return minute > 0 ? std::min(minute, latest) : 0;
}

double snapped(double minute, double latest = dayLength)
{
    return bounded(std::round(minute / snapStep) * snapStep, latest);
}

std::chrono::milliseconds length(double minutes)
{
    return std::chrono::round<std::chrono::milliseconds>(
        std::chrono::duration<double, std::chrono::minutes::period>(minutes));
}

CalendarDrag::Block blockOf(const CalendarDrag::Create &create)
{
    const auto [from, to] = std::minmax(create.anchor, create.current);
    if (to - from < minimumBlock)
        return {create.day, create.anchor, bounded(create.anchor + clickLength)};
    return {create.day, from, to};
}

} // namespace

CalendarDrag::CalendarDrag(UserTime time, std::function<bool(const TimeEntryResponse &)> isLocked,
                           std::function<bool(DayKey)> isDayLocked)
    : m_time(std::move(time)), m_isLocked(std::move(isLocked)), m_isDayLocked(std::move(isDayLocked))
{
}

bool CalendarDrag::press(const Target &target)
{
    m_state.reset();
    if (const auto *onEntry = std::get_if<OnEntry>(&target)) {
        m_state = stateFor(*onEntry);
    } else if (const auto &empty = std::get<OnEmpty>(target); takesEntries(empty.day)) {
        const double slot = snapped(empty.minute - snapStep / 2);
        m_state = Create{.day = empty.day, .anchor = slot, .current = slot};
    }
    return m_state.has_value();
}

void CalendarDrag::drag(DayKey day, double minute, double travelled)
{
    if (m_state)
        std::visit([&](auto &state) { follow(state, day, minute, travelled); }, *m_state);
}

CalendarDrag::Outcome CalendarDrag::release()
{
    const auto state = std::exchange(m_state, std::nullopt);
    return state ? std::visit([&](const auto &ended) { return outcome(ended); }, *state) : Outcome();
}

std::optional<DaySegment> CalendarDrag::preview() const
{
    if (!m_state)
        return std::nullopt;
    if (const auto *move = std::get_if<Move>(&*m_state); move && move->isMoved)
        return DaySegment{.entry = move->entry,
                          .day = move->day,
                          .startMinute = move->start,
                          .endMinute = bounded(move->start + move->duration)};
    if (const auto *resize = std::get_if<Resize>(&*m_state); resize && resize->isMoved)
        return DaySegment{.entry = resize->entry,
                          .day = resize->day,
                          .startMinute = resize->start,
                          .endMinute = resize->end};
    return std::nullopt;
}

std::optional<CalendarDrag::Block> CalendarDrag::newBlock() const
{
    const auto *create = m_state ? std::get_if<Create>(&*m_state) : nullptr;
    if (!create)
        return std::nullopt;
    const Block block = blockOf(*create);
    return block.endMinute > block.startMinute ? std::optional(block) : std::nullopt;
}

Instant CalendarDrag::instantAt(DayKey day, double minute, const UserTime &time)
{
    if (minute >= dayLength)
        return time.startOfDay(day.adding(1));
    const int whole = static_cast<int>(bounded(minute));
    return time.date(day, whole / 60, whole % 60);
}

bool CalendarDrag::takesEntries(DayKey day) const
{
    const InstantInterval interval = m_time.dayInterval(day);
    return interval.from < interval.to && !m_isDayLocked(day);
}

CalendarDrag::State CalendarDrag::stateFor(const OnEntry &target) const
{
    const DaySegment &segment = target.segment;
    const TimeEntryResponse &entry = segment.entry;
    if (!entry.stop || m_isLocked(entry) || (!target.edge && segment.continuesBefore))
        return Open{entry};
    if (target.edge)
        return Resize{.edge = *target.edge,
                      .entry = entry,
                      .day = segment.day,
                      .start = segment.startMinute,
                      .end = segment.endMinute};
    return Move{.entry = entry,
                .day = segment.day,
                .grabOffset = target.minute - segment.startMinute,
                .duration = secondsBetween(entry.start, *entry.stop) / 60,
                .start = segment.startMinute};
}

void CalendarDrag::follow(Create &create, DayKey /*day*/, double minute, double /*travelled*/) const
{
    create.current = snapped(minute);
}

void CalendarDrag::follow(Open & /*open*/, DayKey /*day*/, double /*minute*/, double /*travelled*/) const {}

void CalendarDrag::follow(Move &move, DayKey day, double minute, double travelled) const
{
    move.start = snapped(minute - move.grabOffset, latestMoveStart);
    if (takesEntries(day))
        move.day = day;
    move.isMoved = move.isMoved || travelled > dragSlop;
}

void CalendarDrag::follow(Resize &resize, DayKey /*day*/, double minute, double /*travelled*/) const
{
    if (resize.edge == Edge::end)
        resize.end = bounded(std::max(snapped(minute), resize.start + minimumBlock));
    else
        resize.start = bounded(std::min(snapped(minute), resize.end - minimumBlock));
    resize.isMoved = true;
}

CalendarDrag::Outcome CalendarDrag::outcome(const Create &create) const
{
    const Block block = blockOf(create);
    if (block.endMinute <= block.startMinute)
        return {};
    const Instant start = instantAt(block.day, block.startMinute, m_time);
    Instant stop = instantAt(block.day, block.endMinute, m_time);
    // A start that the clock skips is moved on, perhaps past the end.
    if (stop <= start)
        stop = start + length(block.endMinute - block.startMinute);
    return Save{.entry = {}, .start = start, .stop = stop};
}

CalendarDrag::Outcome CalendarDrag::outcome(const Open &open) const
{
    return OpenEntry{open.entry};
}

CalendarDrag::Outcome CalendarDrag::outcome(const Move &move) const
{
    if (!move.isMoved)
        return OpenEntry{move.entry};
    const Instant start = instantAt(move.day, move.start, m_time);
    return Save{.entry = move.entry, .start = start, .stop = start + (*move.entry.stop - move.entry.start)};
}

CalendarDrag::Outcome CalendarDrag::outcome(const Resize &resize) const
{
    if (!resize.isMoved)
        return OpenEntry{resize.entry};
    Save save{.entry = resize.entry, .start = resize.entry.start, .stop = *resize.entry.stop};
    // A change of the clock can put the dragged edge on the wrong side of the other; then the length that was
    // drawn counts.
    const auto drawn = length(resize.end - resize.start);
    if (resize.edge == Edge::end) {
        save.stop = instantAt(resize.day, resize.end, m_time);
        if (save.stop <= save.start)
            save.stop = save.start + drawn;
    } else {
        save.start = instantAt(resize.day, resize.start, m_time);
        if (save.start >= save.stop)
            save.start = save.stop - drawn;
    }
    return save;
}

} // namespace orvane
