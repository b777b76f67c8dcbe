// SPDX-License-Identifier: GPL-3.0-or-later
#include "EntryInput/EntryTimes.h"

#include "EntryInput/EntryWarning.h"
#include "EntryInput/NamedMoment.h"
#include "Support/DateText.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using Problem = EntryTimesProblem;
using std::chrono::hours;
using std::chrono::minutes;

Instant at(std::string_view text)
{
    return instantFromIso8601(text).value();
}

/// Paris, on Wednesday 4 March 2026 at 10:00 local time unless a test says otherwise.
class EntryTimesTest : public ::testing::Test {
protected:
    TypedMoment moment(const char *text) const { return TypedMoment::parse(text, time).value(); }
    std::optional<TypedMoment> named(const char *text) const
    {
        return text ? std::optional(moment(text)) : std::nullopt;
    }
    static std::string text(const Result<EntryTimes, Problem> &times)
    {
        if (!times)
            return "refused";
        return iso8601Text(times->start).substr(0, 16) + " " +
               (times->stop ? iso8601Text(*times->stop).substr(0, 16) : "runs");
    }
    std::string made(const char *start, const char *stop) const
    {
        return text(EntryTimes::made(moment(start), moment(stop), time, now));
    }
    std::string changed(const char *start, const char *stop) const
    {
        return text(before.changed(named(start), named(stop), time, now));
    }

    UserTime time = UserTime::make("Europe/Paris").value();
    Instant now = at("2026-03-04T09:00:00Z");
    /// On Monday from 9:00:30 to 10:30 local time.
    EntryTimes before{at("2026-03-02T08:00:30Z"), at("2026-03-02T09:30:00Z")};
};

TEST_F(EntryTimesTest, OfANewEntryLieOnTheRightDays)
{
    EXPECT_EQ(made("9", "9:45"), "2026-03-04T08:00 2026-03-04T08:45");
    EXPECT_EQ(made("14:00", "15:00"), "2026-03-04T13:00 2026-03-04T14:00") << "later today";
    EXPECT_EQ(made("22:00", "1:30"), "2026-03-03T21:00 2026-03-04T00:30") << "last night";
    EXPECT_EQ(made("18:00", "9:59"), "2026-03-03T17:00 2026-03-04T08:59") << "16 hours at most";
    EXPECT_EQ(EntryTimes::made(moment("10:00"), moment("9:00"), time, now).error(), Problem::tooLong);
    EXPECT_EQ(made("2026-02-28 9:00", "8:00"), "refused");
    EXPECT_EQ(made("0:00", "23:59"), "2026-03-03T23:00 2026-03-04T22:59");
    EXPECT_EQ(made("2026-02-28 22:00", "1:30"), "2026-02-28T21:00 2026-03-01T00:30");
    EXPECT_EQ(made("23:30", "2026-03-01 0:30"), "2026-02-28T22:30 2026-02-28T23:30");
    EXPECT_EQ(made("2026-03-01 9:00", "17:00"), "2026-03-01T08:00 2026-03-01T16:00");
    EXPECT_EQ(made("2026-03-01 9:00", "2026-03-03 9:00"), "2026-03-01T08:00 2026-03-03T08:00");
}

TEST_F(EntryTimesTest, WithoutLengthAreRefusedRatherThanADayLong)
{
    EXPECT_EQ(EntryTimes::made(moment("9:00"), moment("9:00"), time, now).error(), Problem::endBeforeStart);
    EXPECT_EQ(made("2026-03-02 9:00", "9:00"), "refused");
    EXPECT_EQ(made("9:00", "2026-03-02 9:00"), "refused");
    EXPECT_EQ(made("2026-03-02 9:00", "2026-03-01 9:00"), "refused");
    EXPECT_EQ(changed(nullptr, "9:00"), "refused") << "the minute it began in, not a day later";
}

