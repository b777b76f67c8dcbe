// SPDX-License-Identifier: GPL-3.0-or-later
// Any line, at any time of a year in zones that change their clocks: what a reading says was in the line,
// names what is in the catalog and lies somewhere; a mention is a word of the line. The first four bytes
// choose the options, the zone and the time.
#include "QuickEntry/EntrySentence.h"
#include "QuickEntry/FoldedText.h"
#include "QuickEntry/UnreadTime.h"
#include "QuickEntry/UnreadWords.h"
#include "Support/Require.h"

#include <algorithm>
#include <array>

namespace {

using namespace orvane;

ProjectResponse project(const char *id, const char *name, const char *client, const char *task)
{
    ProjectResponse made;
    made.id = id;
    made.name = name;
    made.clientId = client;
    made.tasks = {{"task of " + made.id, made.id, task, true}};
    return made;
}

const SentenceCatalog &catalog()
{
    static const SentenceCatalog made({project("p1", "Website", "c1", "Design"),
                                       project("p2", "Café Noir", "c2", "Design"),
                                       project("p3", "CI/CD", "c1", "Big task")},
                                      {{"c1", "w", "Acme", false}, {"c2", "w", "Bolt", false}},
                                      {{"t1", "w", "deep-work"}, {"t2", "w", "C++"}, {"t3", "w", "$"}});
    return made;
}

struct Place {
    const char *zone;
    std::chrono::year_month_day year; ///< whose days are tried
};

constexpr auto newYear(int year)
{
    return std::chrono::year{year} / std::chrono::January / 1;
}

constexpr std::array places = {
    Place{"Etc/UTC", newYear(2025)},
    Place{"Europe/Paris", newYear(2025)},
    Place{"America/Sao_Paulo", newYear(2018)},
    Place{"Pacific/Apia", newYear(2011)},
    Place{"Australia/Lord_Howe", newYear(2024)},
    Place{"America/New_York", newYear(1900)},
};

std::string joined(const std::vector<std::string_view> &words)
{
    std::string text;
    for (const std::string_view word : words)
        text.append(text.empty() ? "" : " ").append(word);
    return text;
}

/// Whether all of these words are among the others in this order.
bool areWordsOf(std::string_view text, const std::vector<std::string_view> &line)
{
    auto next = line.begin();
    for (const std::string_view word : wordsOf(text)) {
        next = std::find(next, line.end(), word);
        if (next++ == line.end())
            return false;
    }
    return true;
}

void checkRanges(const std::vector<TextRange> &ranges, std::size_t length)
{
    std::size_t end = 0;
    for (const TextRange &range : ranges) {
        ORVANE_REQUIRE(range.start >= end && range.start < range.end, "ranges out of order");
        end = range.end;
    }
    ORVANE_REQUIRE(end <= length, "a range outside the line");
}

void checkReading(std::string_view line, const EntrySentence::Options &options, Instant now,
                  const UserTime &time)
{
    const auto reading = EntrySentence::read(line, catalog(), options, now, time);
    const auto words = wordsOf(line);
    const bool hasMark = std::ranges::find(words, "$") != words.end();
    ORVANE_REQUIRE(reading.isBillable == hasMark, "the billable mark is another");
    for (const std::string &text : {reading.description, reading.timeText}) {
        const auto kept = wordsOf(text);
        ORVANE_REQUIRE(joined(kept) == text, "not parted by single spaces");
        ORVANE_REQUIRE(std::ranges::find(kept, "$") == kept.end(), "a mark was left");
        ORVANE_REQUIRE(areWordsOf(text, words), "words that are not in the line");
    }
    for (const UnreadMention &mention : reading.unreadMentions)
        ORVANE_REQUIRE(mention.text.size() > 1 &&
                           (mention.text.front() == '@' || mention.text.front() == '#'),
                       "a mention without its sign");
    for (const UnreadWords &unread : UnreadWords::of(reading))
        ORVANE_REQUIRE(!unread.text.empty() &&
                           (unread.kind != UnreadWords::Kind::hours || !unread.asRange().empty()),
                       "words that say nothing");
    ORVANE_REQUIRE(!reading.taskID || *reading.taskID == "task of " + reading.projectID.value(),
                   "a task elsewhere");
    ORVANE_REQUIRE(reading.time.has_value() == !reading.timeText.empty(), "a time without its text");
    ORVANE_REQUIRE(reading.time.has_value() == !reading.timeRanges.empty(), "a time without its place");
    checkRanges(reading.timeRanges, utf16Length(line));
    if (const auto unread = UnreadTime::of(reading, options, now, time))
        ORVANE_REQUIRE(!reading.time && !unread->text.empty() && areWordsOf(unread->text, words) &&
                           unread->mark.empty() == (unread->why == UnreadTime::Why::noRange),
                       "an unread time that was not typed");
    ORVANE_REQUIRE(!saysNothing(reading) || !reading.description.empty(),
                   "nothing at all was not understood");
    if (!reading.time)
        return;
    const auto span = EntrySentence::resolve(*reading.time, reading.day, now, time);
    ORVANE_REQUIRE(span && isAcceptable(span->start), "a time that lies nowhere");
    ORVANE_REQUIRE(span->stop ? *span->stop > span->start : span->start <= now, "a stretch that is none");
}

void checkMention(std::u16string_view text, std::size_t cursor)
{
    const auto mention = EntrySentence::mentionAt(text, cursor);
    if (!mention)
        return;
    cursor = std::min(cursor, text.size());
    ORVANE_REQUIRE(mention->start <= cursor && cursor <= mention->end && mention->end <= text.size(),
                   "the cursor is elsewhere");
    const auto word = text.substr(mention->start, mention->end - mention->start);
    ORVANE_REQUIRE(word.front() == static_cast<char16_t>(mention->sign), "another sign");
    ORVANE_REQUIRE(std::ranges::none_of(word, isSpace), "more than a word");
    ORVANE_REQUIRE(mention->start == 0 || isSpace(text[mention->start - 1]), "not the beginning of a word");
    ORVANE_REQUIRE(mention->end == text.size() || isSpace(text[mention->end]), "not the end of a word");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 4)
        return 0;
    static constexpr std::array formats = {"dd/MM/yyyy", "MM/dd/yyyy", "yyyy-MM-dd", "dd.MM.yyyy"};
    const EntrySentence::Options options{.hour12 = (data[0] & 1) != 0,
                                         .dateFormat = formats[data[0] / 2 % formats.size()],
                                         .bareRanges = (data[0] & 8) != 0};
    const auto &[zone, year] = places[data[1] % places.size()];
    const Instant now = std::chrono::sys_days{year} + std::chrono::minutes{8 * (data[2] * 256 + data[3])};
    const std::string_view line(reinterpret_cast<const char *>(data) + 4, size - 4);
    checkReading(line, options, now, UserTime::make(zone).value());

    std::u16string wide;
    for (std::size_t i = 0; i + 1 < line.size(); i += 2)
        wide += static_cast<char16_t>(data[4 + i] | data[5 + i] << 8);
    checkMention(wide, data[3]);
    static_cast<void>(EntrySentence::mentionAt(line, data[3]));
    return 0;
}
