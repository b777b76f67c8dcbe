// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/TypedMoment.h"

#include "ClockOffset.h"
#include "Time/TypedDay.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

Instant at(const char *text)
{
    return instantFromIso8601(text).value();
}

/// Paris, on Wednesday 4 March 2026 at 10:00 local time.
class TypedMomentTest : public ::testing::Test {
protected:
    std::optional<TypedMoment> parse(const char *text) const { return TypedMoment::parse(text, time); }

    ClockOffset clock{"2026-03-04T09:00:00Z"};
    UserTime time = UserTime::make("Europe/Paris").value();
};

TEST_F(TypedMomentTest, ReadsClocksAgesAndFullDates)
{
    EXPECT_EQ(parse("930").value().clock, (ClockTime{9, 30}));
    EXPECT_EQ(parse(" 9:30PM ").value().clock, (ClockTime{21, 30}));
    EXPECT_EQ(parse("Now").value(), (TypedMoment{.instant = at("2026-03-04T09:00:00Z"), .isFromNow = true}));
    EXPECT_EQ(parse("2026-03-01 9:30").value().instant, at("2026-03-01T08:30:00Z")) << "in the user's zone";
    EXPECT_EQ(parse("2026-03-01t9:30 pm").value().instant, at("2026-03-01T20:30:00Z"));
    EXPECT_EQ(parse("2026-03-01T09:30:15.250z").value().instant, at("2026-03-01T09:30:15.250Z"));
    EXPECT_EQ(parse("2026-03-01T09:30:00+02:00").value().instant, at("2026-03-01T07:30:00Z"));
    for (const char *text : {"", "noon", "25:00", "9:75", "-", "2026-02-30 9:30", "2026-03-01", "2026-03-01 ",
                             "2026-03-01x9:30", "1899-12-31T00:00:00Z"})
        EXPECT_FALSE(parse(text)) << text;
}

TEST_F(TypedMomentTest, CountsAgesFromNow)
{
    const ClockHold hold;
    for (const char *text : {"-90", "-1:30", "-1.5H", "-1h 30m"})
        EXPECT_EQ(parse(text).value().instant, AppClock::now() - std::chrono::minutes{90}) << text;
    EXPECT_FALSE(parse("-2000000h")) << "before the years that are accepted";
}

TEST_F(TypedMomentTest, ADateInAnHourThatIsSkippedOrComesTwiceIsTakenOnce)
{
    EXPECT_EQ(parse("2026-03-29 2:30").value().instant, at("2026-03-29T01:30:00Z")) << "moved on by the gap";
    EXPECT_EQ(parse("2026-10-25 2:30").value().instant, at("2026-10-25T00:30:00Z")) << "the first of the two";
}

TEST(TypedDay, IsADateOrTheLastSuchDay)
{
    const DayKey wednesday{2026, 3, 4};
    const auto day = [&](const char *text) { return parseTypedDay(text, wednesday).value().description(); };
    EXPECT_EQ(day("today"), "2026-03-04");
    EXPECT_EQ(day(" Yesterday"), "2026-03-03");
    EXPECT_EQ(day("wednesday"), "2026-03-04");
    EXPECT_EQ(day("THU"), "2026-02-26");
    EXPECT_EQ(day("thurs"), "2026-02-26");
    EXPECT_EQ(day("tue"), "2026-03-03");
    EXPECT_EQ(day("2026-01-31"), "2026-01-31");
    EXPECT_EQ(parseTypedDay("sun", {2026, 1, 1}), (DayKey{2025, 12, 28})) << "over the year's beginning";
    for (const char *text : {"", "2026-02-30", "tomorrow", "w", "we", "sundays", "26-01-31"})
        EXPECT_FALSE(parseTypedDay(text, wednesday)) << text;
}

} // namespace
} // namespace orvane
