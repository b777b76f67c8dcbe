// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/ClockTime.h"

#include "Support/Require.h"
#include "Time/TextScanner.h"

#include <cstdio>

namespace orvane {

namespace {

enum class HalfDay { none, morning, afternoon };

/// The hour's digits and the minutes' as they were typed; `minutes` is absent when nothing parts them.
struct TypedTime {
    std::string_view hour;
    std::optional<std::string_view> minutes;
    HalfDay half = HalfDay::none;
};

bool takeMark(TextScanner &scanner)
{
    return scanner.take(':') || scanner.take('.') || scanner.take(',') || scanner.take('h');
}

/// A separator and up to two digits. White space alone that no digits follow parts nothing: "930 pm" is half
/// past nine, not the hour 930.
std::optional<std::string_view> takeMinutes(TextScanner &scanner)
{
    TextScanner ahead = scanner;
    const bool space = ahead.skipSpace();
    const bool mark = takeMark(ahead);
    if (!space && !mark)
        return std::nullopt;
    ahead.skipSpace();
    const std::string_view digits = ahead.takeDigits();
    if (!mark && digits.empty())
        return std::nullopt;
    scanner = ahead;
    return digits;
}

HalfDay takeHalfDay(TextScanner &scanner)
{
    const bool morning = scanner.take('a');
    if (!morning && !scanner.take('p'))
        return HalfDay::none;
    scanner.take('.');
    if (scanner.take('m'))
        scanner.take('.');
    return morning ? HalfDay::morning : HalfDay::afternoon;
}

std::optional<TypedTime> typedTime(std::string_view text)
{
    TextScanner scanner(TextScanner::trimmed(text));
    TypedTime typed;
    typed.hour = scanner.takeDigits();
    if (typed.hour.empty() || typed.hour.size() > 4)
        return std::nullopt;
    typed.minutes = takeMinutes(scanner);
    if (typed.minutes && typed.minutes->size() > 2)
        return std::nullopt;
    scanner.skipSpace();
    typed.half = takeHalfDay(scanner);
    return scanner.atEnd() ? std::optional{typed} : std::nullopt;
}

} // namespace

std::string ClockTime::format(int hour, int minute, bool hour12)
{
    ORVANE_REQUIRE(hour >= 0 && hour < 24 && minute >= 0 && minute < 60, "no time of day");
    char text[16];
    int length = 0;
    if (hour12) {
        length = std::snprintf(text, sizeof text, "%d:%02d %s", hour % 12 == 0 ? 12 : hour % 12, minute,
                               hour < 12 ? "am" : "pm");
    } else {
        length = std::snprintf(text, sizeof text, "%02d:%02d", hour, minute);
    }
    return {text, static_cast<std::size_t>(length)};
}

std::optional<ClockTime> ClockTime::parse(std::string_view text)
{
    auto typed = typedTime(text);
    if (!typed)
        return std::nullopt;
    if (!typed->minutes && typed->hour.size() > 2) {
        typed->minutes = typed->hour.substr(typed->hour.size() - 2);
        typed->hour.remove_suffix(2);
    }
    const std::int64_t minute = typed->minutes ? cappedValue(*typed->minutes) : 0;
    std::int64_t hour = cappedValue(typed->hour);
    if (minute > 59)
        return std::nullopt;
    if (typed->half != HalfDay::none) {
        if (hour < 1 || hour > 12)
            return std::nullopt;
        hour = hour % 12 + (typed->half == HalfDay::afternoon ? 12 : 0);
    }
    if (hour > 23)
        return std::nullopt;
    return ClockTime{static_cast<std::uint8_t>(hour), static_cast<std::uint8_t>(minute)};
}

ClockTime ClockTime::shifted(std::int64_t minutes) const
{
    constexpr std::int64_t minutesOfDay = 1440;
    std::int64_t total = hour * 60 + minute;
    ORVANE_REQUIRE(!__builtin_add_overflow(total, minutes, &total),
                   "a shift of the time of day out of range");
    total %= minutesOfDay;
    if (total < 0)
        total += minutesOfDay;
    return {static_cast<std::uint8_t>(total / 60), static_cast<std::uint8_t>(total % 60)};
}

} // namespace orvane
