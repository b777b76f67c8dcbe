// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/UnreadWords.h"

#include "Support/DateText.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

/// "time 9:30, day tomorrow": what looks like a time or a day in the line and was not read.
std::string unread(std::string_view line)
{
    const auto reading = EntrySentence::read(line, {}, {}, instantFromIso8601("2025-03-07T12:00:00Z").value(),
                                             UserTime::utc());
    std::string text;
    for (const UnreadWords &words : UnreadWords::of(reading)) {
        const char *kind = words.kind == UnreadWords::Kind::day     ? "day "
                           : words.kind == UnreadWords::Kind::hours ? "hours "
                                                                    : "time ";
        text += (text.empty() ? "" : ", ") + (kind + words.text);
    }
    return text;
}

TEST(UnreadWords, FindsTimesThatWereNotRead)
{
    EXPECT_EQ(unread("Work 9-17"), "hours 9-17");
    EXPECT_EQ(unread("Work 9 to 17"), "hours 9 to 17");
    EXPECT_EQ(unread("Work 9 \u2013 17 yesterday"), "hours 9 \u2013 17, day yesterday");
    EXPECT_EQ(unread("Work 9-17 @acme tomorrow #nope"), "hours 9-17, day tomorrow");
    EXPECT_EQ(unread("stand-up 9:30-9:45 with Bob"), "time 9:30-9:45");
    EXPECT_EQ(unread("Lunch 9:00-9:00"), "time 9:00-9:00");
    EXPECT_EQ(unread("Call (10am), then write"), "time 10am");
    EXPECT_EQ(unread("Call since 25:00"), "time 25:00");
    EXPECT_EQ(unread("Call at 9"), "time at 9");
    EXPECT_EQ(unread("Call 5 days ago"), "time 5 days ago");
    EXPECT_EQ(unread("1h30 of calls, 90m each 15m"), "time 1h30, time 90m");
}

TEST(UnreadWords, FindsDaysThatWereNotRead)
{
    EXPECT_EQ(unread("Fix it tomorrow 9-10:30"), "day tomorrow");
    EXPECT_EQ(unread("Fix it yesterday"), "day yesterday");
    EXPECT_EQ(unread("Fix it Mon"), "day Mon");
    EXPECT_EQ(unread("Plan Monday with Bob 15m"), "day Monday");
    EXPECT_EQ(unread("Fix 2026-13-40 now"), "day 2026-13-40");
    EXPECT_EQ(unread("Fix it 31.2."), "day 31.2.");
}

TEST(UnreadWords, LeavesAloneWhatIsNoTimeForSure)
{
    for (const char *line :
         {"", "Fix the sync bug", "Read 3-4 pages", "Chapters 3-4 30m", "Draw the sun on a mat 15m",
          "Ratio 16:9 of 1/2 each", "Version 1.2.3-4", "Sat with Bob 9-10:30", "A 5 star at-9 mix",
          "Fix #2 for 90", "Work yesterday 9-10:30", "Port 8080-9090", "Meeting -", "Chapters 3-4 of @acme"})
        EXPECT_EQ(unread(line), "") << line;
}

TEST(UnreadWords, SaysHowHoursAreWrittenAsARange)
{
    const auto written = [](const char *text) {
        return UnreadWords{UnreadWords::Kind::hours, text}.asRange();
    };
    EXPECT_EQ(written("9-17"), "9:00-17:00");
    EXPECT_EQ(written("9 to 17"), "9:00-17:00");
    EXPECT_EQ(written("8\u201312"), "8:00-12:00");
}

} // namespace
} // namespace orvane
