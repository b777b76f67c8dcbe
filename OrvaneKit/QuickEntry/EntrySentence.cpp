// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/EntrySentence.h"

#include "QuickEntry/DayReference.h"
#include "QuickEntry/FoldedText.h"
#include "QuickEntry/SentenceMentions.h"
#include "QuickEntry/TimePhrase.h"

#include <cmath>
#include <unicode/unistr.h>

namespace orvane {

namespace {

using Span = EntrySentence::Span;

void append(std::string &text, std::string_view word)
{
    if (!text.empty())
        text += ' ';
    text += word;
}

std::chrono::milliseconds wholeMilliseconds(double seconds)
{
    return std::chrono::milliseconds{std::llround(seconds * 1000)};
}

int minuteOfDay(ClockTime time)
{
    return time.hour * 60 + time.minute;
}

/// Where words lie in the line; neighbours with nothing but white space between make one range.
class RangeReader {
public:
    explicit RangeReader(std::string_view line) : m_line(line) {}

    void add(std::string_view word, bool isNeighbour)
    {
        const auto at = static_cast<std::size_t>(word.data() - m_line.data());
        m_units += utf16Length(m_line.substr(m_read, at - m_read));
        m_read = at;
        const std::size_t end = m_units + utf16Length(word);
        if (isNeighbour && !m_ranges.empty())
            m_ranges.back().end = end;
        else
            m_ranges.push_back({m_units, end});
    }

    std::vector<TextRange> ranges() && { return std::move(m_ranges); }

private:
    std::string_view m_line;
    std::size_t m_read = 0;
    std::size_t m_units = 0;
    std::vector<TextRange> m_ranges;
};

/// Clock times of days; nothing where the zone skipped the day or the years are out of bounds.
class DayClock {
public:
    DayClock(Instant now, const UserTime &calendar)
        : m_now(millisecondsFloor(now)), m_calendar(calendar), m_today(calendar.dayKey(m_now))
    {
    }

    Instant now() const { return m_now; }
    DayKey today() const { return m_today; }

    std::optional<Instant> at(DayKey day, ClockTime time) const
    {
        const Instant instant = m_calendar.date(day, time);
        // Of a day that was skipped every time lies in another day.
        if (!isAcceptable(instant) || m_calendar.dayKey(instant) != day)
            return std::nullopt;
        return instant;
    }

    std::optional<Span> range(DayKey day, const EntrySentence::Range &range) const
    {
        const ClockTime from = range.start.time();
        const ClockTime to = range.end.time();
        const bool isNight = to < from;
        if (isNight && !EntrySentence::mayBeNight(from, to))
            return std::nullopt;
        const auto start = at(day, from);
        const auto stop = at(isNight ? day.adding(1) : day, to);
        if (!start || !stop || *stop <= *start)
            return std::nullopt;
        return Span{*start, stop};
    }

    ClockTime timeOfDay() const { return m_calendar.timeOfDay(m_now); }

private:
    Instant m_now;
    const UserTime &m_calendar;
    DayKey m_today;
};

/// Gives the span of each kind of time.
struct Resolver {
    const DayClock &clock;
    std::optional<DayKey> day; ///< the one that was named

    std::optional<Span> operator()(EntrySentence::Ago ago) const
    {
        return checked({clock.now() - wholeMilliseconds(ago.seconds), std::nullopt});
    }

    std::optional<Span> operator()(const EntrySentence::Since &since) const
    {
        const ClockTime time = since.start.time();
        auto start = clock.at(day.value_or(clock.today()), time);
        if (!day && start && *start > clock.now())
            start = clock.at(clock.today().adding(-1), time);
        if (!start || *start > clock.now())
            return std::nullopt;
        return Span{*start, std::nullopt};
    }

    std::optional<Span> operator()(const EntrySentence::Range &range) const
    {
        const auto stretch = clock.range(day.value_or(clock.today()), range);
        const bool isNight = range.end.time() < range.start.time();
        if (day || !isNight || !stretch || stretch->start <= clock.now())
            return stretch;
        const auto last = clock.range(clock.today().adding(-1), range);
        const bool isLastNearer = last && clock.now() - *last->stop <= stretch->start - clock.now();
        return isLastNearer ? last : stretch;
    }

    std::optional<Span> operator()(EntrySentence::Duration duration) const
    {
        const bool isToday = !day || *day == clock.today();
        const auto stop = isToday ? clock.now() : clock.at(*day, clock.timeOfDay());
        if (!stop)
            return std::nullopt;
        return checked({*stop - wholeMilliseconds(duration.seconds), stop});
    }

