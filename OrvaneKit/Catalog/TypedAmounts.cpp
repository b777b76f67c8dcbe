// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/TypedAmounts.h"

#include "Time/Durations.h"
#include "Time/TextScanner.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace orvane {

std::optional<double> parseTypedRate(std::string_view text)
{
    TextScanner scanner(TextScanner::trimmed(text));
    const std::string_view whole = scanner.takeDigits();
    std::string_view hundredths;
    if (scanner.take('.') || scanner.take(',')) {
        hundredths = scanner.takeDigits();
        if (hundredths.empty() || hundredths.size() > 2)
            return std::nullopt;
    }
    if (whole.empty() || !scanner.atEnd())
        return std::nullopt;
    const std::int64_t rest = cappedValue(hundredths) * (hundredths.size() == 1 ? 10 : 1);
    const double rate = static_cast<double>(cappedValue(whole) * 100 + rest) / 100;
    return rate <= highestRate ? std::optional(rate) : std::nullopt;
}

std::string rateText(double rate)
{
    // Not printf, which writes the decimal point of the system's language.
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, rate, std::chars_format::fixed, 2);
    return end.ec == std::errc{} ? std::string(text, end.ptr) : std::string("?");
}

std::optional<std::int64_t> parseTypedEstimate(std::string_view text)
{
    text = TextScanner::trimmed(text);
    const auto seconds = Durations::parse(text);
    if (!seconds || std::ranges::all_of(text, isAsciiDigit))
        return std::nullopt;
    return static_cast<std::int64_t>(std::floor(*seconds));
}

} // namespace orvane