TEST_F(EntryTimesTest, OfANewEntryOnDaysOfOtherLengths)
{
    now = at("2026-03-29T10:00:00Z"); // 2:00 to 3:00 is skipped
    EXPECT_EQ(made("1:30", "3:30"), "2026-03-29T00:30 2026-03-29T01:30") << "an hour by the watch";
    EXPECT_EQ(made("23:00", "4:00"), "2026-03-28T22:00 2026-03-29T02:00");
    EXPECT_EQ(made("2:30", "3:30"), "refused") << "2:30 is 3:30";
    now = at("2026-10-25T10:00:00Z"); // 2:00 to 3:00 comes twice
    EXPECT_EQ(made("1:30", "3:30"), "2026-10-24T23:30 2026-10-25T02:30") << "three hours by the watch";
    EXPECT_EQ(EntryTimes::made(moment("4:00"), moment("3:00"), time, now).error(), Problem::tooLong);
}

TEST_F(EntryTimesTest, OfATimerAreTodaysOrLastNights)
{
    EXPECT_EQ(EntryTimes::timerStart(moment("8:30"), time, now), at("2026-03-04T07:30:00Z"));
    EXPECT_EQ(EntryTimes::timerStart(moment("2026-03-03 8:30"), time, now), at("2026-03-03T07:30:00Z"));

    now = at("2026-03-03T23:10:00Z"); // ten past midnight
    const Instant since = at("2026-03-03T20:00:00Z");
    const auto stop = [&](const char *text) { return EntryTimes::timerStop(moment(text), since, time, now); };
    EXPECT_EQ(stop("23:50"), at("2026-03-03T22:50:00Z"));
    EXPECT_EQ(stop("0:05"), at("2026-03-03T23:05:00Z"));
    EXPECT_EQ(stop("21:00"), since) << "as it began";
    EXPECT_EQ(stop("20:00"), at("2026-03-04T19:00:00Z")) << "it was not running yesterday at 20:00";
    EXPECT_EQ(stop("2026-03-03 20:00"), at("2026-03-03T19:00:00Z")) << "a day that is named is not moved";
}

TEST_F(EntryTimesTest, AreChangedOnTheEntrysOwnDay)
{
    EXPECT_EQ(changed("8:30", nullptr), "2026-03-02T07:30 2026-03-02T09:30");
    EXPECT_EQ(changed(nullptr, "17:00"), "2026-03-02T08:00 2026-03-02T16:00");
    EXPECT_EQ(changed(nullptr, "1:00"), "2026-03-02T08:00 2026-03-03T00:00") << "over midnight";
    EXPECT_EQ(before.changed({}, moment("8:00"), time, now).error(), Problem::tooLong);
    EXPECT_EQ(before.changed({}, moment("-15"), time, now).error(), Problem::countedFromNow);
    EXPECT_EQ(changed("11:00", nullptr), "refused");
    EXPECT_EQ(changed("2026-03-01 9:00", "10:00"), "2026-03-01T08:00 2026-03-01T09:00");
    EXPECT_EQ(changed(nullptr, "2026-03-03 8:00"), "2026-03-02T08:00 2026-03-03T07:00");
    before.stop.reset();
    EXPECT_EQ(changed("11:00", nullptr), "2026-03-02T10:00 runs");
    before.stop = before.start - hours{1};
    EXPECT_EQ(before.changed(std::nullopt, std::nullopt, time, now), before)
        << "what is not named is not judged";
}

TEST_F(EntryTimesTest, AreChangedAroundMidnightInTheUsersDays)
{
    before = {at("2026-03-02T22:30:00Z"), at("2026-03-03T00:30:00Z")}; // Monday 23:30 to Tuesday 1:30
    EXPECT_EQ(changed("22:00", nullptr), "2026-03-02T21:00 2026-03-03T00:30") << "on the day of its start";
    EXPECT_EQ(changed(nullptr, "2:00"), "2026-03-02T22:30 2026-03-03T01:00");
    EXPECT_EQ(changed("1:00", "2:00"), "2026-03-02T00:00 2026-03-02T01:00");
    before = {at("2026-03-28T22:30:00Z"), at("2026-03-28T23:30:00Z")}; // into the day of 23 hours
    EXPECT_EQ(changed(nullptr, "4:00"), "2026-03-28T22:30 2026-03-29T02:00");
}

