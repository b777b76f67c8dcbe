// SPDX-License-Identifier: GPL-3.0-or-later
#include "EntryInput/EntryTimes.h"

#include <cmath>

namespace orvane {

namespace {

using Problem = EntryTimesProblem;

/// The end at this time of day: on the day of the start, or over midnight from it.
Result<Instant, Problem> endAfter(Instant start, ClockTime stop, const UserTime &time)
{
    const DayKey day = time.dayKey(start);
    const ClockTime from = time.timeOfDay(start);
    if (stop < from && !EntrySentence::mayBeNight(from, stop))
        return failure(Problem::tooLong);
    return time.date(stop < from ? day.adding(1) : day, stop);
}

Result<Instant, Problem> startBefore(Instant stop, ClockTime start, const UserTime &time)
{
    const DayKey day = time.dayKey(stop);
    const ClockTime to = time.timeOfDay(stop);
    if (to < start && !EntrySentence::mayBeNight(start, to))
        return failure(Problem::tooLong);
    return time.date(to < start ? day.adding(-1) : day, start);
}

EntrySentence::TypedClock typed(ClockTime clock)
{
    return {.hours = clock.hour, .minutes = clock.minute};
}

Result<EntryTimes, Problem> byClocks(ClockTime start, ClockTime stop, const UserTime &time, Instant now)
{
    const auto span = EntrySentence::resolve(EntrySentence::Range{typed(start), typed(stop)}, {}, now, time);
    if (span)
        return EntryTimes{span->start, span->stop};
    return failure(stop < start && !EntrySentence::mayBeNight(start, stop) ? Problem::tooLong
                                                                           : Problem::endBeforeStart);
}

Result<EntryTimes, Problem> placed(TypedMoment start, TypedMoment stop, const UserTime &time, Instant now)
{
    if (start.clock && stop.clock)
        return byClocks(*start.clock, *stop.clock, time, now);
    if (stop.clock)
        return endAfter(start.instant, *stop.clock, time).map([&](Instant end) {
            return EntryTimes{start.instant, end};
        });
    if (start.clock)
        return startBefore(stop.instant, *start.clock, time).map([&](Instant begin) {
            return EntryTimes{begin, stop.instant};
        });
    return EntryTimes{start.instant, stop.instant};
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
    return placed(start, stop, time, now).and_then(checked);
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
                                                          const UserTime &time, Instant now) const
{
    if (!newStart && !newStop)
        return *this;
    const bool countsFromNow = (newStart && newStart->isFromNow) || (newStop && newStop->isFromNow);
    if (countsFromNow && stop && time.dayKey(*stop) != time.dayKey(now))
        return failure(Problem::countedFromNow);
    EntryTimes times = *this;
    if (newStart)
        times.start = newStart->clock ? time.date(time.dayKey(start), *newStart->clock) : newStart->instant;
    if (!newStop)
        return checked(times);
    const auto end = newStop->clock ? endAfter(times.start, *newStop->clock, time)
                                    : Result<Instant, Problem>(newStop->instant);
    if (!end)
        return failure(end.error());
    times.stop = *end;
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
