// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal/ProgressLine.h"
#include "Terminal/TextTable.h"
#include "Terminal/TextWidth.h"

#include <gtest/gtest.h>

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
    for (int width = 29; width < 45; ++width) {
        for (const std::string &line : sample().lines(wide(width)))
            EXPECT_LE(displayWidth(line), width);
    }
    EXPECT_EQ(sample().width(wide(10)), sample().width(wide(20)))
        << "what is left does not fit, but can be read";
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
