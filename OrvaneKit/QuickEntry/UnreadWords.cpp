// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/UnreadWords.h"

#include "QuickEntry/FoldedText.h"
#include "Time/TextScanner.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

using namespace std::string_view_literals;

constexpr std::array days = {"today"sv,     "yesterday"sv, "tomorrow"sv, "monday"sv,   "tuesday"sv,
                             "wednesday"sv, "thursday"sv,  "friday"sv,   "saturday"sv, "sunday"sv};
/// Also words of their own, or parts of names.
constexpr std::array shortDays = {"mon"sv,  "tue"sv,   "tues"sv, "wed"sv, "thu"sv,
                                  "thur"sv, "thurs"sv, "fri"sv,  "sat"sv, "sun"sv};
constexpr std::array unitWords = {"h"sv, "hr"sv,  "hrs"sv,  "hour"sv,   "hours"sv,
                                  "m"sv, "min"sv, "mins"sv, "minute"sv, "minutes"sv};
constexpr std::array halves = {"am"sv, "pm"sv, "a.m."sv, "p.m."sv, "a.m"sv, "p.m"sv};
/// Before a number at the end of a line they announce a time of day.
constexpr std::array leads = {"at"sv, "until"sv, "till"sv, "from"sv, "since"sv};

bool isAmong(const auto &words, std::string_view word)
{
    return std::ranges::find(words, word) != words.end();
}

/// A number of one or two digits, perhaps the hour of a clock.
bool takeHour(TextScanner &scanner)
{
    const std::string_view digits = scanner.takeDigits();
    return digits.size() == 1 || digits.size() == 2;
}

bool isBareHour(std::string_view text)
{
    TextScanner scanner(text);
    return takeHour(scanner) && scanner.atEnd() && cappedValue(text) <= 23;
}

/// 9:30, 9:30pm, 10am, and what is no time of day though it has the shape (25:00).
bool isClock(std::string_view text)
{
    TextScanner scanner(text);
    if (!takeHour(scanner))
        return false;
    if (scanner.take(':'))
        return scanner.takeDigits().size() == 2 && (scanner.atEnd() || isAmong(halves, scanner.rest()));
    return isAmong(halves, scanner.rest());
}

/// 90m, 1.5h or 1h30.
bool isLength(std::string_view text)
{
    TextScanner scanner(text);
    if (scanner.takeDigits().empty())
        return false;
    if ((scanner.take('.') || scanner.take(',')) && scanner.takeDigits().empty())
        return false;
    if (isAmong(unitWords, scanner.rest()))
        return true;
    return scanner.take('h') && scanner.takeDigits().size() == 2 &&
           (scanner.atEnd() || scanner.rest() == "m" || scanner.rest() == "min");
}

struct Sides {
    std::string_view first;
    std::string_view second;
};

/// Around the one hyphen or dash.
std::optional<Sides> dashSides(std::string_view text)
{
    for (const std::string_view dash : {"-"sv, enDash}) {
        const std::size_t at = text.find(dash);
        if (at != std::string_view::npos)
            return Sides{text.substr(0, at), text.substr(at + dash.size())};
    }
    return std::nullopt;
}

bool isClockRange(std::string_view text)
{
    const auto sides = dashSides(text);
    return sides && (isClock(sides->first) || isClock(sides->second)) &&
           (isClock(sides->first) || isBareHour(sides->first)) &&
           (isClock(sides->second) || isBareHour(sides->second));
}

bool isBareRange(std::string_view text)
{
    const auto sides = dashSides(text);
    return sides && isBareHour(sides->first) && isBareHour(sides->second) && sides->first != sides->second;
}

/// Two or three numbers with a sign between, the year in front or at the end.
struct DateShape {
    bool isDate = false;
    bool hasYear = false;
};

DateShape dateShape(std::string_view text)
{
    TextScanner scanner(text);
    const std::size_t first = scanner.takeDigits().size();
    for (const char sign : {'-', '.', '/'}) {
        if (!scanner.take(sign))
            continue;
        const std::size_t second = scanner.takeDigits().size();
        const bool isShort = second == 1 || second == 2;
        if (scanner.atEnd())
            return {sign == '/' && first <= 2 && first > 0 && isShort, false};
        if (!isShort || !scanner.take(sign))
            return {};
        const std::size_t third = scanner.takeDigits().size();
        if (!scanner.atEnd())
            return {};
        if (sign == '-')
            return {first == 4 && (third == 1 || third == 2), true};
        const bool hasYear = third == 2 || third == 4;
        return {first <= 2 && first > 0 && (hasYear || (sign == '.' && third == 0)), hasYear};
    }
    return {};
}

