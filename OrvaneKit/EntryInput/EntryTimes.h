// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/EntrySentence.h"
#include "Support/Result.h"
#include "Time/TypedMoment.h"
#include "Time/UserTime.h"

#include <optional>

namespace orvane {

/// Why what was said makes no times of an entry.
enum class EntryTimesProblem {
    endBeforeStart,  ///< or in the same instant
    endWithoutStart, ///< of a new entry
    tooLong,         ///< by times of day more than a night: rather one of them was mistyped
    countedFromNow,  ///< of an entry that ended on another day than today
};

/// When an entry lies, and how what people say of it becomes instants. Pure: the zone and what time it is now
/// are given. A value; any thread.
///
/// A time of day that the zone skips or has twice is taken as UserTime takes it, so a day of 23 or 25 hours
/// needs no rule of its own. An end by the clock before its start is the next day's, for at most 16 hours, as
/// in a sentence.
struct EntryTimes {
    Instant start;
    std::optional<Instant> stop; ///< none: it runs

    bool operator==(const EntryTimes &) const = default;

    /// The times of a finished entry that is being made. Bare times of day are those of a range in a
    /// sentence: today's, or the night's that is nearest to now. Next to a full date one is on the day of the
    /// other time, or over midnight from it.
    static Result<EntryTimes, EntryTimesProblem> made(TypedMoment start, TypedMoment stop,
                                                      const UserTime &time, Instant now);

    /// When a timer starts: a bare time of day is today's.
    static Instant timerStart(TypedMoment start, const UserTime &time, Instant now);

    /// When a timer that runs since then ends: a bare time of day is today's, or yesterday's when today's is
    /// still to come and the timer was already running then.
    static Instant timerStop(TypedMoment stop, Instant runningSince, const UserTime &time, Instant now);

    /// These times with others named. A bare time of day is on the entry's own day, and an end before its
    /// start on the next. What is not named stays, and is not looked at when nothing is named. What counts
    /// from now ("-15") says nothing about an entry that ended on another day.
    Result<EntryTimes, EntryTimesProblem> changed(std::optional<TypedMoment> start,
                                                  std::optional<TypedMoment> stop, const UserTime &time,
                                                  Instant now) const;

    /// These times changed by the time phrase of a sentence. A time of day is on the entry's own day unless
    /// one is named; a duration keeps the entry's start, or of a running one its now. A phrase that lies
    /// nowhere changes nothing. Whether the end lies after the start is left to whoever writes them.
    EntryTimes changed(const EntrySentence::Time &said, const std::optional<EntrySentence::DayRef> &day,
                       const UserTime &time, Instant now) const;
};

} // namespace orvane
