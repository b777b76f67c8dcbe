// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/MomentText.h"

#include "Support/DateText.h"
#include "Time/AppClock.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

/// Paris, on Wednesday 4 March 2026 at 10:00 local time (09:00 UTC).
class MomentText : public testing::Test {
protected:
    MomentText() { AppClock::setNow(at("2026-03-04T09:00:00Z")); }
    ~MomentText() override { OffsetBox::shared().setOffset(0); }

    static Instant at(const char *text) { return instantFromIso8601(text).value(); }
    TypedMoment read(const char *text) const { return readMoment(text, time).value(); }
    std::string span(const char *start, const char *stop) const
    {
        const auto span = spanOf(read(start), read(stop), time);
        return span ? iso8601Text(span->start) + " " + iso8601Text(span->stop) : span.error();
    }
    std::string edited(const char *start, const char *stop) const
    {
        const auto moment = [&](const char *text) { return text ? std::optional(read(text)) : std::nullopt; };
        const EditedTimes before{at("2026-03-02T08:00:30Z"), at("2026-03-02T09:30:00Z")};
        const auto times = editedTimes(before, moment(start), moment(stop), time);
        return times ? iso8601Text(times->start) + " " + iso8601Text(*times->stop) : times.error();
    }

    UserTime time = UserTime::make("Europe/Paris").value();
};

TEST_F(MomentText, ReadsClocksAgesAndFullDates)
{
    EXPECT_EQ(read("930").clock, (ClockTime{9, 30}));
    EXPECT_EQ(read(" 9:30PM ").clock, (ClockTime{21, 30}));
    EXPECT_EQ(read("now").instant, at("2026-03-04T09:00:00Z"));
    EXPECT_EQ(millisecondsFloor(read("-15").instant) - at("2026-03-04T08:45:00Z") < std::chrono::seconds(5),
              true);
    EXPECT_EQ(read("2026-03-01 9:30").instant, at("2026-03-01T08:30:00Z")) << "in the user's zone";
    EXPECT_EQ(read("2026-03-01T09:30").instant, at("2026-03-01T08:30:00Z"));
    EXPECT_EQ(read("2026-03-01T09:30:15.250Z").instant, at("2026-03-01T09:30:15.250Z"));
    EXPECT_EQ(read("2026-03-01T09:30:00+02:00").instant, at("2026-03-01T07:30:00Z"));
    for (const char *text :
         {"", "noon", "25:00", "9:75", "-", "2026-02-30 9:30", "2026-03-01", "1899-12-31T00:00:00Z"})
        EXPECT_FALSE(readMoment(text, time)) << text;
}

TEST_F(MomentText, PutsTheTimesOfANewEntryOnTheRightDays)
{
    EXPECT_EQ(span("9", "9:45"), "2026-03-04T08:00:00.000Z 2026-03-04T08:45:00.000Z");
    EXPECT_EQ(span("14:00", "15:00"), "2026-03-04T13:00:00.000Z 2026-03-04T14:00:00.000Z") << "later today";
    EXPECT_EQ(span("22:00", "1:30"), "2026-03-03T21:00:00.000Z 2026-03-04T00:30:00.000Z") << "last night";
    EXPECT_EQ(span("2026-02-28 22:00", "1:30"), "2026-02-28T21:00:00.000Z 2026-03-01T00:30:00.000Z");
    EXPECT_EQ(span("23:30", "2026-03-01 0:30"), "2026-02-28T22:30:00.000Z 2026-02-28T23:30:00.000Z");
    EXPECT_EQ(span("2026-03-01 9:00", "17:00"), "2026-03-01T08:00:00.000Z 2026-03-01T16:00:00.000Z");
    EXPECT_EQ(span("9:00", "9:00"), "The end has to be after the start.");
    EXPECT_EQ(span("2026-03-02 9:00", "2026-03-01 9:00"), "The end has to be after the start.");
}

TEST_F(MomentText, StopsLastNightWhenTheClockHasPassedMidnight)
{
    AppClock::setNow(at("2026-03-03T23:10:00Z"));
    const Instant since = at("2026-03-03T20:00:00Z");
    EXPECT_EQ(stopOf(read("23:50"), since, time), at("2026-03-03T22:50:00Z"));
    EXPECT_EQ(stopOf(read("0:05"), since, time), at("2026-03-03T23:05:00Z"));
    EXPECT_EQ(stopOf(read("20:00"), since, time), at("2026-03-04T19:00:00Z"))
        << "it was not running yesterday at 20:00";
}

TEST_F(MomentText, EditsOnTheEntrysOwnDay)
{
    EXPECT_EQ(edited("8:30", nullptr), "2026-03-02T07:30:00.000Z 2026-03-02T09:30:00.000Z");
    EXPECT_EQ(edited(nullptr, "17:00"), "2026-03-02T08:00:30.000Z 2026-03-02T16:00:00.000Z");
    EXPECT_EQ(edited(nullptr, "1:00"), "2026-03-02T08:00:30.000Z 2026-03-03T00:00:00.000Z")
        << "over midnight";
    EXPECT_EQ(edited("11:00", nullptr), "The end has to be after the start.");
    EXPECT_EQ(edited(nullptr, "9:00"), "The end has to be after the start.")
        << "the minute it began in, not a day later";
    EXPECT_EQ(edited("2026-03-01 9:00", "10:00"), "2026-03-01T08:00:00.000Z 2026-03-01T09:00:00.000Z");
}

TEST_F(MomentText, ReadsDays)
{
    const auto day = [&](const char *text) { return readDay(text, time).value().description(); };
    EXPECT_EQ(day("today"), "2026-03-04");
    EXPECT_EQ(day("Yesterday"), "2026-03-03");
    EXPECT_EQ(day("wednesday"), "2026-03-04");
    EXPECT_EQ(day("thu"), "2026-02-26");
    EXPECT_EQ(day("2026-01-31"), "2026-01-31");
    for (const char *text : {"", "2026-02-30", "tomorrow", "w", "26-01-31"})
        EXPECT_FALSE(readDay(text, time)) << text;
}

} // namespace
} // namespace orvane
