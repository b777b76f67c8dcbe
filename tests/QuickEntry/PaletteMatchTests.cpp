// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/PaletteMatch.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using Match = PaletteMatch::Match;

std::optional<Match> found(double score, std::vector<TextRange> ranges)
{
    return Match{score, std::move(ranges)};
}

std::optional<double> scoreOf(std::string_view name, std::string_view query)
{
    const auto match = PaletteMatch::match(name, query);
    return match ? std::optional(match->score) : std::nullopt;
}

TEST(PaletteMatch, ScoresATermByTheFirstRuleThatFits)
{
    EXPECT_EQ(PaletteMatch::match("Tracker", "tracker"), found(100, {{0, 7}}));
    EXPECT_EQ(PaletteMatch::match("Tracker", "TRA"), found(80, {{0, 3}}));
    EXPECT_EQ(PaletteMatch::match("Time Tracker", "tra"), found(70, {{5, 8}}));
    EXPECT_EQ(PaletteMatch::match("Time Tracker", "tt"), found(55, {{0, 1}, {5, 6}}));
    EXPECT_EQ(PaletteMatch::match("Time Tracker", "ack"), found(35, {{7, 10}}));
    EXPECT_EQ(PaletteMatch::match("Time Tracker", "tx"), std::nullopt);

    // The first word need not begin the name, and words begin at a capital inside too.
    EXPECT_EQ(PaletteMatch::match("(Time) Tracker", "ti"), found(80, {{1, 3}}));
    EXPECT_EQ(PaletteMatch::match("timeTracker", "tr"), found(70, {{4, 6}}));
    EXPECT_EQ(PaletteMatch::match("timeTracker2 beta", "ttb"), found(55, {{0, 1}, {4, 5}, {13, 14}}));
    EXPECT_EQ(PaletteMatch::match("HTTP api", "tt"), found(35, {{1, 3}}));
    // A place at the beginning of a word counts though the same letters come earlier.
    EXPECT_EQ(PaletteMatch::match("Catalog tal", "tal"), found(70, {{8, 11}}));
    // Initials may leave words out but keep their order; one letter has none.
    EXPECT_EQ(PaletteMatch::match("Big Old Red Barn", "brb"), found(55, {{0, 1}, {8, 9}, {12, 13}}));
    EXPECT_EQ(PaletteMatch::match("Big Old Red Barn", "rob"), std::nullopt);
}

TEST(PaletteMatch, ComparesWithoutCaseAndDiacritics)
{
    EXPECT_EQ(PaletteMatch::match("Café", "cafe"), found(100, {{0, 4}}));
    EXPECT_EQ(PaletteMatch::match("cafe", "CAFÉ"), found(100, {{0, 4}}));
    EXPECT_EQ(scoreOf("Đặng Łódź Øre Ħal", "dang lodz ore hal"), 100);
    EXPECT_EQ(scoreOf("ΟΔΟΣ", "οδός"), 100);
    EXPECT_EQ(scoreOf("İstanbul", "istanbul"), 100);
    EXPECT_EQ(scoreOf("Menu…", "menu"), 100);
    // Signs that make the vowel are no diacritics.
    EXPECT_EQ(scoreOf("कु", "कि"), std::nullopt);
}

TEST(PaletteMatch, HighlightsTheNameAsItWasGiven)
{
    // A letter whose accent stands as a character of its own takes it along, and moves what comes behind it.
    EXPECT_EQ(PaletteMatch::match("Cafe\u0301 Noir", "cafe"), found(80, {{0, 5}}));
    EXPECT_EQ(PaletteMatch::match("Cafe\u0301 Noir", "noir"), found(70, {{6, 10}}));
    // An accent does not part a word.
    EXPECT_EQ(PaletteMatch::match("Cafe\u0301s", "s"), found(35, {{5, 6}}));
    // Beyond the 16 bits of a unit, a character has two.
    EXPECT_EQ(PaletteMatch::match("🚀 Start", "sta"), found(80, {{3, 6}}));
    EXPECT_EQ(PaletteMatch::match("🚀 Start", "🚀"), found(35, {{0, 2}}));
    EXPECT_EQ(PaletteMatch::match("한국 회사", "한회"), found(55, {{0, 1}, {3, 4}}));
    // Syllables that stand as the letters they are made of, as some systems write the names of files.
    const char *decomposed = "\u1112\u1161\u11AB\u1100\u116E\u11A8 \u1112\u116C\u1109\u1161"; // 한국 회사
    EXPECT_EQ(PaletteMatch::match(decomposed, "한국 회사"), found(100, {{0, 11}}));
    EXPECT_EQ(PaletteMatch::match("한국 회사", decomposed), found(100, {{0, 5}}));
    EXPECT_EQ(PaletteMatch::match(decomposed, "국"), found(35, {{3, 6}}));
    EXPECT_EQ(PaletteMatch::match(decomposed, "한회"), found(55, {{0, 3}, {7, 9}}));
    EXPECT_EQ(PaletteMatch::match("\uD558\u11AB", "한"), found(100, {{0, 2}})); // half composed
    EXPECT_EQ(PaletteMatch::match("שלום עולם", "עו"), found(70, {{5, 7}}));
    // One character that becomes two parts is highlighted whole.
    EXPECT_EQ(PaletteMatch::match("x\u09CB", "\u09C7"), found(35, {{1, 2}}));
}

