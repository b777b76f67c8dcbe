// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/SessionTitle.h"

#include <gtest/gtest.h>

namespace orvane::sessiontitle {
namespace {

std::string repeated(std::string_view text, int times)
{
    std::string out;
    for (int i = 0; i < times; ++i)
        out += text;
    return out;
}

TEST(SessionTitleTest, IsOneLineWithoutTerminalSequences)
{
    EXPECT_EQ(of("\x1B[1;31mMend\x1B[0m the\x1B[?25l roof\x1B[ q"), "Mend the roof");
    EXPECT_EQ(of("\x1B]0;a window\x07Mend \x1B]8;;http://x\x1B\\it"), "Mend it");
    EXPECT_EQ(of(" \t Mend\r\n\nthe\xC2\xA0\xE2\x80\xA8roof\x7F \x01"), "Mend the roof");
    EXPECT_EQ(of("a\x1B[31\xC3\xA9\x1B]0;c\x1B[d"), "a [31\xC3\xA9 ]0;c")
        << "what is no whole sequence loses its control characters";
    EXPECT_EQ(of("\x1B[0"), "[0");
    EXPECT_EQ(of("a\xFF\xC3(b"), "a\xEF\xBF\xBD\xEF\xBF\xBD(b");
    EXPECT_EQ(of(std::string("\0 \x1B", 3)), "");
}

TEST(SessionTitleTest, IsCutBetweenCharacters)
{
    const std::string house = "\xF0\x9F\x8F\xA0";
    EXPECT_EQ(of(repeated(house, 100)), repeated(house, 80));
    EXPECT_EQ(of(repeated("a", 79) + " " + repeated("b", 9)), repeated("a", 79)) << "not cut to a space";
    EXPECT_EQ(of(repeated("a", 78) + "  bc"), repeated("a", 78) + " b");
    EXPECT_EQ(of(repeated("\x1B[0m", 1000) + repeated("a", 100)), repeated("a", 80));
}

TEST(SessionTitleTest, ReadsACommandAsItWasTyped)
{
    EXPECT_EQ(ofPrompt("<command-message>review</command-message>\n<command-name>/review</command-name>\n"
                       "<command-args>main  now</command-args>"),
              "/review main now");
    EXPECT_EQ(ofPrompt("<command-name>/clear</command-name><command-args></command-args>"), "/clear");
    EXPECT_EQ(ofPrompt("<command-name>/clear"), "<command-name>/clear");
    EXPECT_FALSE(isTelling("<command-name>/clear</command-name>"));
    EXPECT_FALSE(isTelling("<bash-input>ls</bash-input>"));
    EXPECT_TRUE(isTelling("see <command-name>"));
}

} // namespace
} // namespace orvane::sessiontitle
