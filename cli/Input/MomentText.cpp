// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/MomentText.h"

#include "Support/DateText.h"
#include "Time/AppClock.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

std::string trimmedLowerCase(std::string_view text)
{
    const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower;
}

std::string upperCase(std::string text)
{
    std::ranges::transform(text, text.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return text;
}

/// "2026-03-01 9:30" and "2026-03-01T09:30", seconds of the clock not included.
std::optional<Instant> readLocal(std::string_view text, const UserTime &time)
{
    if (text.size() < 12 || (text[10] != ' ' && text[10] != 't'))
        return {};
    const auto day = DayKey::parse(text.substr(0, 10));
    const auto clock = ClockTime::parse(text.substr(11));
    if (!day || !clock)
        return {};
    return time.date(*day, *clock);
}

std::string unreadable(std::string_view text)
{
    return "\"" + std::string(text) +
           "\" is not a time. Type 930, 9:30, now, -15 (15 minutes ago), \"2026-03-01 9:30\" " +
           "or 2026-03-01T09:30:00Z.";
}

const std::string endBeforeStart = "The end has to be after the start.";

Instant on(DayKey day, ClockTime clock, const UserTime &time)
{
    return time.date(day, clock);
}

} // namespace

Result<TypedMoment, std::string> readMoment(std::string_view text, const UserTime &time)
{
    const std::string typed = trimmedLowerCase(text);
    if (const auto clock = ClockTime::parse(typed))
        return TypedMoment{.clock = clock};
    // Only "now" and what begins with "-" are left to it, so the reference day plays no part.
    if (const auto instant = time.resolveClock(typed, time.today()))
        return TypedMoment{.instant = *instant};
    if (const auto instant = instantFromIso8601(upperCase(typed)))
        return TypedMoment{.instant = *instant};
    if (const auto instant = readLocal(typed, time))
        return TypedMoment{.instant = *instant};
    return failure(unreadable(text));
}

Instant startOf(TypedMoment start, const UserTime &time)
{
    return start.clock ? on(time.today(), *start.clock, time) : start.instant;
}

Result<Span, std::string> spanOf(TypedMoment start, TypedMoment stop, const UserTime &time)
{
    Span span;
    if (start.clock && stop.clock) {
        const DayKey today = time.today();
        span.stop = on(today, *stop.clock, time);
        span.start = on(*stop.clock < *start.clock ? today.adding(-1) : today, *start.clock, time);
    } else if (stop.clock) {
        const DayKey day = time.dayKey(start.instant);
        const bool isOverMidnight = *stop.clock < time.timeOfDay(start.instant);
        span = {start.instant, on(isOverMidnight ? day.adding(1) : day, *stop.clock, time)};
    } else if (start.clock) {
        const DayKey day = time.dayKey(stop.instant);
        const bool isOverMidnight = time.timeOfDay(stop.instant) < *start.clock;
        span = {on(isOverMidnight ? day.adding(-1) : day, *start.clock, time), stop.instant};
    } else {
        span = {start.instant, stop.instant};
    }
    if (span.stop <= span.start)
        return failure(endBeforeStart);
    return span;
}

Instant stopOf(TypedMoment stop, Instant runningSince, const UserTime &time)
{
    if (!stop.clock)
        return stop.instant;
    const DayKey today = time.today();
    const Instant at = on(today, *stop.clock, time);
    const Instant before = on(today.adding(-1), *stop.clock, time);
    return at > AppClock::now() && before >= runningSince ? before : at;
}

Result<EditedTimes, std::string> editedTimes(EditedTimes before, std::optional<TypedMoment> start,
                                             std::optional<TypedMoment> stop, const UserTime &time)
{
    EditedTimes times = before;
    if (start)
        times.start = start->clock ? on(time.dayKey(before.start), *start->clock, time) : start->instant;
    if (stop && stop->clock) {
        const DayKey day = time.dayKey(times.start);
        const bool isOverMidnight = *stop->clock < time.timeOfDay(times.start);
        times.stop = on(isOverMidnight ? day.adding(1) : day, *stop->clock, time);
    } else if (stop) {
        times.stop = stop->instant;
    }
    if ((start || stop) && times.stop && *times.stop <= times.start)
        return failure(endBeforeStart);
    return times;
}

Result<DayKey, std::string> readDay(std::string_view text, const UserTime &time)
{
    static constexpr std::array<std::string_view, 7> weekdays{"sunday",   "monday", "tuesday", "wednesday",
                                                              "thursday", "friday", "saturday"};
    const std::string typed = trimmedLowerCase(text);
    const DayKey today = time.today();
    if (typed == "today")
        return today;
    if (typed == "yesterday")
        return today.adding(-1);
    for (std::size_t i = 0; i < weekdays.size(); ++i) {
        if (typed.size() >= 3 && weekdays[i].starts_with(typed))
            return today.adding(-((today.weekday() - static_cast<int>(i) + 7) % 7));
    }
    if (const auto day = DayKey::parse(typed))
        return *day;
    return failure("\"" + std::string(text) +
                   "\" is not a day. Type 2026-03-01, today, yesterday or the name of a weekday.");
}

} // namespace orvane