    static std::optional<Span> checked(const Span &span)
    {
        const bool isInYears = isAcceptable(span.start) && (!span.stop || isAcceptable(*span.stop));
        return isInYears && (!span.stop || *span.stop > span.start) ? std::optional(span) : std::nullopt;
    }
};

} // namespace

EntrySentence::Options EntrySentence::Options::of(const PreferencesResponse &preferences)
{
    return {.hour12 = preferences.timeFormat == "12h", .dateFormat = preferences.dateFormat};
}

std::vector<EntrySentence::ShownChip> EntrySentence::Reading::chips() const
{
    std::vector<ShownChip> chips;
    // A task is shown with its project.
    if (projectID)
        chips.push_back({Chip::project, *projectID});
    if (clientID)
        chips.push_back({Chip::client, *clientID});
    for (const std::string &tag : tagIDs)
        chips.push_back({Chip::tag, tag});
    if (isBillable)
        chips.push_back({Chip::billable, {}});
    return chips;
}

EntrySentence::Reading EntrySentence::read(std::string_view text, const SentenceCatalog &catalog,
                                           const Options &options, Instant now, const UserTime &calendar)
{
    Reading reading;
    const std::vector<std::string_view> all = wordsOf(text);
    std::vector<std::string_view> words;
    std::vector<std::size_t> places; ///< of each word, its number among all
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i] == "$") {
            reading.isBillable = true;
        } else {
            words.push_back(all[i]);
            places.push_back(i);
        }
    }
    auto mentions = SentenceMentions::of(words, catalog);
    std::size_t left = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (!mentions.isTaken[i]) {
            words[left] = words[i];
            places[left++] = places[i];
        }
    }
    words.resize(left);
    reading.projectID = std::move(mentions.projectID);
    reading.taskID = std::move(mentions.taskID);
    reading.clientID = std::move(mentions.clientID);
    reading.tagIDs = std::move(mentions.tagIDs);
    reading.unreadMentions = std::move(mentions.unread);

    const auto phrase = TimePhrase::atEndOf(words, options, now, calendar);
    const std::size_t described = words.size() - (phrase ? phrase->words : 0);
    for (std::size_t i = 0; i < described; ++i)
        append(reading.description, words[i]);
    if (!phrase)
        return reading;
    reading.time = phrase->time;
    reading.day = phrase->day;
    RangeReader ranges(text);
    for (std::size_t i = described; i < words.size(); ++i) {
        append(reading.timeText, words[i]);
        ranges.add(words[i], i > described && places[i] == places[i - 1] + 1);
    }
    reading.timeRanges = std::move(ranges).ranges();
    return reading;
}

std::optional<EntrySentence::Span> EntrySentence::resolve(const Time &time, const std::optional<DayRef> &day,
                                                          Instant now, const UserTime &calendar)
{
    const DayClock clock(now, calendar);
    Resolver resolver{clock, std::nullopt};
    if (day)
        resolver.day = referencedDay(*day, clock.today());
    return std::visit(resolver, time);
}

bool EntrySentence::mayBeNight(ClockTime start, ClockTime end)
{
    constexpr int longestNight = 16 * 60;
    return minuteOfDay(end) + 24 * 60 - minuteOfDay(start) <= longestNight;
}

std::optional<EntrySentence::Mention> EntrySentence::mentionAt(std::u16string_view text, std::size_t cursor)
{
    cursor = std::min(cursor, text.size());
    std::size_t start = cursor;
    while (start > 0 && !isSpace(text[start - 1]))
        --start;
    std::size_t end = cursor;
    while (end < text.size() && !isSpace(text[end]))
        ++end;
    if (start == end || (text[start] != u'@' && text[start] != u'#'))
        return std::nullopt;
    Mention mention{.sign = text[start] == u'@' ? '@' : '#', .query = {}, .start = start, .end = end};
    const std::u16string_view query = text.substr(start + 1, end - start - 1);
    icu::UnicodeString(query.data(), static_cast<std::int32_t>(query.size())).toUTF8String(mention.query);
    return mention;
}

std::optional<EntrySentence::Mention> EntrySentence::mentionAt(std::string_view text, std::size_t cursor)
{
    const auto wide =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    return mentionAt(std::u16string_view(wide.getBuffer(), static_cast<std::size_t>(wide.length())), cursor);
}

} // namespace orvane
