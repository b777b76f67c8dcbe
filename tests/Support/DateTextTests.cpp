// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/DateText.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace orvane {
namespace {

using namespace std::chrono;

Instant at(int y, unsigned m, unsigned d, microseconds clock = {})
{
    return Instant{sys_days{year{y} / month{m} / day{d}}} + clock;
}

TEST(DateText, writesMillisecondsOfUtcCuttingFinerOnes)
{
    EXPECT_EQ(iso8601Text(at(2026, 3, 1, 9h + 30min + 123'999us)), "2026-03-01T09:30:00.123Z");
    EXPECT_EQ(iso8601Text(at(1969, 12, 31, 23h + 59min + 59s + 999'999us)), "1969-12-31T23:59:59.999Z");
    EXPECT_EQ(iso8601Text(earliestInstant), "1900-01-01T00:00:00.000Z");
    EXPECT_EQ(iso8601Text(instantLimit - 1us), "9999-12-31T23:59:59.999Z");
}

TEST(DateText, readsTheFormsOfAnInstant)
{
    const Instant expected = at(2026, 3, 1, 9h + 30min);
    for (const char *text :
         {"2026-03-01T09:30:00Z", "2026-03-01t09:30:00z", "2026-03-01T09:30:00.0Z",
          "2026-03-01T11:30:00+02:00", "2026-03-01T11:30:00+0200", "2026-02-28T15:30:00-18:00",
          "2026-03-01T09:30:00.000000999Z", "2026-03-01T09:30:00+00:00", "2026-03-01T09:30:00-00:00"})
        EXPECT_EQ(instantFromIso8601(text), expected) << text;

    EXPECT_EQ(instantFromIso8601("2026-03-01T09:30:00.1Z"), expected + 100ms);
    EXPECT_EQ(instantFromIso8601("2026-03-01T09:30:00.123456789012345678901234567890Z"), expected + 123ms);
    EXPECT_EQ(instantFromIso8601("2024-02-29T00:00:00Z"), at(2024, 2, 29));
    EXPECT_EQ(instantFromIso8601("1900-01-01T00:00:00Z"), earliestInstant);
    EXPECT_EQ(instantFromIso8601("9999-12-31T23:59:59.999Z"), instantLimit - 1ms);
}

TEST(DateText, refusesWhatIsNoInstant)
{
    for (const char *text :
         {"", "2026-03-01", "2026-03-01T09:30:00", "2026-03-01 09:30:00Z", "2026-03-01T09:30Z",
          "2026-03-01T09:30:00Zx", "2026-03-01T09:30:00.Z", "2026-03-01T09:30:00,5Z", " 2026-03-01T09:30:00Z",
          "2026-13-01T00:00:00Z", "2026-00-01T00:00:00Z", "2026-02-29T00:00:00Z", "2100-02-29T00:00:00Z",
          "2026-04-31T00:00:00Z", "2026-03-00T00:00:00Z", "2026-03-01T24:00:00Z", "2026-03-01T09:60:00Z",
          "2026-03-01T09:30:60Z", "2026-03-01T09:30:00+19:00", "2026-03-01T09:30:00+02:60",
          "2026-03-01T09:30:00+2", "2026-3-1T09:30:00Z", "02026-03-01T09:30:00Z", "+2026-03-01T09:30:00Z",
          "-026-03-01T09:30:00Z", "1899-12-31T23:59:59Z", "0000-01-01T00:00:00Z",
          // The offset carries these out of the accepted years.
          "1900-01-01T00:00:00+01:00", "9999-12-31T23:30:00-01:00"})
        EXPECT_EQ(instantFromIso8601(text), std::nullopt) << text;
}

TEST(DateText, everyTruncationOfAnInstantIsRefused)
{
    const std::string text = "2026-03-01T09:30:00.123+02:00";
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_EQ(instantFromIso8601(text.substr(0, length)), std::nullopt) << length;
}

TEST(DateText, secondsSince2001GiveBackEveryMillisecond)
{
    std::mt19937_64 random(2001);
    const auto first = millisecondsSinceEpoch(earliestInstant);
    const auto last = millisecondsSinceEpoch(instantLimit) - 1;
    std::uniform_int_distribution<std::int64_t> anyTime(first, last);
    for (int i = 0; i < 20'000; ++i) {
        const Instant instant = instantFromMilliseconds(anyTime(random));
        ASSERT_EQ(instantFromSecondsSince2001(secondsSince2001(instant)), instant) << iso8601Text(instant);
        ASSERT_EQ(instantFromIso8601(iso8601Text(instant)), instant) << iso8601Text(instant);
    }
    EXPECT_EQ(instantFromSecondsSince2001(secondsSince2001(earliestInstant)), earliestInstant);
    EXPECT_EQ(instantFromSecondsSince2001(secondsSince2001(instantLimit - 1ms)), instantLimit - 1ms);
}

TEST(DateText, secondsSince2001GiveBackEveryMicrosecondOfOurTime)
{
    std::mt19937_64 random(2069);
    std::uniform_int_distribution<std::int64_t> ourTime(at(1934, 1, 1).time_since_epoch().count(),
                                                        at(2069, 1, 1).time_since_epoch().count());
    for (int i = 0; i < 20'000; ++i) {
        const Instant instant{microseconds{ourTime(random)}};
        ASSERT_EQ(instantFromSecondsSince2001(secondsSince2001(instant)), instant);
    }
}

TEST(DateText, refusesSecondsThatAreNoAcceptableInstant)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double seconds : {infinity, -infinity, std::nan(""), 1e300, -1e300, 1e12, -1e11,
                                 secondsSince2001(instantLimit), secondsSince2001(earliestInstant) - 0.001})
        EXPECT_EQ(instantFromSecondsSince2001(seconds), std::nullopt) << seconds;
}

TEST(DateText, readsDaysThatExist)
{
    const year_month_day leapDay{year{2024}, February, day{29}};
    EXPECT_EQ(dayFromText("2024-02-29"), leapDay);
    EXPECT_EQ(dayText(leapDay), "2024-02-29");
    for (const char *text : {"", "2026-02-29", "2026-2-9", "2026-02-28T", "2026/02/28", "1899-12-31",
                             "2026-02-28 ", "20260228", "2026-02"})
        EXPECT_EQ(dayFromText(text), std::nullopt) << text;
}

} // namespace
} // namespace orvane
