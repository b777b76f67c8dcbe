// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/DayKey.h"

#include <gtest/gtest.h>
#include <unordered_set>

namespace orvane {
namespace {

TEST(DayKey, ReadsWhatItWritesAndNothingElse)
{
    for (const char *text : {"2025-03-07", "1900-01-01", "9999-12-31", "2024-02-29"}) {
        const auto day = DayKey::parse(text);
        ASSERT_TRUE(day) << text;
        EXPECT_EQ(day->description(), text);
        EXPECT_TRUE(day->isValid());
    }
    for (const char *text : {"", "2025-3-7", "2025-03-07 ", " 2025-03-07", "2025-03-07T00", "20250307",
                             "2025-02-29", "2025-13-01", "2025-00-10", "2025-01-00", "1899-12-31",
                             "10000-01-01", "-025-03-07", "2025-03-0x", "2025/03/07"})
        EXPECT_FALSE(DayKey::parse(text)) << text;
}

TEST(DayKey, AcceptsOnlyRealDaysOfItsYears)
{
    EXPECT_EQ(DayKey::make(2000, 2, 29), (DayKey{2000, 2, 29}));
    EXPECT_FALSE(DayKey::make(1900, 2, 29));
    EXPECT_FALSE(DayKey::make(1899, 12, 31));
    EXPECT_FALSE(DayKey::make(10000, 1, 1));
    // Numbers that would look real if only their low bits were kept.
    EXPECT_FALSE(DayKey::make(2025, 257, 1));
    EXPECT_FALSE(DayKey::make(2025, 1, 257));
    EXPECT_FALSE(DayKey::make(2025 + 65536, 1, 1));
    EXPECT_FALSE(DayKey::make(2025, -1, 1));
}

TEST(DayKey, CountsDays)
{
    const DayKey start{1900, 1, 1};
    DayKey day = start;
    std::unordered_set<DayKey> seen;
    for (int count = 0; count < 73'050; ++count) {
        ASSERT_TRUE(seen.insert(day).second);
        ASSERT_EQ(start.adding(count), day);
        ASSERT_EQ(start.daysUntil(day), count);
        ASSERT_EQ(day.weekday(), (count + 1) % 7); // 1 January 1900 was a Monday
        const DayKey next = day.adding(1);
        ASSERT_LT(day, next);
        ASSERT_EQ(next.adding(-1), day);
        day = next;
    }
    EXPECT_EQ(day, (DayKey{2100, 1, 2}));
    EXPECT_EQ((DayKey{9999, 12, 31}).adding(1), (DayKey{10000, 1, 1}));
}

TEST(DayKeyDeathTest, ArithmeticOnNoDayStops)
{
    EXPECT_DEATH((DayKey{2025, 2, 30}).adding(1), "does not exist");
    EXPECT_DEATH((DayKey{2025, 2, 300}).weekday(), "does not exist");
    EXPECT_DEATH((DayKey{2025, 2, 3}).adding(INT64_MAX), "out of range");
    EXPECT_DEATH((DayKey{2025, 2, 3}).adding(-1'000'000), "out of range");
}

} // namespace
} // namespace orvane
