// SPDX-License-Identifier: GPL-3.0-or-later
#include "EntryInput/EntryTimes.h"

#include <cmath>

namespace orvane {

namespace {

/// The end at this time of day: on the day of the start, or over midnight from it.
Instant endAfter(Instant start, ClockTime stop, const UserTime &time)
{
    const DayKey day = time.dayKey(start);
    return time.date(stop < time.timeOfDay(start) ? day.adding(1) : day, stop);
}

Instant startBefore(Instant stop, ClockTime start, const UserTime &time)
{
    const DayKey day = time.dayKey(stop);
    return time.date(time.timeOfDay(stop) < start ? day.adding(-1) : day, start);
}

EntryTimes placed(TypedMoment start, TypedMoment stop, const UserTime &time, DayKey today)
{
    if (start.clock && stop.clock) {
        const DayKey first = *stop.clock < *start.clock ? today.adding(-1) : today;
        return {time.date(first, *start.clock), time.date(today, *stop.clock)};
    }
    if (stop.clock)
        return {start.instant, endAfter(start.instant, *stop.clock, time)};
    if (start.clock)
        return {startBefore(stop.instant, *start.clock, time), stop.instant};
    return {start.instant, stop.instant};
}

Result<EntryTimes, EntryTimesProblem> checked(EntryTimes times)
{
    if (times.stop && *times.stop <= times.start)
        return failure(EntryTimesProblem::endBeforeStart);
    return times;
}

std::chrono::milliseconds length(EntrySentence::Duration duration)
{
    return std::chrono::milliseconds{std::llround(duration.seconds * 1000)};
}

} // namespace

Result<EntryTimes, EntryTimesProblem> EntryTimes::made(TypedMoment start, TypedMoment stop,
                                                       const UserTime &time, Instant now)
{
    return checked(placed(start, stop, time, time.dayKey(now)));
}

Instant EntryTimes::timerStart(TypedMoment start, const UserTime &time, Instant now)
{
    return start.clock ? time.date(time.dayKey(now), *start.clock) : start.instant;
}

Instant EntryTimes::timerStop(TypedMoment stop, Instant runningSince, const UserTime &time, Instant now)
{
    if (!stop.clock)
        return stop.instant;
    const DayKey today = time.dayKey(now);
    const Instant at = time.date(today, *stop.clock);
    const Instant before = time.date(today.adding(-1), *stop.clock);
    return at > now && before >= runningSince ? before : at;
}

Result<EntryTimes, EntryTimesProblem> EntryTimes::changed(std::optional<TypedMoment> newStart,
                                                          std::optional<TypedMoment> newStop,
                                                          const UserTime &time) const
{
    if (!newStart && !newStop)
        return *this;
    EntryTimes times = *this;
    if (newStart)
        times.start = newStart->clock ? time.date(time.dayKey(start), *newStart->clock) : newStart->instant;
    if (newStop)
        times.stop = newStop->clock ? endAfter(times.start, *newStop->clock, time) : newStop->instant;
    return checked(times);
}

EntryTimes EntryTimes::changed(const EntrySentence::Time &said,
                               const std::optional<EntrySentence::DayRef> &day, const UserTime &time,
                               Instant now) const
{
    if (const auto *duration = std::get_if<EntrySentence::Duration>(&said))
        return stop ? EntryTimes{start, start + length(*duration)}
                    : EntryTimes{now - length(*duration), std::nullopt};
    std::optional<EntrySentence::DayRef> onDay;
    if (!std::holds_alternative<EntrySentence::Ago>(said))
        onDay = day ? *day : EntrySentence::DayRef(EntrySentence::Date{time.dayKey(start)});
    const auto span = EntrySentence::resolve(said, onDay, now, time);
    return span ? EntryTimes{span->start, span->stop ? span->stop : stop} : *this;
}

} // namespace orvane
