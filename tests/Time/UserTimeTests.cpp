// SPDX-License-Identifier: GPL-3.0-or-later
#include "ClockOffset.h"
#include "Time/DateFormatters.h"
#include "Time/UserTime.h"

#include <array>

namespace orvane {
namespace {

Instant utc(std::string_view iso)
{
    return instantFromIso8601(iso).value();
}

UserTime zone(std::string_view name, int weekStart = 1, bool hour12 = false)
{
    return UserTime::make(name, weekStart, hour12).value();
}

DayKey day(std::string_view text)
{
    return DayKey::parse(text).value();
}

TEST(UserTime, IsMadeOfKnownZonesAndWeekdays)
{
    for (const char *name :
         {"", "Mars/Olympus", "Etc/Unknown", "GMT+5:30", "XYZ5", "Europe", "Europe/paris", "../etc/passwd"})
        EXPECT_FALSE(UserTime::make(name)) << name;
    EXPECT_FALSE(UserTime::make(std::string("UTC\0", 4)));
    EXPECT_FALSE(UserTime::make("UTC", -1));
    EXPECT_FALSE(UserTime::make("UTC", 7));

    const UserTime paris = zone("Europe/Paris");
    EXPECT_EQ(paris.timeZone(), "Europe/Paris");
    EXPECT_EQ(paris, zone("Europe/Paris"));
    EXPECT_NE(paris, zone("Europe/Berlin"));
    EXPECT_NE(paris, zone("Europe/Paris", 0));
    EXPECT_NE(paris, zone("Europe/Paris", 1, true));
    EXPECT_NE(paris, UserTime::make("Europe/Paris", 1, false, Durations::Format::hm));
}

TEST(UserTime, TellsTheDayAndTheTimeOfDay)
{
    const Instant instant = utc("2025-03-07T23:30:59.999Z");
    EXPECT_EQ(zone("UTC").dayKey(instant), day("2025-03-07"));
    EXPECT_EQ(zone("Asia/Tokyo").dayKey(instant), day("2025-03-08"));
    EXPECT_EQ(zone("Asia/Kolkata").timeOfDay(instant), (ClockTime{5, 0}));
    EXPECT_EQ(zone("America/Los_Angeles").timeOfDay(instant), (ClockTime{15, 30}));
    // Before 1970 too, where a negative count must not be cut towards zero.
    EXPECT_EQ(zone("UTC").dayKey(utc("1969-12-31T23:59:59.999Z")), day("1969-12-31"));
    EXPECT_EQ(zone("UTC").timeOfDay(utc("1969-12-31T23:59:59.999Z")), (ClockTime{23, 59}));
}

TEST(UserTime, FollowsDaylightSavingOnBothHemispheres)
{
    const UserTime paris = zone("Europe/Paris");
    EXPECT_EQ(
        secondsBetween(paris.dayInterval(day("2025-03-30")).from, paris.dayInterval(day("2025-03-30")).to),
        23 * 3600);
    EXPECT_EQ(
        secondsBetween(paris.dayInterval(day("2025-10-26")).from, paris.dayInterval(day("2025-10-26")).to),
        25 * 3600);
    EXPECT_EQ(paris.date(day("2025-03-30"), 2, 30), utc("2025-03-30T01:30:00Z")); // skipped: shows 3:30
    EXPECT_EQ(paris.date(day("2025-10-26"), 2, 30), utc("2025-10-26T00:30:00Z")); // twice: the first one
    EXPECT_EQ(paris.adding(1, day("2025-03-29")), day("2025-03-30"));
    EXPECT_EQ(paris.adding(1, day("2025-10-25")), day("2025-10-26"));

    const UserTime sydney = zone("Australia/Sydney");
    EXPECT_EQ(secondsBetween(sydney.startOfDay(day("2025-04-06")), sydney.startOfDay(day("2025-04-07"))),
              25 * 3600);
    EXPECT_EQ(secondsBetween(sydney.startOfDay(day("2025-10-05")), sydney.startOfDay(day("2025-10-06"))),
              23 * 3600);

    const UserTime howe = zone("Australia/Lord_Howe"); // half an hour of daylight saving
    EXPECT_EQ(secondsBetween(howe.startOfDay(day("2025-04-06")), howe.startOfDay(day("2025-04-07"))),
              24.5 * 3600);
}

TEST(UserTime, BeginsADayAfterTheGapThatSwallowsItsMidnight)
{
    struct Case {
        const char *zone;
        const char *day;
        const char *start;
        ClockTime shows;
    };
    for (const auto &[name, date, start, shows] : {
             Case{"America/Sao_Paulo", "2018-11-04", "2018-11-04T03:00:00Z", {1, 0}},
             Case{"Asia/Beirut", "2022-03-27", "2022-03-26T22:00:00Z", {1, 0}},
             Case{"America/Havana", "2024-03-10", "2024-03-10T05:00:00Z", {1, 0}},
             Case{"Africa/Cairo", "2010-04-30", "2010-04-29T22:00:00Z", {1, 0}},
             // Half an hour before midnight the clock went on to half past midnight.
             Case{"America/Toronto", "1919-03-31", "1919-03-31T04:30:00Z", {0, 30}},
         }) {
        const UserTime time = zone(name);
        const Instant begins = time.startOfDay(day(date));
        EXPECT_EQ(begins, utc(start)) << name;
        EXPECT_EQ(time.timeOfDay(begins), shows) << name;
        EXPECT_EQ(time.dayKey(begins), day(date)) << name;
        EXPECT_EQ(time.dayKey(begins - std::chrono::microseconds{1}), day(date).adding(-1)) << name;
    }
}

TEST(UserTime, ADaySkippedByTheZoneIsEmpty)
{
    const UserTime apia = zone("Pacific/Apia");
    const DayKey skipped = day("2011-12-30");
    EXPECT_EQ(apia.adding(1, day("2011-12-29")), skipped);
    EXPECT_EQ(apia.startOfDay(skipped), utc("2011-12-30T10:00:00Z"));
    EXPECT_EQ(apia.dayInterval(skipped).from, apia.dayInterval(skipped).to);
    EXPECT_EQ(apia.dayKey(apia.startOfDay(skipped)), day("2011-12-31"));
    EXPECT_EQ(apia.dayInterval(day("2011-12-29")).to, apia.dayInterval(day("2011-12-31")).from);
    EXPECT_EQ(apia.date(skipped, 12, 0), utc("2011-12-30T22:00:00Z"));
    EXPECT_EQ(secondsBetween(apia.weekInterval(skipped).from, apia.weekInterval(skipped).to), 6 * 86400);
    EXPECT_EQ(apia.dayTitle(skipped), "30 December 2011");
}

class EveryZone : public testing::TestWithParam<const char *> {};

TEST_P(EveryZone, DaysJoinUpFrom1900To2100)
{
    const UserTime time = zone(GetParam());
    for (int year = 1900; year <= 2100; year += 3) { // all days of a third of the years
        DayKey key{year, 1, 1};
        Instant start = time.startOfDay(key);
        while (key.year == year) {
            const DayKey nextKey = key.adding(1);
            const Instant end = time.startOfDay(nextKey);
            ASSERT_GE(end, start) << key.description();
            if (end != start) {
                ASSERT_EQ(time.dayKey(start), key);
                ASSERT_EQ(time.dayKey(end - std::chrono::microseconds{1}), key) << key.description();
            }
            // Offsets before this had odd seconds here and there, which a time to the minute does not carry.
            if (year >= 1973)
                ASSERT_EQ(time.date(key, time.timeOfDay(start)), start) << key.description();
            key = nextKey;
            start = end;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Zones, EveryZone,
                         testing::Values("Europe/Paris", "Europe/Dublin", "America/New_York",
                                         "America/Sao_Paulo", "America/St_Johns", "Asia/Beirut",
                                         "Asia/Kathmandu", "Africa/Cairo", "Africa/Casablanca",
                                         "Australia/Lord_Howe", "Pacific/Apia", "Pacific/Kwajalein",
                                         "Antarctica/Troll"));

TEST(UserTime, AgreesWithTheFormattersCalendar)
{
    const UserTime time = zone("America/St_Johns");
    const UserTime twelve = zone("America/St_Johns", 1, true);
    // A step that shares no factor with a day comes by every time of day and every time of year.
    const std::chrono::minutes step{60 * 24 * 11 + 7 * 60 + 13};
    for (Instant instant = utc("1900-01-02T00:00:00Z"); instant < utc("2100-01-01T00:00:00Z");
         instant += step) {
        ASSERT_EQ(time.dayKey(instant).description(), DateFormatters::string(instant, "yyyy-MM-dd", time));
        ASSERT_EQ(time.timeLabel(instant), DateFormatters::string(instant, "HH:mm", time));
        ASSERT_EQ(twelve.timeLabel(instant), DateFormatters::string(instant, "h:mm a", twelve));
    }
}

TEST(UserTime, KnowsWhatZonesDecidedLately)
{
    // Libraries bring zones of their own, years old; the system's files are kept up to date.
    EXPECT_EQ(zone("America/Mexico_City").date(day("2025-07-01"), 12, 0), utc("2025-07-01T18:00:00Z"));
    EXPECT_EQ(zone("America/Ciudad_Juarez").date(day("2025-07-01"), 12, 0), utc("2025-07-01T18:00:00Z"));
    EXPECT_EQ(zone("Africa/Cairo").date(day("2025-07-01"), 12, 0), utc("2025-07-01T09:00:00Z"));
    EXPECT_EQ(zone("Asia/Almaty").date(day("2025-07-01"), 12, 0), utc("2025-07-01T07:00:00Z"));
    EXPECT_EQ(DateFormatters::string(utc("2025-07-01T18:00:00Z"), "HH:mm", zone("America/Mexico_City")),
              "12:00");
}

TEST(UserTime, WeeksStartOnTheUsersDay)
{
    const DayKey sunday = day("2025-03-09");
    const std::array<const char *, 7> starts = {"2025-03-09", "2025-03-03", "2025-03-04", "2025-03-05",
                                                "2025-03-06", "2025-03-07", "2025-03-08"};
    for (int weekStart = 0; weekStart < 7; ++weekStart) {
        const UserTime time = zone("Europe/Paris", weekStart);
        const DayKey first = day(starts[static_cast<std::size_t>(weekStart)]);
        EXPECT_EQ(time.weekStartContaining(sunday), first);
        const auto week = time.weekContaining(sunday);
        for (std::size_t i = 0; i < week.size(); ++i) {
            EXPECT_EQ(week[i], first.adding(static_cast<std::int64_t>(i)));
            EXPECT_EQ(time.weekStartContaining(week[i]), first);
        }
        EXPECT_EQ(first.weekday(), weekStart);
    }
    // 00:30 on Monday in Paris is still Sunday in UTC.
    EXPECT_EQ(zone("Europe/Paris").weekStartContaining(utc("2025-03-09T23:30:00Z")), day("2025-03-10"));
    // The week of the change of clocks is an hour short.
    const InstantInterval week = zone("Europe/Paris").weekInterval(day("2025-03-26"));
    EXPECT_EQ(week, (InstantInterval{utc("2025-03-23T23:00:00Z"), utc("2025-03-30T22:00:00Z")}));
    EXPECT_TRUE(week.contains(week.from));
    EXPECT_FALSE(week.contains(week.to));
}

TEST(UserTime, LabelsDaysAgainstToday)
{
    const ClockOffset now("2026-03-01T23:30:00Z");
    const UserTime utcTime = zone("UTC");
    EXPECT_EQ(utcTime.today(), day("2026-03-01"));
    EXPECT_EQ(utcTime.dayLabel(day("2026-03-01")), "Today");
    EXPECT_EQ(utcTime.dayLabel(day("2026-02-28")), "Yesterday");
    EXPECT_EQ(utcTime.dayLabel(day("2026-02-27")), "Fri, 27 Feb");
    EXPECT_EQ(utcTime.dayLabel(day("2026-03-02")), "Mon, 2 Mar");
    EXPECT_EQ(utcTime.dayLabel(day("2025-12-31")), "Wed, 31 Dec 2025");
    EXPECT_EQ(utcTime.dayTitle(day("2025-03-07")), "7 March 2025");
    // In Tokyo it is already the day after.
    EXPECT_EQ(zone("Asia/Tokyo").dayLabel(day("2026-03-01")), "Yesterday");
    EXPECT_EQ(zone("Asia/Tokyo", 1, true).clockLabel(AppClock::now()), "8:30 am");
}

TEST(UserTime, GivesTheOrderOfTypedDates)
{
    EXPECT_EQ(UserTime::dayFieldOrder(),
              (std::vector{DayFieldPart::day, DayFieldPart::month, DayFieldPart::year}));
}

TEST(UserTime, ResolvesTypedTimes)
{
    const ClockOffset offset("2026-03-01T09:30:10.500Z");
    const UserTime paris = zone("Europe/Paris");
    const auto resolve = [&](std::string_view text) { return paris.resolveClock(text, day("2026-02-27")); };

    EXPECT_EQ(resolve(" Now "), utc("2026-03-01T09:30:00Z"));
    const auto quarterAgo = resolve("-15");
    ASSERT_TRUE(quarterAgo);
    EXPECT_EQ(*quarterAgo, millisecondsFloor(*quarterAgo));
    EXPECT_GE(*quarterAgo, utc("2026-03-01T09:15:10.500Z"));
    EXPECT_LT(*quarterAgo, utc("2026-03-01T09:15:40Z"));
    EXPECT_LE(resolve("- 1h 30m"), utc("2026-03-01T08:00:40Z"));
    EXPECT_EQ(resolve("930"), utc("2026-02-27T08:30:00Z"));
    EXPECT_EQ(resolve("9:30 pm"), utc("2026-02-27T20:30:00Z"));
    for (const char *text : {"", "-", "--5", "-abc", "nowish", "25:00", "tomorrow", "-100001h"})
        EXPECT_FALSE(resolve(text)) << text;
}

TEST(UserTime, ResolvesNothingOutsideTheYearsItAccepts)
{
    const ClockOffset offset("1900-01-01T00:10:00Z");
    EXPECT_FALSE(zone("UTC").resolveClock("-15", day("1900-01-01")));
    EXPECT_TRUE(zone("UTC").resolveClock("-5", day("1900-01-01")));
    EXPECT_FALSE(zone("Asia/Tokyo").resolveClock("0:30", day("1900-01-01"))); // still 1899 in UTC
}

TEST(UserTimeDeathTest, NumbersThatAreNoDayStop)
{
    EXPECT_DEATH(zone("UTC").startOfDay({2025, 2, 30}), "does not exist");
    EXPECT_DEATH(zone("UTC").date(day("2025-02-03"), 24, 0), "no time of day");
}

} // namespace
} // namespace orvane