TEST_F(EntryTimesTest, ASentenceChangesThemOnTheEntrysDayUnlessItNamesOne)
{
    using Sentence = EntrySentence;
    const Sentence::Range range{{.hours = 14}, {.hours = 15}};
    const auto said = [&](const Sentence::Time &phrase, std::optional<Sentence::DayRef> day = {}) {
        return text(before.changed(phrase, day, time, now));
    };
    EXPECT_EQ(said(range), "2026-03-02T13:00 2026-03-02T14:00");
    EXPECT_EQ(said(range, Sentence::Today{}), "2026-03-04T13:00 2026-03-04T14:00");
    EXPECT_EQ(said(Sentence::Since{{.hours = 8}}), "2026-03-02T07:00 2026-03-02T09:30") << "keeps its end";
    EXPECT_EQ(said(Sentence::Duration{2700}), "2026-03-02T08:00 2026-03-02T08:45") << "keeps its start";
    EXPECT_EQ(said(Sentence::Ago{600}), "2026-03-04T08:50 2026-03-02T09:30")
        << "which the tracker refuses in its own words";
    before.stop.reset();
    EXPECT_EQ(before.changed(Sentence::Duration{2700}, {}, time, now),
              (EntryTimes{now - minutes{45}, std::nullopt}));
    EXPECT_EQ(before.changed(Sentence::Range{{.hours = 20}, {.hours = 14}}, {}, time, now), before)
        << "too long for a night, so it lies nowhere";
}

TEST_F(EntryTimesTest, ReadsAMomentWithItsDayAsASentenceDoes)
{
    const auto read = [&](const char *text) -> std::string {
        const auto moment = readNamedMoment(text, {.dateFormat = "dd/MM/yyyy"}, time, now);
        return !moment ? "none" : moment->clock ? "clock" : iso8601Text(moment->instant).substr(0, 16);
    };
    for (const char *text :
         {"yesterday 9:00", "9:00 Yesterday", "tue 9", "on tuesday 9 am", "3.3. 9:00", "3/3 900"})
        EXPECT_EQ(read(text), "2026-03-03T08:00") << text;
    EXPECT_EQ(read("9:30 pm"), "clock");
    EXPECT_EQ(read("2026-02-28 22:00"), "2026-02-28T21:00");
    for (const char *text : {"yesterday", "tomorrow 9:00", "9:00 9:00", "on 9:00", "yesterday -15"})
        EXPECT_EQ(read(text), "none") << text;
}

TEST(EntryWarning, TellsOfLongDaysTheFutureAndOverlaps)
{
    const Instant now = at("2026-03-04T09:00:00Z");
    const auto entry = [](const char *id, Instant start, std::optional<Instant> stop) {
        TimeEntryResponse entry;
        entry.id = id;
        entry.start = start;
        entry.stop = stop;
        return entry;
    };
    const std::vector<TimeEntryResponse> others{entry("own", now - hours{2}, now - hours{1}),
                                                entry("runs", now - minutes{10}, {}),
                                                entry("before", now - hours{4}, now - hours{2} + minutes{1})};
    const auto warned = [&](EntryTimes times) {
        std::string text;
        for (const EntryWarning &warning : EntryWarning::of(times, "own", others, now))
            text += warning.kind == EntryWarning::Kind::longerThanDay ? "long "
                    : warning.kind == EntryWarning::Kind::inFuture    ? "future "
                                                                      : warning.other.id + " ";
        return text;
    };
    EXPECT_EQ(warned({now - hours{2}, now - hours{1}}), "before ") << "a minute is one";
    EXPECT_EQ(warned({now - hours{2} + std::chrono::seconds{1}, now - hours{1}}), "");
    EXPECT_EQ(warned({now - hours{1}, now + minutes{1}}), "future runs ");
    EXPECT_EQ(warned({now - hours{25}, std::nullopt}), "long runs before ");
    EXPECT_EQ(warned({now - hours{24} - hours{4}, now - hours{4}}), "") << "a day is not longer than a day";
}

} // namespace
} // namespace orvane