TEST(PaletteMatch, TakesSeveralWordsAsOneOrEachAlone)
{
    EXPECT_EQ(PaletteMatch::match("Time Tracker", ""), found(0, {}));
    EXPECT_EQ(PaletteMatch::match("Time Tracker", " \u00A0 "), found(0, {}));
    EXPECT_EQ(PaletteMatch::match("Time Tracker", "  time   tra "), found(80, {{0, 8}}));
    EXPECT_EQ(PaletteMatch::match("Time Tracker", "tracker time"), found((70 + 80) / 2.0, {{0, 4}, {5, 12}}));
    EXPECT_EQ(PaletteMatch::match("Time Tracker", "time other"), std::nullopt);
    // Joined words in the middle of words score too little to win over each word alone.
    EXPECT_EQ(PaletteMatch::match("Overtime trap tra", "time tra"),
              found((35 + 70) / 2.0, {{4, 8}, {9, 12}}));
    // Ranges that touch or overlap become one, and a word counts as often as it was typed.
    EXPECT_EQ(PaletteMatch::match("Tracker", "tr trac"), found(80, {{0, 4}}));
    EXPECT_EQ(PaletteMatch::match("Big Tracker", "ack ack big"),
              found((35 + 35 + 80) / 3.0, {{0, 3}, {6, 9}}));
}

TEST(PaletteMatch, FindsByOtherTextsForLess)
{
    EXPECT_EQ(PaletteMatch::match("Web", {"Acme"}, "acme"), found(80, {}));
    EXPECT_EQ(PaletteMatch::match("Web", {"Acme"}, "acme web"), found(80, {{0, 3}}));
    EXPECT_EQ(PaletteMatch::match("Web", {"Acme"}, "web"), found(100, {{0, 3}}));
    // Another text has to be better even when reduced.
    EXPECT_EQ(PaletteMatch::match("Acme site", {"Acme"}, "acme"), found(80, {{0, 4}}));
    EXPECT_EQ(PaletteMatch::match("The Acme", {"Acme"}, "acme"), found(80, {}));
    EXPECT_EQ(PaletteMatch::match("Web", {"Acme", "Work"}, "we wo ac"), found(80 * 0.8, {{0, 2}}));
    EXPECT_EQ(PaletteMatch::match("Web", {"Acme"}, "web shop"), std::nullopt);
}

TEST(PaletteMatch, RanksTheBestFirstAndKeepsTheOrderOfEquals)
{
    std::vector<std::optional<Match>> matches;
    for (const char *name : {"Time Tracker", "None", "Track A", "Extra", "Track B", "Tra"})
        matches.push_back(PaletteMatch::match(name, "tra"));
    std::vector<std::size_t> rows;
    for (const auto &ranked : PaletteMatch::rank(matches)) {
        EXPECT_EQ(ranked.match, matches[ranked.row]);
        rows.push_back(ranked.row);
    }
    EXPECT_EQ(rows, (std::vector<std::size_t>{5, 2, 4, 0, 3}));
}

TEST(PaletteMatch, TakesLoneSurrogatesAsLettersOfTheirOwn)
{
    const auto name = FoldedText::ofName(std::u16string_view(u"a\xD800 b\xDC01…", 6));
    EXPECT_EQ(PaletteMatch::match(name, PaletteQuery(std::u16string_view(u"\xD800", 1))),
              found(35, {{1, 2}}));
    EXPECT_EQ(PaletteMatch::match(name, PaletteQuery(std::u16string_view(u"\xDC01", 1))),
              found(35, {{4, 5}}));
    EXPECT_EQ(PaletteMatch::match(name, PaletteQuery(std::u16string_view(u"\xD801", 1))), std::nullopt);
    EXPECT_EQ(PaletteMatch::match("a\xFF"
                                  "b",
                                  "\xFE"),
              found(35, {{1, 2}})); // both shown as U+FFFD
}

/// Each of these would take hours if some step looked at every place of the name for every place of the
/// query.
TEST(PaletteMatch, TakesLinearTimeWhateverItIsGiven)
{
    constexpr std::size_t half = 200'000;
    std::string camel;
    std::string words;
    for (std::size_t i = 0; i < half; ++i) {
        camel += i % 2 == 0 ? 'a' : 'A';
        words += "a ";
    }
    EXPECT_EQ(scoreOf(camel, std::string(half / 2, 'a') + "b"), std::nullopt);
    EXPECT_EQ(scoreOf(camel + "b", std::string(half / 2 + 1, 'a') + "b"), 70);
    EXPECT_EQ(scoreOf(words, words + "b"), std::nullopt);
    EXPECT_EQ(scoreOf(words + "b", words + "b"), 100);
    EXPECT_EQ(scoreOf(std::string(2 * half, 'a'), words), 80);
    std::string different;
    for (std::size_t i = 0; i < half / 4; ++i)
        different += std::to_string(i) + " ";
    EXPECT_EQ(scoreOf(different, different), std::nullopt); // more words than anyone types
    EXPECT_EQ(scoreOf(std::string(2 * half, 'a'), std::string(half, 'a')), 80);
}

} // namespace
} // namespace orvane
