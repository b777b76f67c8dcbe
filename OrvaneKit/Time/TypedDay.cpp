// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/TypedDay.h"

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
    for (std::size_t i = 0; i < weekdays.size(); ++i) {
        if (text.size() >= leastLetters && isWord(text, weekdays[i].substr(0, text.size())))
            return today.adding(-((today.weekday() - static_cast<int>(i) + 7) % 7));
    }
    return DayKey::parse(text);
}

} // namespace orvane
