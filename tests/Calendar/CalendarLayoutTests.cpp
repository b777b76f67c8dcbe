// SPDX-License-Identifier: GPL-3.0-or-later
#include "Calendar/CalendarLayout.h"

#include "CalendarSamples.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace orvane {
namespace {

const Instant noon = at("2025-03-05T12:00:00Z");

std::vector<DaySegment> arranged(const std::vector<std::pair<double, double>> &blocks)
{
    std::vector<DaySegment> segments;
    for (const auto &[start, end] : blocks) {
        DaySegment &segment = segments.emplace_back();
        segment.entry.id = std::to_string(segments.size());
        segment.startMinute = start;
        segment.endMinute = end;
    }
    CalendarLayout::arrange(segments);
    return segments;
}

TEST(CalendarLayoutTest, PutsOverlappingBlocksSideBySide)
{
    // Three in a chain need two lanes, the next begins as they end; ids are numbers in the order given.
    const auto segments =
        arranged({{660, 700}, {540, 600}, {570, 660}, {600, 630}, {660, 700}, {700, 700}, {700.5, 720}});
    std::string picture;
    for (const DaySegment &segment : segments)
        picture +=
            segment.entry.id + ":" + std::to_string(segment.lane) + "/" + std::to_string(segment.lanes) + " ";
    EXPECT_EQ(picture, "2:0/2 3:1/2 4:0/2 1:0/2 5:1/2 6:0/2 7:1/2 ");
}

TEST(CalendarLayoutTest, GivesEachBlockTheLeftmostFreeLane)
{
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::vector<std::pair<double, double>> blocks;
        for (int i = 0; i < 60; ++i) {
            const double start = static_cast<double>(random() % 1440);
            blocks.emplace_back(start, std::min(1440.0, start + static_cast<double>(random() % 200) / 2));
        }
        const auto segments = arranged(blocks);
        for (std::size_t i = 0; i < segments.size(); ++i) {
            const DaySegment &segment = segments[i];
            std::vector<bool> isTaken(60);
            for (std::size_t j = 0; j < i; ++j) {
                const DaySegment &earlier = segments[j];
                ASSERT_LE(earlier.startMinute, segment.startMinute);
                if (std::max(earlier.endMinute, earlier.startMinute + 1) <= segment.startMinute)
                    continue;
                isTaken[static_cast<std::size_t>(earlier.lane)] = true;
                EXPECT_EQ(earlier.lanes, segment.lanes);
            }
            EXPECT_EQ(segment.lane, std::ranges::find(isTaken, false) - isTaken.begin());
            EXPECT_LT(segment.lane, segment.lanes);
        }
        // No lane of a group is empty.
        for (const DaySegment &segment : segments)
            EXPECT_TRUE(std::ranges::any_of(segments, [&](const DaySegment &other) {
                return other.lanes == segment.lanes && other.lane == segment.lanes - 1;
            }));
    }
}

TEST(CalendarLayoutTest, CutsEntriesIntoDays)
{
    const std::vector entries{entry("a", "2025-03-03T22:30:30Z", "2025-03-05T01:15:00Z"),
                              entry("b", "2025-03-04T00:00:00Z", "2025-03-04T00:00:00Z"),
                              entry("c", "2025-03-04T23:00:00Z", "2025-03-05T00:00:00Z"),
                              entry("running", "2025-03-05T11:00:00Z", nullptr),
                              entry("ahead", "2025-03-05T12:30:00Z", nullptr),
                              entry("before", "2025-03-01T00:00:00Z", "2025-03-03T00:00:00Z"),
                              entry("after", "2025-03-06T00:00:00Z", "2025-03-06T01:00:00Z")};
    const auto days =
        CalendarLayout::days(entries, day("2025-03-03"), day("2025-03-05"), UserTime::utc(), noon);
    EXPECT_EQ(pictures(days), (std::vector<std::string>{"2025-03-03 a 1350.5-1440>",
                                                        "2025-03-04 b 0-0 a <0-1440> c 1380-1440",
                                                        "2025-03-05 a <0-75 running 660-720 ahead 750-750"}));
    EXPECT_EQ(days[1].segments[1].entry, entries[0]);
    // A request that starts in the middle of an entry, and one for a single day.
    EXPECT_EQ(
        pictures(CalendarLayout::days(entries, day("2025-03-04"), day("2025-03-04"), UserTime::utc(), noon)),
        std::vector<std::string>{"2025-03-04 b 0-0 a <0-1440> c 1380-1440"});
}

TEST(CalendarLayoutTest, ShowsTheWallClockOnDaysOfAnotherLength)
{
    const UserTime paris = UserTime::make("Europe/Paris").value();
    const auto onDay = [&](const char *date, const char *start, const char *stop) {
        return pictures(CalendarLayout::days({entry("a", start, stop)}, day(date), day(date), paris, noon))
            .front();
    };
    // The clock goes from 2:00 to 3:00.
    EXPECT_EQ(onDay("2025-03-30", "2025-03-30T00:30:00Z", "2025-03-30T01:30:00Z"), "2025-03-30 a 90-210");
    EXPECT_EQ(onDay("2025-03-30", "2025-03-29T20:00:00Z", "2025-03-30T22:00:00Z"), "2025-03-30 a <0-1440");
    // It shows 2:00 to 3:00 twice.
    EXPECT_EQ(onDay("2025-10-26", "2025-10-25T23:00:00Z", "2025-10-26T01:30:00Z"), "2025-10-26 a 60-150");
    EXPECT_EQ(onDay("2025-10-26", "2025-10-26T00:50:00Z", "2025-10-26T01:10:00Z"), "2025-10-26 a 170-190");
    EXPECT_EQ(onDay("2025-10-26", "2025-10-26T00:30:00Z", "2025-10-26T01:30:00Z"), "2025-10-26 a 150-210");
}

TEST(CalendarLayoutTest, KnowsDaysWithoutMidnightAndDaysThatNeverWere)
{
    const UserTime saoPaulo = UserTime::make("America/Sao_Paulo").value();
    // The clock goes from 0:00 to 1:00.
    const auto days = CalendarLayout::days({entry("across", "2018-11-04T02:30:00Z", "2018-11-04T04:00:00Z"),
                                            entry("first", "2018-11-04T03:00:00Z", "2018-11-04T03:30:00Z")},
                                           day("2018-11-03"), day("2018-11-04"), saoPaulo, noon);
    EXPECT_EQ(pictures(days), (std::vector<std::string>{"2018-11-03 across 1410-1440>",
                                                        "2018-11-04 across <0-120 first 60-90"}));
    const UserTime apia = UserTime::make("Pacific/Apia").value();
    const auto week = CalendarLayout::days({entry("a", "2011-12-30T09:00:00Z", "2011-12-30T11:00:00Z"),
                                            entry("b", "2011-12-30T10:00:00Z", "2011-12-30T10:00:00Z")},
                                           day("2011-12-29"), day("2011-12-31"), apia, noon);
    EXPECT_EQ(pictures(week), (std::vector<std::string>{"2011-12-29 a 1380-1440>", "2011-12-30",
                                                        "2011-12-31 b 0-0 a <0-60"}));
}

} // namespace
} // namespace orvane
