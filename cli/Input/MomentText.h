// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Result.h"
#include "Time/UserTime.h"

#include <optional>
#include <string>
#include <string_view>

/// Times and days as they are typed on the command line.
namespace orvane {

/// A typed moment, before it is known which day a bare time of day belongs to.
struct TypedMoment {
    /// Set for a time of day; otherwise `instant` says it all.
    std::optional<ClockTime> clock = {};
    Instant instant = {};

    bool operator==(const TypedMoment &) const = default;
};

/// Reads 930, 9:30 or 9:30pm (a time of day), "now", -15 or -1h (so long ago), "2026-03-01 9:30" in the
/// user's zone, or a full instant such as 2026-03-01T09:30:00Z. The error is a sentence for people.
Result<TypedMoment, std::string> readMoment(std::string_view text, const UserTime &time);

struct Span {
    Instant start;
    Instant stop;

    bool operator==(const Span &) const = default;
};

/// The times of an entry that is being made. A bare time of day is today's; an end before its start means
/// that the entry began the day before, and next to a full date it is on the day of the other time (or over
/// midnight from it).
Result<Span, std::string> spanOf(TypedMoment start, TypedMoment stop, const UserTime &time);

/// The start of the timer: a bare time of day is today's.
Instant startOf(TypedMoment start, const UserTime &time);

/// The end of a running entry: a bare time of day is today's, or yesterday's when today's is still to come
/// and the entry was already running then.
Instant stopOf(TypedMoment stop, Instant runningSince, const UserTime &time);

/// New times of an existing entry: a bare time of day is on the entry's own day, and an end before its start
/// on the next. Nothing named stays as it is.
struct EditedTimes {
    Instant start;
    std::optional<Instant> stop;

    bool operator==(const EditedTimes &) const = default;
};
Result<EditedTimes, std::string> editedTimes(EditedTimes before, std::optional<TypedMoment> start,
                                             std::optional<TypedMoment> stop, const UserTime &time);

/// Reads 2026-03-01, "today", "yesterday" or a weekday's name (the last such day, today included).
Result<DayKey, std::string> readDay(std::string_view text, const UserTime &time);

} // namespace orvane
