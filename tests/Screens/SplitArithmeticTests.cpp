// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/PartMinutes.h"
#include "Screens/Timer/SplitMoment.h"
#include "Screens/Timer/SplitPercents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <random>

namespace orvane {
namespace {

using SplitPercents::Percents;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Ge;

TEST(SplitPercents, TakesFromBelowAndTheLastFromAbove)
{
    using namespace SplitPercents;
    const Percents parts{50, 40, 10};
    EXPECT_THAT(given(parts, 0, 60), ElementsAre(60, 30, 10));
    EXPECT_THAT(given(parts, 0, 30), ElementsAre(30, 60, 10));
    EXPECT_THAT(given(parts, 0, 95), ElementsAre(95, 1, 4));
    EXPECT_THAT(given(parts, 1, 60), ElementsAre(39, 60, 1))
        << "what those below cannot give, one above does";
    EXPECT_THAT(given(parts, 2, 20), ElementsAre(50, 30, 20));
    EXPECT_THAT(given(parts, 2, 70), ElementsAre(29, 1, 70));
    EXPECT_THAT(moved(parts, 0, 95), ElementsAre(95, 1, 4)) << "the border below is pushed along";
    EXPECT_THAT(moved(parts, 1, 20), ElementsAre(50, 1, 49)) << "the border above stays";
    EXPECT_THAT(moved(parts, 1, 100), ElementsAre(50, 49, 1));
    EXPECT_THAT(added({50, 50}), ElementsAre(50, 25, 25));
    EXPECT_THAT(added({98, 1, 1}), ElementsAre(49, 1, 1, 49));
    EXPECT_THAT(without(parts, 0), ElementsAre(90, 10));
    EXPECT_THAT(without(parts, 2), ElementsAre(50, 50));
    EXPECT_THAT(made({100, 0}), ElementsAre(99, 1));
    EXPECT_THAT(made({1, 1}), ElementsAre(50, 50));
    EXPECT_THAT(made({20, 30, 1, 1, 1, 47}), ElementsAre(20, 30, 1, 1, 1, 47))
        << "more parts stay as they are";
}

TEST(SplitPercents, IsTheWholeWhateverIsDone)
{
    using namespace SplitPercents;
    std::mt19937 random(11);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    Percents parts{50, 50};
    for (int round = 0; round < 5000; ++round) {
        const Percents before = parts;
        const std::size_t part = below(parts.size());
        const auto wanted = static_cast<std::int64_t>(below(300)) - 100;
        const std::size_t action = below(6);
        if (action < 3) {
            parts = given(parts, part, wanted);
            const auto most = whole + 1 - static_cast<std::int64_t>(parts.size());
            ASSERT_EQ(parts[part], std::clamp<std::int64_t>(wanted, 1, most))
                << "whoever asks gets what there is";
        } else if (action == 3 && part + 1 < parts.size()) {
            parts = moved(parts, part, wanted);
            ASSERT_TRUE(std::equal(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(part),
                                   parts.begin()));
        } else if (action == 4 && parts.size() < mostParts) {
            parts = added(parts);
        } else if (action == 5 && parts.size() > fewestParts) {
            parts = without(parts, part);
        }
        ASSERT_EQ(std::accumulate(parts.begin(), parts.end(), std::int64_t{0}), whole);
        ASSERT_THAT(parts, Each(Ge(1)));
        ASSERT_TRUE(parts.size() >= fewestParts && parts.size() <= mostParts);
        ASSERT_EQ(made(parts), parts);
    }
}

TEST(PartMinutes, AddUpToTheEntrys)
{
    // 74, 1, 13 and 12 percent of an hour and a half.
    EXPECT_THAT(partMinutes({3996, 54, 702, 648}), ElementsAre(66, 1, 12, 11));
    EXPECT_THAT(partMinutes({59, 60}), ElementsAre(0, 1));
    EXPECT_THAT(partMinutes({0, 0}), ElementsAre(0, 0));
}

Instant at(int hour, int minute, int second = 0)
{
    const Instant midnight = UserTime::utc().startOfDay(*DayKey::make(2026, 11, 20));
    return midnight + std::chrono::hours{hour} + minutes{minute} + seconds{second};
}

TypedMoment typed(std::uint8_t hour, std::uint8_t minute)
{
    return {.clock = ClockTime{hour, minute}};
}

TEST(SplitMoment, StaysOnAMinuteWithinTheEntry)
{
    auto moment = *SplitMoment::within(at(9, 10), at(10, 35));
    EXPECT_EQ(moment.at(), at(9, 52));
    moment.nudge(minutes{-500});
    EXPECT_EQ(moment.at(), at(9, 11));
    moment.nudge(minutes{500});
    EXPECT_EQ(moment.at(), at(10, 34));
    moment.moveTo(0);
    EXPECT_EQ(moment.at(), at(9, 11));
    moment.moveTo(47.0 / 85);
    EXPECT_EQ(moment.at(), at(9, 57));
    EXPECT_DOUBLE_EQ(moment.position(), 47.0 / 85);
    // Seconds at either end leave the minutes that touch them.
    moment = *SplitMoment::within(at(9, 10, 20), at(9, 12, 40));
    EXPECT_EQ(moment.first(), at(9, 11));
    EXPECT_EQ(moment.last(), at(9, 12));
    EXPECT_FALSE(SplitMoment::within(at(9, 10), at(9, 11)));
    EXPECT_FALSE(SplitMoment::within(at(9, 10, 10), at(9, 10, 50)));
    EXPECT_TRUE(SplitMoment::within(at(9, 10, 59), at(9, 11, 1)));
    EXPECT_EQ(SplitMoment::within(at(9, 0), at(11, 0))->movedInto(at(10, 30), at(11, 0))->at(), at(10, 31));
}

TEST(SplitMoment, TakesATimeOfTheEntrysDays)
{
    const UserTime utc = UserTime::utc();
    auto moment = *SplitMoment::within(at(22, 0), at(26, 0));
    EXPECT_TRUE(moment.take(typed(23, 15), utc));
    EXPECT_EQ(moment.at(), at(23, 15));
    EXPECT_TRUE(moment.take(typed(1, 15), utc));
    EXPECT_EQ(moment.at(), at(25, 15));
    for (const TypedMoment &outside : {typed(22, 0), typed(2, 0), typed(12, 0)})
        EXPECT_FALSE(moment.take(outside, utc));
    EXPECT_FALSE(moment.take({.instant = at(21, 0)}, utc));
    EXPECT_EQ(moment.at(), at(25, 15)) << "what lies outside moves nothing";
    // Of several days, the nearest one.
    moment = *SplitMoment::within(at(8, 0), at(56, 0));
    moment.moveTo(0.9);
    EXPECT_TRUE(moment.take(typed(9, 0), utc));
    EXPECT_EQ(moment.at(), at(33, 0));
}

TEST(SplitMoment, MarksRoundTimes)
{
    EXPECT_THAT(SplitMoment::within(at(9, 10), at(10, 35))->roundTimes(UserTime::utc()),
                ElementsAre(at(9, 15), at(9, 30), at(9, 45), at(10, 0), at(10, 15), at(10, 30)));
    EXPECT_THAT(SplitMoment::within(at(0, 0), at(24, 0))->roundTimes(UserTime::utc()),
                ElementsAre(at(6, 0), at(12, 0), at(18, 0)));
    EXPECT_TRUE(SplitMoment::within(at(0, 0), at(24 * 30, 0))->roundTimes(UserTime::utc()).empty());
}

} // namespace
} // namespace orvane
