// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal/ProgressLine.h"
#include "Terminal/TextTable.h"
#include "Terminal/TextWidth.h"

#include <gtest/gtest.h>
#include <sstream>

namespace orvane {
namespace {

TerminalStyle wide(int width)
{
    return {.width = width};
}

TextTable sample()
{
    TextTable table({{}, {.alignsRight = true}, {.shrinksTo = 8}, {.shrinksTo = 6}});
    table.add({TextCell("a1"), TextCell("0:05"), TextCell("Write the README"), TextCell("Website")});
    table.add({TextCell("b2"), TextCell("12:30"), TextCell("日本語"), TextCell()});
    return table;
}

TEST(TextTable, AlignsColumnsAndEndsLinesWithoutSpaces)
{
    EXPECT_EQ(sample().render(wide(0)), "  a1   0:05  Write the README  Website\n"
                                        "  b2  12:30  日本語\n");
}

TEST(TextTable, ShrinksTheWidestColumnsAndNoneBelowItsLeast)
{
    EXPECT_EQ(sample().render(wide(37)), "  a1   0:05  Write the READ…  Website\n"
                                         "  b2  12:30  日本語\n");
    EXPECT_EQ(sample().render(wide(30)), "  a1   0:05  Write t…  Website\n"
                                         "  b2  12:30  日本語\n");
    TextTable kept({{.shrinksTo = 8, .shrinksLast = true}, {.shrinksTo = 6}}, 0);
    kept.add({TextCell("Write the README"), TextCell("Website")});
    EXPECT_EQ(kept.render(wide(24)), "Write the README  Websi…\n") << "the other column goes first";
    EXPECT_EQ(kept.render(wide(20)), "Write the R…  Websi…\n");
}

TEST(TextTable, PutsBelowTheLineWhatHasNoRoomInIt)
{
    TextTable table = sample();
    TextCell place("Library of ", {.bold = true});
    place.runs.push_back({"everything", {.dim = true}});
    table.add({TextCell("c3"), TextCell("1:00"), TextCell("Answer mail"), place});
    EXPECT_EQ(table.render(wide(24)), "  a1   0:05\n    Write the README\n    Website\n"
                                      "  b2  12:30\n    日本語\n"
                                      "  c3   1:00\n    Answer mail\n    Library of\n    everything\n");
    for (int width = 16; width < 60; ++width) {
        std::istringstream lines(table.render(wide(width)));
        for (std::string line; std::getline(lines, line);)
            ASSERT_LE(displayWidth(line), width) << line;
        EXPECT_LE(table.width(wide(width)), width);
    }
}

TEST(TextTable, LetsWordsGoOnBelowInAColumnThatWraps)
{
    TextTable table(
        {{}, {.shrinksTo = 10, .wraps = true}, {.shrinksTo = 6, .shrinksLast = true, .wraps = true}});
    TextCell place("● ");
    place.runs.push_back({"Website · review"});
    table.add({TextCell("a1"), TextCell("Write the README of everything"), place});
    table.add({TextCell("b2"), TextCell("Mail"), TextCell()});
    EXPECT_EQ(table.render(wide(40)), "  a1  Write the       ● Website · review\n"
                                      "      README of\n"
                                      "      everything\n"
                                      "  b2  Mail\n");
    EXPECT_EQ(table.render(wide(29)), "  a1  Write the   ● Website ·\n"
                                      "      README of   review\n"
                                      "      everything\n"
                                      "  b2  Mail\n")
        << "a dot stays with its name";
    EXPECT_EQ(table.render(wide(24)), "  a1\n    Write the README of\n    everything\n"
                                      "    ● Website · review\n"
                                      "  b2\n    Mail\n")
        << "no word is cut for want of columns";
}

TEST(TextWidth, KeepsACommandOnALineToBeCopied)
{
    const std::string needs = "It needs its time, as in: orvane add \"A b 9:30\" or: orvane add \"C 15m\"";
    EXPECT_EQ(wrapped(needs, 51),
              "It needs its time, as in: orvane add \"A b 9:30\" or:\norvane add \"C 15m\"");
    EXPECT_EQ(wrapped(needs, 40),
              "It needs its time, as in:\norvane add \"A b 9:30\" or:\norvane add \"C 15m\"");
    EXPECT_EQ(wrapped("To sign in: orvane --server URL login. To go back: orvane logout.", 32),
              "To sign in:\norvane --server URL login. To go\nback: orvane logout.");
    // One that has no room is broken as a shell reads it, but not within what would become part of a text.
    EXPECT_EQ(wrapped("  orvane add --tag \"a b\" --start 9:30", 22),
              "  orvane add --tag \\\n  \"a b\" --start 9:30");
    EXPECT_EQ(wrapped("So: orvane add --description \"Write the README\" -t a", 18),
              "So:\norvane add \\\n--description \\\n\"Write the\nREADME\" -t a");
    EXPECT_EQ(wrapped("codex mcp add orvane --url http://127.0.0.1:42037/mcp", 40),
              "codex mcp add orvane --url \\\nhttp://127.0.0.1:42037/mcp");
    EXPECT_EQ(wrapped("as orvane outbox lists it", 12), "as orvane\noutbox lists\nit") << "which is prose";
}

TEST(TextWidth, BreaksLinesBetweenWords)
{
    EXPECT_EQ(wrapped("Nothing tracked today.\n", 10), "Nothing\ntracked\ntoday.\n");
    EXPECT_EQ(wrapped("\x1b[1mNothing\x1b[0m at all", 10), "\x1b[1mNothing\x1b[0m at\nall");
    EXPECT_EQ(wrapped("  /a/long/folder (not there)\n  /b", 18), "  /a/long/folder\n  (not there)\n  /b");
    EXPECT_EQ(wrapped("as it is in a pipe", 0), "as it is in a pipe");
    EXPECT_EQ(wordLines("Fix the synchronisation bug", 7),
              (std::vector<std::string>{"Fix the", "synchr…", "bug"}));
}

TEST(TextTable, LeavesOutColumnsThatAreEmptyEverywhere)
{
    TextTable table({{}, {}, {}}, 0);
    table.add({TextCell("a"), TextCell(), TextCell("b")});
    EXPECT_EQ(table.render(wide(0)), "a  b\n");
}

TEST(TextTable, CutsStyledRunsAsOneText)
{
    TextCell cell("Website", {.bold = true});
    cell.runs.push_back({" · docs", {.dim = true}});
    EXPECT_EQ(cell.truncated(20).render(wide(0)), "Website · docs");
    EXPECT_EQ(cell.truncated(9).render(wide(0)), "Website…");
    EXPECT_EQ(cell.truncated(7).render(wide(0)), "Websit…")
        << "a full first run still says that more follows";
    const TerminalStyle colour{.width = 80, .isTerminal = true, .hasColour = true};
    EXPECT_EQ(cell.truncated(10).render(colour), "\x1b[1mWebsite\x1b[0m\x1b[2m ·…\x1b[0m");
}

TEST(TextTable, StylesOnlyWhatTheTerminalHas)
{
    const TextStyle style{.bold = true, .colour = TextStyle::Colour::green, .ownColour = 0x3b82f6};
    EXPECT_EQ(TerminalStyle{}.apply("x", style), "x");
    EXPECT_EQ((TerminalStyle{.isTerminal = true, .hasColour = true}.apply("x", style)), "\x1b[1;32mx\x1b[0m");
    EXPECT_EQ((TerminalStyle{.isTerminal = true, .hasColour = true, .hasAllColours = true}.apply("x", style)),
              "\x1b[1;32;38;2;59;130;246mx\x1b[0m");
    EXPECT_EQ(colourFromText("#3b82f6"), 0x3b82f6U);
    // As near as the terminal comes to it.
    const TextStyle own{.ownColour = 0x3b82f6};
    EXPECT_EQ((TerminalStyle{.hasColour = true, .hasPalette = true}.apply("x", own)),
              "\x1b[38;5;69mx\x1b[0m");
    EXPECT_EQ((TerminalStyle{.hasColour = true}.apply("x", own)), "\x1b[34mx\x1b[0m");
    for (const char *text : {"", "3b82f6", "#3b82f", "#3b82fg", "#3b82f6a", "red"})
        EXPECT_EQ(colourFromText(text), std::nullopt) << text;
}

TEST(TextTable, SetsTwoThingsOutOnOneLine)
{
    EXPECT_EQ(alignedLine(TextCell("Today"), TextCell("3:25"), 14, wide(0)), "Today     3:25\n");
    EXPECT_EQ(alignedLine(TextCell("A long heading"), TextCell("3:25"), 14, wide(14)), "A long…   3:25\n");
}

TEST(ProgressText, DrawsABarOnceTheExtentIsKnown)
{
    EXPECT_EQ(progressText("Sending", 5, 10, 3, 30), "Sending 5/10 [#######        ]");
    EXPECT_EQ(progressText("Sending", 10, 10, 3, 30), "Sending 10/10 [##############]");
    EXPECT_EQ(progressText("Starting", 0, 0, 1, 30), "/ Starting");
    for (int width = 1; width < 40; ++width) {
        EXPECT_LE(displayWidth(progressText("Sending changes", 7, 9, 0, width)), width);
        EXPECT_LE(displayWidth(progressText("Starting the server", 0, 0, 0, width)), width);
    }
}

} // namespace
} // namespace orvane