/// Without brackets, quotes and the punctuation of a sentence; a point may belong to a date (7.3.).
std::string_view bare(std::string_view word)
{
    const std::size_t first = word.find_first_not_of("(\"'");
    if (first == std::string_view::npos)
        return {};
    word.remove_prefix(first);
    word = word.substr(0, word.find_last_not_of(",;:!?)\"'") + 1);
    if (word.ends_with('.') && !dateShape(word).isDate)
        word.remove_suffix(1);
    return word;
}

/// The words of a description, typed and in lower case.
struct DescriptionWords {
    std::vector<std::string_view> typed;
    std::vector<std::string> lower;

    explicit DescriptionWords(std::string_view description)
    {
        for (const std::string_view word : wordsOf(description)) {
            typed.push_back(bare(word));
            lower.push_back(asciiLowered(typed.back()));
        }
    }

    std::size_t size() const { return typed.size(); }
    bool isDay(std::size_t i) const
    {
        return isAmong(days, lower[i]) || isAmong(shortDays, lower[i]) || dateShape(lower[i]).isDate;
    }
    /// Such as "@acme" that names nothing: it stands where a mention would, beside the time.
    bool isMention(std::size_t i) const { return lower[i].starts_with('@') || lower[i].starts_with('#'); }
    std::string text(std::size_t from, std::size_t to) const
    {
        std::string text;
        for (std::size_t i = from; i < to; ++i)
            text.append(text.empty() ? "" : " ").append(typed[i]);
        return text;
    }
};

/// What can hardly be anything else than a time or a day.
std::optional<UnreadWords::Kind> plainKind(std::string_view word)
{
    if (isClock(word) || isClockRange(word) || isLength(word))
        return UnreadWords::Kind::time;
    const DateShape date = dateShape(word);
    if (isAmong(days, word) || (date.isDate && date.hasYear))
        return UnreadWords::Kind::day;
    return std::nullopt;
}

/// What is a time only where one is expected: the words before `end`. Counts them.
std::size_t lastTimeWords(const DescriptionWords &words, std::size_t end)
{
    const auto before = [&](std::size_t back) {
        return end >= back ? std::string_view(words.lower[end - back]) : std::string_view();
    };
    if (end > 0 && isBareRange(before(1)))
        return 1;
    const std::string_view between = before(2);
    if (end > 2 && isBareHour(before(1)) && isBareHour(before(3)) &&
        (between == "-" || between == enDash || between == "to"))
        return 3;
    if (end > 1 && isBareHour(before(1)) && isAmong(leads, between))
        return 2;
    const bool isAgo = end > 2 && before(1) == "ago" && !TextScanner(before(3)).takeDigits().empty();
    return isAgo ? 3 : 0;
}

} // namespace

std::vector<UnreadWords> UnreadWords::of(const EntrySentence::Reading &reading)
{
    const DescriptionWords words(reading.description);
    std::size_t end = words.size(); ///< where the words at the end begin that are looked at closely
    if (!reading.time) {
        while (end > 0 && (words.isDay(end - 1) || words.isMention(end - 1)))
            --end;
    }
    const std::size_t lastDays = end;
    const std::size_t timeWords = reading.time ? 0 : lastTimeWords(words, end);
    end -= timeWords;

    std::vector<UnreadWords> found;
    const auto add = [&found](UnreadWords unread) {
        if (std::ranges::find(found, unread.text, &UnreadWords::text) == found.end())
            found.push_back(std::move(unread));
    };
    for (std::size_t i = 0; i < end; ++i) {
        if (const auto kind = plainKind(words.lower[i]))
            add({*kind, std::string(words.typed[i])});
    }
    if (timeWords > 0) {
        const bool areHours = timeWords == 1 || (timeWords == 3 && words.lower[lastDays - 1] != "ago");
        add({areHours ? Kind::hours : Kind::time, words.text(end, lastDays)});
    }
    for (std::size_t i = lastDays; i < words.size(); ++i) {
        if (words.isDay(i))
            add({Kind::day, std::string(words.typed[i])});
    }
    return found;
}

std::string UnreadWords::asRange() const
{
    std::vector<std::string_view> hours;
    TextScanner scanner(text);
    while (!scanner.atEnd() && hours.size() < 2) {
        const std::string_view digits = scanner.takeDigits();
        if (digits.empty())
            scanner = TextScanner(scanner.rest().substr(1));
        else
            hours.push_back(digits);
    }
    if (hours.size() < 2)
        return {};
    return std::string(hours[0]) + ":00-" + std::string(hours[1]) + ":00";
}

} // namespace orvane
