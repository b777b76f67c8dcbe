// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/TimePhrase.h"

#include "QuickEntry/DayReference.h"
#include "Time/TextScanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numeric>

namespace orvane {

namespace {

using namespace std::string_view_literals;
using Clock = EntrySentence::TypedClock;
using Meridiem = EntrySentence::Meridiem;

/// The longest phrase, "on 2025-03-07 from 9:00 am - 10:30 am", has eight words.
constexpr std::size_t mostWords = 8;
/// No word of a time phrase is longer.
constexpr std::size_t longestWord = 40;

enum class Unit { hours, minutes };
constexpr std::array units = {
    std::pair{"h"sv, Unit::hours},        std::pair{"hr"sv, Unit::hours},
    std::pair{"hrs"sv, Unit::hours},      std::pair{"hour"sv, Unit::hours},
    std::pair{"hours"sv, Unit::hours},    std::pair{"m"sv, Unit::minutes},
    std::pair{"min"sv, Unit::minutes},    std::pair{"mins"sv, Unit::minutes},
    std::pair{"minute"sv, Unit::minutes}, std::pair{"minutes"sv, Unit::minutes},
};

std::optional<Unit> unitOf(std::string_view word)
{
    const auto *found = std::ranges::find(units, word, &std::pair<std::string_view, Unit>::first);
    return found == units.end() ? std::nullopt : std::optional(found->second);
}

// Durations

/// A number, perhaps with a point or comma and more digits.
std::optional<double> takeDecimal(TextScanner &scanner)
{
    std::string number(scanner.takeDigits());
    if (number.empty())
        return std::nullopt;
    TextScanner ahead = scanner;
    if (ahead.take('.') || ahead.take(',')) {
        const std::string_view fraction = ahead.takeDigits();
        if (!fraction.empty()) {
            number += '.';
            number += fraction;
            scanner = ahead;
        }
    }
    double value = 0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    return value;
}

/// The length that a few words make: hours, minutes or both in this order.
class LengthReader {
public:
    /// Takes a word such as 1h30, 1.5h or 90m, or a number and, as the next word, its unit.
    bool read(std::span<const std::string> words)
    {
        for (std::size_t i = 0; i < words.size(); ++i) {
            TextScanner scanner(words[i]);
            const auto number = takeDecimal(scanner);
            if (!number)
                return false;
            if (scanner.atEnd()) {
                ++i;
                if (i == words.size() || !add(*number, unitOf(words[i])))
                    return false;
            } else if (!add(*number, unitOf(scanner.rest())) && !addHoursAndMinutes(*number, scanner)) {
                return false;
            }
        }
        return m_seconds > 0 && m_seconds <= Durations::longest;
    }

    double seconds() const { return std::round(m_seconds * 1000) / 1000; }

private:
    bool add(double number, std::optional<Unit> unit)
    {
        if (!unit || m_hasMinutes || (m_hasHours && *unit == Unit::hours))
            return false;
        m_hasHours = true;
        m_hasMinutes = *unit == Unit::minutes;
        m_seconds += number * (m_hasMinutes ? 60 : 3600);
        return true;
    }

    /// "h30", "h30m" or "h30min" behind the hours.
    bool addHoursAndMinutes(double hours, TextScanner scanner)
    {
        if (!scanner.take('h'))
            return false;
        const std::string_view digits = scanner.takeDigits();
        if (digits.empty() || digits.size() > 2)
            return false;
        if (!scanner.atEnd() && scanner.rest() != "m" && scanner.rest() != "min")
            return false;
        return add(hours, Unit::hours) && add(static_cast<double>(cappedValue(digits)), Unit::minutes);
    }

