// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/DayReference.h"

#include "Time/TextScanner.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

using namespace std::string_view_literals;

constexpr std::array weekdays = {
    std::pair{"sun"sv, 0},      std::pair{"sunday"sv, 0},   std::pair{"mon"sv, 1},
    std::pair{"monday"sv, 1},   std::pair{"tue"sv, 2},      std::pair{"tues"sv, 2},
    std::pair{"tuesday"sv, 2},  std::pair{"wed"sv, 3},      std::pair{"wednesday"sv, 3},
    std::pair{"thu"sv, 4},      std::pair{"thur"sv, 4},     std::pair{"thurs"sv, 4},
    std::pair{"thursday"sv, 4}, std::pair{"fri"sv, 5},      std::pair{"friday"sv, 5},
    std::pair{"sat"sv, 6},      std::pair{"saturday"sv, 6},
};

/// The longest wait for a date without a year: from one 29 February to the next over a year like 1900.
constexpr int longestWait = 8;

/// The numbers of a date, in the order typed.
struct TypedDate {
    int first = 0;
    int second = 0;
    std::optional<int> year;
};

std::optional<int> takeNumber(TextScanner &scanner, std::size_t least, std::size_t most)
{
    const std::string_view digits = scanner.takeDigits();
    if (digits.size() < least || digits.size() > most)
        return std::nullopt;
    return static_cast<int>(cappedValue(digits));
}

/// Two digits or four.
std::optional<int> takeYear(TextScanner &scanner)
{
    const std::string_view digits = scanner.takeDigits();
    if (digits.size() != 2 && digits.size() != 4)
        return std::nullopt;
    const int number = static_cast<int>(cappedValue(digits));
    return digits.size() == 2 ? 2000 + number : number;
}

/// Year, month and day with hyphens.
std::optional<DayKey> hyphenDate(TextScanner scanner)
{
    const auto year = takeNumber(scanner, 4, 4);
    if (!year || !scanner.take('-'))
        return std::nullopt;
    const auto month = takeNumber(scanner, 1, 2);
    if (!month || !scanner.take('-'))
        return std::nullopt;
    const auto day = takeNumber(scanner, 1, 2);
    return day && scanner.atEnd() ? DayKey::make(*year, *month, *day) : std::nullopt;
}

/// Two numbers with a sign between and perhaps a year; after points the sign stands behind the second number
/// too.
std::optional<TypedDate> shortDate(TextScanner scanner, char sign)
{
    TypedDate date;
    const auto first = takeNumber(scanner, 1, 2);
    if (!first || !scanner.take(sign))
        return std::nullopt;
    const auto second = takeNumber(scanner, 1, 2);
    if (!second)
        return std::nullopt;
    const bool hasSign = scanner.take(sign);
    if (hasSign && !scanner.atEnd()) {
        date.year = takeYear(scanner);
        if (!date.year)
            return std::nullopt;
    } else if (hasSign != (sign == '.')) {
        return std::nullopt; // 7.3 is no date, and neither is 7/3/
    }
    if (!scanner.atEnd())
        return std::nullopt;
    date.first = *first;
    date.second = *second;
    return date;
}

/// The day in its year, or the last such day up to today.
std::optional<DayKey> dayOf(int day, int month, std::optional<int> year, DayKey today)
{
    if (year)
        return DayKey::make(*year, month, day);
    for (int before = 0; before <= longestWait; ++before) {
        const auto found = DayKey::make(today.year - before, month, day);
        if (found && *found <= today)
            return found;
    }
    return std::nullopt;
}

bool isDayFirst(std::string_view dateFormat)
{
    const std::size_t day = dateFormat.find('d');
    return day == std::string_view::npos || day < dateFormat.find('M');
}

std::optional<DayKey> slashDay(const TypedDate &date, std::string_view dateFormat, DayKey today)
{
    int day = date.first;
    int month = date.second;
    if (!isDayFirst(dateFormat))
        std::swap(day, month);
    const auto found = dayOf(day, month, date.year, today);
    return found ? found : dayOf(month, day, date.year, today);
}

std::optional<DayKey> typedDay(std::string_view word, std::string_view dateFormat, DayKey today)
{
    const TextScanner scanner(word);
    if (const auto day = hyphenDate(scanner))
        return day;
    if (const auto date = shortDate(scanner, '.'))
        return dayOf(date->first, date->second, date->year, today);
    if (const auto date = shortDate(scanner, '/'))
        return slashDay(*date, dateFormat, today);
    return std::nullopt;
}

} // namespace

std::optional<EntrySentence::DayRef> dayReference(std::string_view word, std::string_view dateFormat,
                                                  DayKey today)
{
    if (word == "today")
        return EntrySentence::Today{};
    if (word == "yesterday")
        return EntrySentence::Yesterday{};
    const auto *weekday = std::ranges::find(weekdays, word, &std::pair<std::string_view, int>::first);
    if (weekday != weekdays.end())
        return EntrySentence::Weekday{weekday->second};
    if (const auto day = typedDay(word, dateFormat, today))
        return EntrySentence::Date{*day};
    return std::nullopt;
}

DayKey referencedDay(const EntrySentence::DayRef &reference, DayKey today)
{
    struct {
        DayKey today;

        DayKey operator()(EntrySentence::Today) const { return today; }
        DayKey operator()(EntrySentence::Yesterday) const { return today.adding(-1); }
        DayKey operator()(EntrySentence::Date date) const { return date.day; }
        DayKey operator()(EntrySentence::Weekday weekday) const
        {
            return today.adding(-((today.weekday() - weekday.number % 7 + 7) % 7));
        }
    } const day{today};
    return std::visit(day, reference);
}

} // namespace orvane
