// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/TypedMoment.h"

#include "Support/DateText.h"
#include "Time/TextScanner.h"

#include <algorithm>
#include <string>

namespace orvane {

namespace {

constexpr std::size_t dayLength = 10; ///< of "2026-03-01"

/// As ISO 8601 has its "T" and "Z".
std::string upperCase(std::string_view text)
{
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return upper;
}

/// "2026-03-01 9:30" and "2026-03-01T09:30", seconds of the clock not included.
std::optional<Instant> parseLocal(std::string_view text, const UserTime &time)
{
    if (text.size() < dayLength + 2 ||
        std::string_view(" tT").find(text[dayLength]) == std::string_view::npos)
        return std::nullopt;
    const auto day = DayKey::parse(text.substr(0, dayLength));
    const auto clock = ClockTime::parse(text.substr(dayLength + 1));
    if (!day || !clock)
        return std::nullopt;
    return time.date(*day, *clock);
}

} // namespace

std::optional<TypedMoment> TypedMoment::parse(std::string_view text, const UserTime &time)
{
    text = TextScanner::trimmed(text);
    if (const auto clock = ClockTime::parse(text))
        return TypedMoment{.clock = clock};
    // Only "now" and what begins with "-" are left to it, so the reference day plays no part.
    if (const auto instant = time.resolveClock(text, time.today()))
        return TypedMoment{.instant = *instant, .isFromNow = true};
    if (const auto instant = instantFromIso8601(upperCase(text)))
        return TypedMoment{.instant = *instant};
    if (const auto instant = parseLocal(text, time))
        return TypedMoment{.instant = *instant};
    return std::nullopt;
}

} // namespace orvane