    double m_seconds = 0;
    bool m_hasHours = false;
    bool m_hasMinutes = false;
};

// Clock times

/// What a word ends with: a, p, am, p.m. and the like.
Meridiem meridiemAtEnd(std::string_view word)
{
    constexpr std::array ends = {"a"sv, "a."sv, "am"sv, "am."sv, "a.m"sv, "a.m."sv};
    for (const std::string_view end : ends) {
        if (word.ends_with(end))
            return Meridiem::am;
        std::string afternoon(end);
        afternoon.front() = 'p';
        if (word.ends_with(afternoon))
            return Meridiem::pm;
    }
    return Meridiem::none;
}

bool looksLikeClock(std::string_view word)
{
    return word.find_first_of(":.h") != std::string_view::npos || meridiemAtEnd(word) != Meridiem::none;
}

/// On the dial of a 12-hour clock, where 0 and 12 are the same place.
int onDial(int hours)
{
    return (hours + 11) % 12 + 1;
}

/// The same hour in the half of the day that another clock time has.
Clock inHalfOf(Clock clock, const Clock &other)
{
    clock.hours = onDial(clock.hours);
    clock.meridiem = other.time().hour >= 12 ? Meridiem::pm : Meridiem::am;
    return clock;
}

/// A half of the day that was typed at one end holds for both where that keeps the start before the end.
void shareMeridiem(Clock &start, Clock &end)
{
    const bool hasStart = start.meridiem != Meridiem::none;
    const bool hasEnd = end.meridiem != Meridiem::none;
    if (hasEnd && !hasStart && start.hours <= 12) {
        if (const Clock shared = inHalfOf(start, end); shared.time() < end.time())
            start = shared;
    } else if (hasStart && !hasEnd && end.hours < 13) {
        if (const Clock shared = inHalfOf(end, start); start.time() < shared.time())
            end = shared;
    }
}

/// On a 12-hour clock an end that lies before the start is the afternoon's, where that is after the start.
void preferAfternoonEnd(const Clock &start, Clock &end)
{
    if (end.meridiem != Meridiem::none || end.hours < 1 || end.hours > 11 || end.time() >= start.time())
        return;
    Clock afternoon = end;
    afternoon.meridiem = Meridiem::pm;
    if (start.time() < afternoon.time())
        end = afternoon;
}

/// The two sides of a word with one hyphen or en dash in it.
std::optional<std::pair<std::string_view, std::string_view>> sidesOf(std::string_view word)
{
    std::size_t size = 1;
    std::size_t at = word.find('-');
    const std::size_t dash = word.find(enDash);
    if (dash < at) {
        at = dash;
        size = enDash.size();
    }
    if (at == std::string_view::npos || at == 0 || at + size == word.size())
        return std::nullopt;
    const std::string_view second = word.substr(at + size);
    if (second.find('-') != std::string_view::npos || second.find(enDash) != std::string_view::npos)
        return std::nullopt;
    return std::pair{word.substr(0, at), second};
}

/// The last words of the line in lower case. A half of the day that stands alone ("9:30 pm") belongs to the
/// number before it.
struct Words {
    std::vector<std::string> texts;
    std::vector<std::size_t> typed; ///< how many words of the line each one is

    explicit Words(std::span<const std::string_view> line)
    {
        for (const std::string_view word : line.last(std::min(line.size(), mostWords))) {
            std::string text = word.size() <= longestWord ? asciiLowered(word) : std::string();
            const bool isHalf = text == "am" || text == "pm" || text == "a.m." || text == "p.m.";
            if (isHalf && !texts.empty() && !texts.back().empty() && isAsciiDigit(texts.back().back())) {
                texts.back() += text;
                ++typed.back();
            } else {
                texts.push_back(std::move(text));
                typed.push_back(1);
            }
        }
    }

