// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/ClockTime.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

ClockTime at(int hour, int minute)
{
    return {static_cast<std::uint8_t>(hour), static_cast<std::uint8_t>(minute)};
}

TEST(ClockTime, Formats)
{
    EXPECT_EQ(ClockTime::format(9, 5, false), "09:05");
    EXPECT_EQ(ClockTime::format(17, 30, false), "17:30");
    EXPECT_EQ(ClockTime::format(0, 0, true), "12:00 am");
    EXPECT_EQ(ClockTime::format(12, 30, true), "12:30 pm");
    EXPECT_EQ(ClockTime::format(23, 59, true), "11:59 pm");
    EXPECT_EQ(at(9, 5).text(true), "9:05 am");
}

TEST(ClockTime, Reads)
{
    struct Case {
        const char *text;
        int hour;
        int minute;
    };
    for (const auto &[text, hour, minute] : {
             Case{"930", 9, 30},       Case{"9:30", 9, 30},   Case{"9.30", 9, 30},
             Case{"9,30", 9, 30},      Case{"9h30", 9, 30},   Case{"9 30", 9, 30},
             Case{"9 : 30", 9, 30},    Case{"09:30", 9, 30},  Case{"0930", 9, 30},
             Case{"1745", 17, 45},     Case{"9", 9, 0},       Case{"9:", 9, 0},
             Case{"9h", 9, 0},         Case{"9:5", 9, 5},     Case{"0", 0, 0},
             Case{"000", 0, 0},        Case{"23:59", 23, 59}, Case{"930p", 21, 30},
             Case{"930 pm", 21, 30},   Case{"12am", 0, 0},    Case{"12a", 0, 0},
             Case{"12p", 12, 0},       Case{"7p", 19, 0},     Case{"7 P.M.", 19, 0},
             Case{"9:30 p.m", 21, 30}, Case{"9:30a.", 9, 30}, Case{"1230a", 0, 30},
             Case{"9. p", 21, 0},      Case{" 9:30 ", 9, 30}, Case{"9:30\xE2\x80\xAFpm", 21, 30},
         })
        EXPECT_EQ(ClockTime::parse(text), at(hour, minute)) << text;
}

TEST(ClockTime, RefusesWhatIsNoTimeOfDay)
{
    for (const char *text :
         {"",        " ",     "-",    "13pm",   "0am",   "9:75",  "24",    "2400",  "975",  "99",
          "12345",   "9:300", "930:", "930:15", "a",     "pm",    "9x",    "9:30x", "9-30", "9am m",
          "9:30:15", "-9",    "9:-3", "9pp",    "9..30", "9hh30", "9 3 0", "9\xC2", "now"})
        EXPECT_FALSE(ClockTime::parse(text)) << text;
    EXPECT_FALSE(ClockTime::parse(std::string(100'000, ' ') + "x"));
}

TEST(ClockTime, ReadsBackEveryMinuteItShows)
{
    for (int minute = 0; minute < 1440; ++minute) {
        for (const bool hour12 : {false, true})
            ASSERT_EQ(ClockTime::parse(ClockTime::format(minute / 60, minute % 60, hour12)),
                      at(minute / 60, minute % 60));
    }
}

TEST(ClockTime, ShiftsPastMidnight)
{
    EXPECT_EQ(at(0, 10).shifted(-15), at(23, 55));
    EXPECT_EQ(at(23, 50).shifted(15), at(0, 5));
    EXPECT_EQ(at(12, 0).shifted(-1440 * 1000), at(12, 0));
    EXPECT_EQ(at(0, 0).shifted(INT64_MIN), at(0, 0).shifted(INT64_MIN % 1440));
}

TEST(ClockTimeDeathTest, StopsOnNumbersThatAreNoTime)
{
    EXPECT_DEATH(at(23, 50).shifted(INT64_MAX), "out of range");
    EXPECT_DEATH(ClockTime::format(24, 0, false), "no time of day");
}

} // namespace
} // namespace orvane
