// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/TypedDay.h"

#include "Support/Require.h"
#include "Time/TextScanner.h"

#include <array>

namespace orvane {

namespace {

constexpr std::size_t leastLetters = 3; ///< of a weekday
constexpr std::array<std::string_view, 7> weekdays{"sunday",   "monday", "tuesday", "wednesday",
                                                   "thursday", "friday", "saturday"};

/// Whether the text is this word; `lower` is in lower case.
bool isWord(std::string_view text, std::string_view lower)
{
    TextScanner scanner(text);
    return scanner.takeWord(lower) && scanner.atEnd();
}

} // namespace

std::optional<DayKey> parseTypedDay(std::string_view text, DayKey today)
{
    text = TextScanner::trimmed(text);
    if (isWord(text, "today"))
        return today;
    if (isWord(text, "yesterday"))
        return today.adding(-1);
    if (const auto weekday = parseTypedWeekday(text))
        return today.adding(-((today.weekday() - *weekday + 7) % 7));
    return DayKey::parse(text);
}

std::optional<int> parseTypedWeekday(std::string_view text)
{
    text = TextScanner::trimmed(text);
    for (std::size_t i = 0; i < weekdays.size(); ++i) {
        if (text.size() >= leastLetters && isWord(text, weekdays[i].substr(0, text.size())))
            return static_cast<int>(i);
    }
    return std::nullopt;
}

std::string_view weekdayName(int weekday)
{
    ORVANE_REQUIRE(weekday >= 0 && weekday < static_cast<int>(weekdays.size()), "no such weekday");
    return weekdays[static_cast<std::size_t>(weekday)];
}

} // namespace orvane
