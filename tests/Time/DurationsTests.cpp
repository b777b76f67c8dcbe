// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/Durations.h"

#include <clocale>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace orvane {
namespace {

using Format = Durations::Format;

TEST(Durations, FormatsEachWay)
{
    struct Case {
        double seconds;
        const char *hms;
        const char *hm;
        const char *decimal;
        const char *label;
    };
    for (const auto &[seconds, hms, hm, decimal, label] : {
             Case{7509, "2:05:09", "2:05", "2.09 h", "2h 05m"},
             Case{-5, "0:00:00", "0:00", "0.00 h", "0m"},
             Case{-0.25, "0:00:00", "0:00", "0.00 h", "0m"},
             Case{59.999, "0:00:59", "0:00", "0.02 h", "0m"},
             Case{3599.9, "0:59:59", "0:59", "1.00 h", "59m"},
             Case{3600, "1:00:00", "1:00", "1.00 h", "1h 00m"},
             Case{5400, "1:30:00", "1:30", "1.50 h", "1h 30m"},
             Case{360'000, "100:00:00", "100:00", "100.00 h", "100h 00m"},
         }) {
        EXPECT_EQ(Durations::format(seconds, Format::hms), hms);
        EXPECT_EQ(Durations::format(seconds, Format::hm), hm);
        EXPECT_EQ(Durations::format(seconds, Format::decimal), decimal);
        EXPECT_EQ(Durations::shortLabel(seconds), label);
    }
}

TEST(Durations, NamesItsFormats)
{
    for (const Format format : Durations::formats)
        EXPECT_EQ(Durations::formatFromText(Durations::text(format)), format);
    EXPECT_EQ(Durations::formatFromText("decimal"), Format::decimal);
    EXPECT_FALSE(Durations::formatFromText("HMS"));
    EXPECT_FALSE(Durations::formatFromText(""));
}

TEST(Durations, Reads)
{
    struct Case {
        const char *text;
        double seconds;
    };
    for (const auto &[text, seconds] : {
             Case{"1:30", 5400},
             Case{"1:5", 3900},
             Case{"0:00:07", 7},
             Case{"100:59:59", 363'599},
             Case{"1h", 3600},
             Case{"1.5h", 5400},
             Case{"1,25 h", 4500},
             Case{"1h30m", 5400},
             Case{"1 h 30 min 15 s", 5415},
             Case{"1H 30MIN", 5400},
             Case{"90m", 5400},
             Case{"90 min", 5400},
             Case{"45s", 45},
             Case{"2h 5s", 7205},
             Case{"1.5", 5400},
             Case{"0,1", 360},
             Case{"15", 900},
             Case{"0", 0},
             Case{"  90\t", 5400},
             Case{"\xC2\xA0"
                  "1h\xE2\x80\xAF"
                  "30m\xC2\xA0",
                  5400}, // no-break spaces
             Case{"100000h", Durations::longest},
             Case{"0.000000000000000000000000000000001h", 0},
         })
        EXPECT_EQ(Durations::parse(text), seconds) << text;
}

TEST(Durations, RefusesWhatIsNoLength)
{
    for (const char *text : {"",
                             " ",
                             "-",
                             "-5",
                             "abc",
                             "1:60",
                             "1:30:60",
                             "1:300",
                             "1:30:",
                             ":30",
                             "1:",
                             "1h 30",
                             "30m 1h",
                             "5s 3m",
                             "1h 2h",
                             "1.5m",
                             "1.h",
                             ".5h",
                             ".5",
                             "1.",
                             "1..5",
                             "1.5.2",
                             "1 5",
                             "1e3",
                             "inf",
                             "nan",
                             "0x10",
                             "1hm",
                             "m",
                             "5mi",
                             "5 minutes",
                             "1h-5m",
                             "+5",
                             "1h\n;",
                             "100001h",
                             "99999999999",
                             "6000001",
                             "١",
                             "5\xC2",
                             "\xFF",
                             "99999999999999999999999999999999999999999999:00"})
        EXPECT_FALSE(Durations::parse(text)) << text;
    EXPECT_FALSE(Durations::parse(std::string(100'000, '9')));
    EXPECT_FALSE(Durations::parse(std::string("1\0h", 3)));
}

TEST(Durations, UsesAPointWhateverTheSystemsLanguage)
{
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    // Where no such locale is installed this changes nothing, and the expectation holds all the same.
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    EXPECT_EQ(Durations::format(5400, Format::decimal), "1.50 h");
    EXPECT_EQ(Durations::parse("1.5"), 5400);
    std::setlocale(LC_NUMERIC, before.c_str());
}

TEST(DurationsDeathTest, ALengthIsFiniteAndFits)
{
    EXPECT_DEATH(Durations::format(std::numeric_limits<double>::quiet_NaN(), Format::hms), "out of range");
    EXPECT_DEATH(Durations::format(std::numeric_limits<double>::infinity(), Format::hms), "out of range");
    EXPECT_DEATH(Durations::shortLabel(0x1p63), "out of range");
}

} // namespace
} // namespace orvane
