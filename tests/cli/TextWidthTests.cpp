// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal/TextWidth.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(TextWidth, CountsColumnsAsATerminalDoes)
{
    struct Case {
        const char *text;
        int width;
    };
    for (const auto &[text, width] : {
             Case{"", 0}, Case{"Write the README", 16}, Case{"Überblick", 9},
             Case{"U\u0308berblick", 9}, // the mark of its own takes no column
             Case{"日本語", 6}, Case{"ｗｉｄｅ", 8}, Case{"café – naïve", 12}, Case{"🙂", 2},
             Case{"👍🏽", 2},               // a skin tone belongs to the hand
             Case{"👨‍👩‍👧", 2}, // joined into one
             Case{"🇫🇷🇩🇪", 4},               // two flags of two signs each
             Case{"☎\uFE0F", 2},            // widened by the emoji variant
         })
        EXPECT_EQ(displayWidth(text), width) << text;
}

TEST(TextWidth, CutsWithAnEllipsisThatFits)
{
    EXPECT_EQ(truncatedToWidth("Write the README", 16), "Write the README");
    EXPECT_EQ(truncatedToWidth("Write the README", 15), "Write the READ…");
    EXPECT_EQ(truncatedToWidth("Write the README", 7), "Write…") << "no space before the ellipsis";
    EXPECT_EQ(truncatedToWidth("日本語テキスト", 6), "日本…");
    EXPECT_EQ(truncatedToWidth("日本語テキスト", 5), "日本…");
    EXPECT_EQ(truncatedToWidth("ae\u0301iou", 3), "ae\u0301…") << "a character keeps its mark";
    EXPECT_EQ(truncatedToWidth("👨‍👩‍👧👨‍👩‍👧", 3), "👨‍👩‍👧…");
    EXPECT_EQ(truncatedToWidth("abc", 1), "…");
    EXPECT_EQ(truncatedToWidth("abc", 0), "");
    for (int width = 1; width < 20; ++width)
        EXPECT_LE(displayWidth(truncatedToWidth("a日🙂e\u0301☎\uFE0F🇫🇷 and so on", width)), width);
}

TEST(TextWidth, TakesAwayWhatWouldDriveTheTerminal)
{
    EXPECT_EQ(printable("two\nlines\tand \x1b[31mred\x7f"), "two lines and  [31mred ");
    EXPECT_EQ(printable("\u202Egnp.exe\u2066x"), "gnp.exex") << "nothing is written backwards";
    EXPECT_EQ(printable("\u009B31m"), " 31m") << "the one-character form of the escape too";
    EXPECT_EQ(printable("ok\xff!"), "ok\uFFFD!");
    EXPECT_EQ(printable("日本 – ☎"), "日本 – ☎");
}

} // namespace
} // namespace orvane