    std::size_t typedFrom(std::size_t begin) const
    {
        return std::accumulate(typed.begin() + static_cast<std::ptrdiff_t>(begin), typed.end(),
                               std::size_t{0});
    }
};

/// The part of the phrase that is the time. `begin` is its first word; without a `time` the shape was
/// recognised but makes no sense.
struct Found {
    std::size_t begin = 0;
    std::optional<EntrySentence::Time> time;
    std::optional<EntrySentence::DayRef> day;
};

class PhraseReader {
public:
    PhraseReader(const Words &words, const EntrySentence::Options &options, Instant now,
                 const UserTime &calendar)
        : m_words(words.texts)
        , m_options(options)
        , m_now(now)
        , m_calendar(calendar)
        , m_today(calendar.dayKey(now))
    {
    }

    std::optional<Found> read() const
    {
        auto found = shape();
        if (!found || !found->time)
            return std::nullopt;
        if (!found->day || std::holds_alternative<EntrySentence::Today>(*found->day))
            preferAfternoon(*found->time);
        return isSomewhere(*found) ? found : std::nullopt;
    }

    std::optional<Found> refusedRange() const
    {
        auto found = shape();
        const bool isRange =
            found && (!found->time || std::holds_alternative<EntrySentence::Range>(*found->time));
        return isRange && (!found->time || !isSomewhere(*found)) ? found : std::nullopt;
    }

private:
    /// What the words look like, whether it makes sense or not.
    std::optional<Found> shape() const
    {
        auto found = timeUpTo(m_words.size());
        if (found) {
            takeDayBefore(*found);
        } else if (const auto day = dayUpTo(m_words.size())) {
            found = timeUpTo(day->begin);
            if (!found || found->day || isAgo(*found))
                return std::nullopt;
            found->day = day->day;
        }
        return found;
    }

    bool isSomewhere(const Found &found) const
    {
        return EntrySentence::resolve(*found.time, found.day, m_now, m_calendar).has_value();
    }

    static bool isAgo(const Found &found)
    {
        return found.time && std::holds_alternative<EntrySentence::Ago>(*found.time);
    }

    bool hasWord(std::size_t end, std::string_view word) const { return end > 0 && m_words[end - 1] == word; }

    std::optional<Found> dayUpTo(std::size_t end) const
    {
        if (end == 0)
            return std::nullopt;
        auto day = dayReference(m_words[end - 1], m_options.dateFormat, m_today);
        if (!day)
            return std::nullopt;
        return Found{hasWord(end - 1, "on") ? end - 2 : end - 1, std::nullopt, day};
    }

    void takeDayBefore(Found &found) const
    {
        if (found.day || isAgo(found))
            return;
        if (const auto day = dayUpTo(found.begin)) {
            found.begin = day->begin;
            found.day = day->day;
        }
    }

    std::optional<Found> timeUpTo(std::size_t end) const
    {
        if (hasWord(end, "ago")) {
            const auto length = lengthUpTo(end - 1);
            return length ? std::optional(Found{length->begin, EntrySentence::Ago{length->seconds}, {}})
                          : std::nullopt;
        }
        if (auto range = rangeUpTo(end))
            return range;
        if (auto since = sinceUpTo(end))
            return since;
        const auto length = lengthUpTo(end);
        if (!length)
            return std::nullopt;
        return Found{afterWord(length->begin, "for"), EntrySentence::Duration{length->seconds}, {}};
    }

    /// The place, or the one of the word before it when that is the given one.
    std::size_t afterWord(std::size_t begin, std::string_view word) const
    {
        return hasWord(begin, word) ? begin - 1 : begin;
    }

    struct Length {
        std::size_t begin = 0;
        double seconds = 0;
    };

    std::optional<Length> lengthUpTo(std::size_t end) const
    {
        constexpr std::size_t most = 4; // 2 hours 30 minutes
        for (std::size_t count = std::min(most, end); count > 0; --count) {
            LengthReader reader;
            if (reader.read(m_words.subspan(end - count, count)))
                return Length{end - count, reader.seconds()};
        }
        return std::nullopt;
    }

