// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/Durations.h"

#include "Support/Require.h"
#include "Time/TextScanner.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace orvane {

namespace {

std::int64_t wholeSeconds(double seconds)
{
    const double floored = std::floor(seconds);
    // 2^63 is the first double above the range; the comparison refuses NaN as well.
    ORVANE_REQUIRE(floored >= -0x1p63 && floored < 0x1p63, "a length of time out of range");
    return std::max<std::int64_t>(0, static_cast<std::int64_t>(floored));
}

template <class... Numbers>
std::string printed(const char *pattern, Numbers... numbers)
{
    char text[64];
    const int length = std::snprintf(text, sizeof text, pattern, static_cast<long long>(numbers)...);
    return {text, static_cast<std::size_t>(length)};
}

std::string decimalHours(std::int64_t seconds)
{
    // Not printf, which writes the decimal point of the system's language.
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, static_cast<double>(seconds) / 3600,
                                   std::chars_format::fixed, 2)
                         .ptr;
    return std::string(text, end) + " h";
}

/// "1.5" or "1,5", with the digits after the sign possibly absent. Nine of those are all that can matter.
double decimalValue(std::string_view whole, std::string_view fraction)
{
    fraction = fraction.substr(0, 9);
    double scale = 1;
    for (std::size_t i = 0; i < fraction.size(); ++i)
        scale *= 10;
    const auto wholePart = static_cast<double>(cappedValue(whole));
    return (wholePart * scale + static_cast<double>(cappedValue(fraction))) / scale;
}

/// One or two digits, the first of two being 0 to 5.
std::optional<double> takeSixtieth(TextScanner &scanner)
{
    const std::string_view digits = scanner.takeDigits();
    if (digits.empty() || digits.size() > 2 || (digits.size() == 2 && digits.front() > '5'))
        return std::nullopt;
    return static_cast<double>(cappedValue(digits));
}

std::optional<double> clockLength(TextScanner scanner)
{
    const std::string_view hours = scanner.takeDigits();
    if (hours.empty() || !scanner.take(':'))
        return std::nullopt;
    const auto minutes = takeSixtieth(scanner);
    std::optional<double> seconds = 0;
    if (scanner.take(':'))
        seconds = takeSixtieth(scanner);
    if (!minutes || !seconds || !scanner.atEnd())
        return std::nullopt;
    return static_cast<double>(cappedValue(hours)) * 3600 + *minutes * 60 + *seconds;
}

struct Amount {
    std::string_view whole;
    std::string_view fraction;
};

std::optional<Amount> takeAmount(TextScanner &scanner)
{
    Amount amount;
    amount.whole = scanner.takeDigits();
    if (amount.whole.empty())
        return std::nullopt;
    TextScanner ahead = scanner;
    if (ahead.take('.') || ahead.take(',')) {
        amount.fraction = ahead.takeDigits();
        if (amount.fraction.empty())
            return std::nullopt;
        scanner = ahead;
    }
    return amount;
}

/// Hours, minutes and seconds with their units, in that order; each may be absent, hours may be decimal.
std::optional<double> unitLength(TextScanner scanner)
{
    enum Unit { hours, minutes, seconds, done };
    Unit next = hours;
    double total = 0;
    while (!scanner.atEnd()) {
        const auto amount = takeAmount(scanner);
        if (!amount)
            return std::nullopt;
        scanner.skipSpace();
        const double value = decimalValue(amount->whole, amount->fraction);
        if (next <= hours && scanner.take('h')) {
            total += value * 3600;
            next = minutes;
        } else if (next <= minutes && amount->fraction.empty() && scanner.take('m')) {
            scanner.takeWord("in");
            total += value * 60;
            next = seconds;
        } else if (next <= seconds && amount->fraction.empty() && scanner.take('s')) {
            total += value;
            next = done;
        } else {
            return std::nullopt;
        }
        scanner.skipSpace();
    }
    return total;
}

/// A number without a unit: decimal hours or whole minutes.
std::optional<double> bareNumber(TextScanner scanner)
{
    const auto amount = takeAmount(scanner);
    if (!amount || !scanner.atEnd())
        return std::nullopt;
    return decimalValue(amount->whole, amount->fraction) * (amount->fraction.empty() ? 60 : 3600);
}

} // namespace

std::string_view Durations::text(Format format)
{
    switch (format) {
    case Format::hms:
        return "hms";
    case Format::hm:
        return "hm";
    case Format::decimal:
        return "decimal";
    }
    stopOnProgrammingError("no such duration format");
}

std::optional<Durations::Format> Durations::formatFromText(std::string_view text)
{
    for (const Format format : formats) {
        if (Durations::text(format) == text)
            return format;
    }
    return std::nullopt;
}

std::string Durations::format(double seconds, Format format)
{
    const std::int64_t total = wholeSeconds(seconds);
    switch (format) {
    case Format::hms:
        return printed("%lld:%02lld:%02lld", total / 3600, total / 60 % 60, total % 60);
    case Format::hm:
        return printed("%lld:%02lld", total / 3600, total / 60 % 60);
    case Format::decimal:
        return decimalHours(total);
    }
    stopOnProgrammingError("no such duration format");
}

std::string Durations::shortLabel(double seconds)
{
    const std::int64_t total = wholeSeconds(seconds);
    if (total < 3600)
        return printed("%lldm", total / 60);
    return printed("%lldh %02lldm", total / 3600, total / 60 % 60);
}

std::optional<double> Durations::parse(std::string_view text)
{
    const TextScanner scanner(TextScanner::trimmed(text));
    if (scanner.atEnd())
        return std::nullopt;
    auto seconds = clockLength(scanner);
    if (!seconds)
        seconds = unitLength(scanner);
    if (!seconds)
        seconds = bareNumber(scanner);
    return seconds && *seconds <= longest ? seconds : std::nullopt;
}

} // namespace orvane