    std::optional<Found> sinceUpTo(std::size_t end) const
    {
        const auto clock = end > 1 ? Clock::parse(m_words[end - 1]) : std::nullopt;
        if (!clock)
            return std::nullopt;
        const EntrySentence::Since since{*clock};
        if (hasWord(end - 1, "since"))
            return Found{end - 2, since, {}};
        const auto day = dayUpTo(end - 1);
        if (!day || !hasWord(day->begin, "since"))
            return std::nullopt;
        return Found{day->begin - 1, since, day->day};
    }

    std::optional<Found> rangeUpTo(std::size_t end) const
    {
        if (end == 0)
            return std::nullopt;
        if (const auto sides = sidesOf(m_words[end - 1]))
            return range(end - 1, sides->first, sides->second);
        if (end < 3)
            return std::nullopt;
        const std::string_view between = m_words[end - 2];
        if (between != "-" && between != enDash && between != "to")
            return std::nullopt;
        return range(end - 3, m_words[end - 3], m_words[end - 1]);
    }

    std::optional<Found> range(std::size_t begin, std::string_view first, std::string_view second) const
    {
        auto start = Clock::parse(first);
        auto end = Clock::parse(second);
        if (!start || !end || (!m_options.bareRanges && !looksLikeClock(first) && !looksLikeClock(second)))
            return std::nullopt;
        shareMeridiem(*start, *end);
        if (m_options.hour12)
            preferAfternoonEnd(*start, *end);
        Found found{afterWord(begin, "from"), std::nullopt, {}};
        if (start->time() != end->time())
            found.time = EntrySentence::Range{*start, *end};
        return found;
    }

    /// On a 12-hour clock "since 3:30" means the last time that it showed 3:30 today.
    void preferAfternoon(EntrySentence::Time &time) const
    {
        auto *since = std::get_if<EntrySentence::Since>(&time);
        if (!m_options.hour12 || since == nullptr || since->start.meridiem != Meridiem::none ||
            since->start.hours < 1 || since->start.hours > 11)
            return;
        EntrySentence::Since afternoon = *since;
        afternoon.start.meridiem = Meridiem::pm;
        if (m_calendar.date(m_today, afternoon.start.time()) <= m_now)
            time = afternoon;
    }

    std::span<const std::string> m_words;
    const EntrySentence::Options &m_options;
    Instant m_now;
    const UserTime &m_calendar;
    DayKey m_today;
};

} // namespace

ClockTime EntrySentence::TypedClock::time() const
{
    const int hour = meridiem == Meridiem::none ? hours : hours % 12 + (meridiem == Meridiem::pm ? 12 : 0);
    return {static_cast<std::uint8_t>(hour), static_cast<std::uint8_t>(minutes)};
}

std::optional<EntrySentence::TypedClock> EntrySentence::TypedClock::parse(std::string_view text)
{
    const auto time = ClockTime::parse(text);
    if (!time)
        return std::nullopt;
    TypedClock clock{time->hour, time->minute, meridiemAtEnd(asciiLowered(TextScanner::trimmed(text)))};
    if (clock.meridiem != Meridiem::none)
        clock.hours = onDial(time->hour);
    return clock;
}

std::optional<TimePhrase> TimePhrase::atEndOf(std::span<const std::string_view> line,
                                              const EntrySentence::Options &options, Instant now,
                                              const UserTime &calendar)
{
    // Most lines end in a word that no phrase ends in.
    if (line.empty() || line.back().size() > longestWord)
        return std::nullopt;
    const Words words(line);
    const auto found = PhraseReader(words, options, now, calendar).read();
    if (!found)
        return std::nullopt;
    return TimePhrase{*found->time, found->day, words.typedFrom(found->begin)};
}

std::size_t TimePhrase::refusedRangeAtEndOf(std::span<const std::string_view> line,
                                            const EntrySentence::Options &options, Instant now,
                                            const UserTime &calendar)
{
    const Words words(line);
    const auto found = PhraseReader(words, options, now, calendar).refusedRange();
    return found ? words.typedFrom(found->begin) : 0;
}

} // namespace orvane
