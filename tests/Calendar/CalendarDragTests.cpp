// SPDX-License-Identifier: GPL-3.0-or-later
#include "Calendar/CalendarDrag.h"

#include "CalendarSamples.h"
#include "Support/ZoneNames.h"

#include <gtest/gtest.h>
#include <set>

namespace orvane {
namespace {

using Edge = CalendarDrag::Edge;

const DayKey monday = day("2025-03-03");

double clock(int hour, int minute = 0)
{
    return hour * 60 + minute;
}

CalendarDrag unlocked(UserTime time = UserTime::utc())
{
    return {std::move(time), [](const TimeEntryResponse &made) { return made.id == "locked"; },
            [](DayKey asked) { return asked == monday.adding(1); }};
}

/// The block of an entry on its first day, or on a later one.
DaySegment block(const TimeEntryResponse &made, std::int64_t later = 0)
{
    const DayKey first = UserTime::utc().dayKey(made.start).adding(later);
    return CalendarLayout::days({made}, first, first, UserTime::utc(), made.start).front().segments.front();
}

const TimeEntryResponse morning = entry("morning", "2025-03-03T09:00:00Z", "2025-03-03T09:30:00Z");
const TimeEntryResponse overnight = entry("overnight", "2025-03-03T22:10:20Z", "2025-03-04T02:00:00Z");

CalendarDrag::Save saved(const CalendarDrag::Outcome &outcome)
{
    const auto *save = std::get_if<CalendarDrag::Save>(&outcome);
    EXPECT_TRUE(save);
    return save ? *save : CalendarDrag::Save();
}

/// "09:00-10:00" of what a release on empty space makes, or "nothing".
std::string created(double pressed, std::optional<double> dragged)
{
    CalendarDrag drag = unlocked();
    drag.press(CalendarDrag::OnEmpty{monday, pressed});
    if (dragged)
        drag.drag(monday, *dragged, 30);
    const auto shown = drag.newBlock();
    const auto outcome = drag.release();
    EXPECT_EQ(std::holds_alternative<CalendarDrag::Save>(outcome), shown.has_value());
    if (!shown)
        return "nothing";
    const auto save = saved(outcome);
    const UserTime utc = UserTime::utc();
    EXPECT_FALSE(save.entry);
    EXPECT_EQ(save.start, CalendarDrag::instantAt(shown->day, shown->startMinute, utc));
    EXPECT_EQ(save.stop, CalendarDrag::instantAt(shown->day, shown->endMinute, utc));
    return utc.clockLabel(save.start) + "-" + utc.clockLabel(save.stop);
}

TEST(CalendarDragTest, MakesANewBlock)
{
    // A click makes an hour from the quarter in which the pointer lies, up to midnight.
    EXPECT_EQ(created(clock(9, 7), {}), "09:00-10:00");
    EXPECT_EQ(created(clock(9, 8), {}), "09:00-10:00");
    EXPECT_EQ(created(clock(23, 30), {}), "23:30-00:00");
    EXPECT_EQ(created(clock(9, 1), clock(9, 7)), "09:00-10:00");
    EXPECT_EQ(created(-20, {}), "00:00-01:00");
    EXPECT_EQ(created(1440, {}), "nothing");
    // A drag goes to the nearest quarter, in both directions.
    EXPECT_EQ(created(clock(9, 1), clock(9, 8)), "09:00-09:15");
    EXPECT_EQ(created(clock(9, 1), clock(8, 20)), "08:15-09:00");
    EXPECT_EQ(created(clock(22), 2000), "22:00-00:00");
}

TEST(CalendarDragTest, MovesABlockWithItsWholeLength)
{
    CalendarDrag drag = unlocked();
    ASSERT_TRUE(drag.press(CalendarDrag::OnEntry{block(overnight), {}, clock(23)}));
    drag.drag(monday, clock(23, 2), 4);
    EXPECT_FALSE(drag.preview());
    // To a locked day it does not go, and once moved it stays moved.
    drag.drag(monday.adding(2), clock(20), 80);
    drag.drag(monday.adding(1), clock(22), 2);
    const auto preview = drag.preview();
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->day, monday.adding(2));
    EXPECT_EQ(preview->startMinute, clock(21, 15));
    EXPECT_EQ(preview->endMinute, 1440);
    EXPECT_FALSE(preview->continuesAfter);
    const auto save = saved(drag.release());
    EXPECT_EQ(save.entry, overnight);
    EXPECT_EQ(save.start, at("2025-03-05T21:15:00Z"));
    EXPECT_EQ(save.stop - save.start, *overnight.stop - overnight.start);
    EXPECT_FALSE(drag.state());

    drag.press(CalendarDrag::OnEntry{block(morning), {}, clock(9, 10)});
    drag.drag(monday, 5000, 80);
    EXPECT_EQ(drag.preview()->startMinute, 1425);
    drag.drag(monday, -5000, 80);
    EXPECT_EQ(saved(drag.release()).start, at("2025-03-03T00:00:00Z"));
}

TEST(CalendarDragTest, DragsOneEdgeAndLeavesTheOther)
{
    const auto resized = [](const DaySegment &segment, Edge edge, double minute) {
        CalendarDrag drag = unlocked();
        drag.press(CalendarDrag::OnEntry{segment, edge, 0});
        EXPECT_FALSE(drag.preview());
        drag.drag(monday.adding(5), minute, 0);
        const DaySegment shown = drag.preview().value();
        EXPECT_EQ(shown.day, segment.day);
        const auto save = saved(drag.release());
        EXPECT_EQ(edge == Edge::start ? save.stop : save.start,
                  edge == Edge::start ? *segment.entry.stop : segment.entry.start);
        return std::pair(edge == Edge::start ? save.start : save.stop,
                         edge == Edge::start ? shown.startMinute : shown.endMinute);
    };
    EXPECT_EQ(resized(block(morning), Edge::end, clock(8)),
              std::pair(at("2025-03-03T09:15:00Z"), clock(9, 15)));
    EXPECT_EQ(resized(block(morning), Edge::end, 3000), std::pair(at("2025-03-04T00:00:00Z"), 1440.0));
    EXPECT_EQ(resized(block(morning), Edge::start, clock(11)),
              std::pair(at("2025-03-03T09:15:00Z"), clock(9, 15)));
    EXPECT_EQ(resized(block(morning), Edge::start, -9), std::pair(at("2025-03-03T00:00:00Z"), 0.0));
    // The far edge lies on another day and keeps its seconds.
    EXPECT_EQ(resized(block(overnight, 1), Edge::end, clock(3, 5)),
              std::pair(at("2025-03-04T03:00:00Z"), clock(3)));
    EXPECT_EQ(resized(block(overnight), Edge::start, clock(21)),
              std::pair(at("2025-03-03T21:00:00Z"), clock(21)));
}

TEST(CalendarDragTest, OpensWhatWasOnlyPressedOrCannotChange)
{
    const auto opens = [](const DaySegment &segment, std::optional<Edge> edge, double travelled) {
        CalendarDrag drag = unlocked();
        EXPECT_TRUE(drag.press(CalendarDrag::OnEntry{segment, edge, segment.startMinute}));
        if (travelled > 0)
            drag.drag(monday.adding(3), clock(15), travelled);
        EXPECT_FALSE(drag.preview());
        return drag.release() == CalendarDrag::Outcome(CalendarDrag::OpenEntry{segment.entry});
    };
    EXPECT_TRUE(opens(block(morning), {}, 4));
    EXPECT_TRUE(opens(block(morning), Edge::end, 0));
    EXPECT_TRUE(opens(block(overnight, 1), {}, 90));
    EXPECT_TRUE(
        opens(block(entry("locked", "2025-03-03T09:00:00Z", "2025-03-03T10:00:00Z")), Edge::start, 90));
    EXPECT_TRUE(opens(block(entry("running", "2025-03-03T09:00:00Z", nullptr)), Edge::end, 90));

    CalendarDrag drag = unlocked();
    EXPECT_FALSE(drag.press(CalendarDrag::OnEmpty{monday.adding(1), clock(9)}));
    drag.drag(monday, clock(10), 90);
    EXPECT_EQ(drag.release(), CalendarDrag::Outcome());
    drag.press(CalendarDrag::OnEmpty{monday, clock(9)});
    drag.cancel();
    EXPECT_EQ(drag.release(), CalendarDrag::Outcome());
}

TEST(CalendarDragTest, StartsAndMovesNothingOnADayThatNeverWas)
{
    CalendarDrag drag = unlocked(UserTime::make("Pacific/Apia").value());
    const DayKey skipped = day("2011-12-30");
    EXPECT_FALSE(drag.press(CalendarDrag::OnEmpty{skipped, clock(9)}));
    const TimeEntryResponse made = entry("a", "2011-12-29T20:00:00Z", "2011-12-29T21:00:00Z");
    drag.press(CalendarDrag::OnEntry{
        {.entry = made, .day = skipped.adding(-1), .startMinute = clock(10)}, {}, clock(10)});
    drag.drag(skipped, clock(12), 60);
    EXPECT_EQ(drag.preview()->day, skipped.adding(-1));
    drag.drag(skipped.adding(1), clock(12), 60);
    EXPECT_EQ(saved(drag.release()).start, at("2011-12-30T22:00:00Z"));
}

/// Cuts short entries all along a day and drags their edges to places all over it.
void checkDay(const UserTime &time, DayKey date)
{
    const auto [from, to] = time.dayInterval(date);
    for (Instant start = from; start < to; start += std::chrono::hours{1}) {
        TimeEntryResponse made;
        made.start = start;
        made.stop = std::min(to, start + std::chrono::minutes{30});
        const auto segments = CalendarLayout::days({made}, date, date, time, start).front().segments;
        ASSERT_EQ(segments.size(), 1U);
        const DaySegment &segment = segments.front();
        if (time.dayKey(start) == date)
            ASSERT_EQ(segment.startMinute, time.minuteOfDay(start));
        ASSERT_TRUE(segment.startMinute >= 0 && segment.endMinute <= 1440);
        ASSERT_GT(segment.endMinute, segment.startMinute);
        CalendarDrag drag = unlocked(time);
        for (int minute = 0; minute <= 1440; minute += 45) {
            for (const Edge edge : {Edge::start, Edge::end}) {
                drag.press(CalendarDrag::OnEntry{segment, edge, 0});
                drag.drag(date, minute, 9);
                const auto save = saved(drag.release());
                ASSERT_LT(save.start, save.stop) << minute;
                ASSERT_EQ(edge == Edge::start ? save.stop : save.start,
                          edge == Edge::start ? *made.stop : made.start);
            }
        }
    }
}

/// The days of a year that do not have 24 hours.
std::vector<DayKey> oddDays(const UserTime &time, int year)
{
    std::vector<DayKey> days;
    const auto isOdd = [&](DayKey first, int count) {
        return time.startOfDay(first.adding(count)) - time.startOfDay(first) !=
               std::chrono::hours{24 * count};
    };
    for (DayKey week{year, 1, 1}; week.year == year; week = week.adding(7)) {
        for (int i = 0; i < 7 && isOdd(week, 7); ++i) {
            if (isOdd(week.adding(i), 1))
                days.push_back(week.adding(i));
        }
    }
    return days;
}

TEST(CalendarDragTest, HoldsOnEveryChangeOfEveryZone)
{
    // Zones that change alike are checked once.
    std::set<std::pair<Instant, Instant>> checked;
    for (const std::string &name : zoneNames()) {
        const auto time = UserTime::make(name);
        // A year with changes at midnight on both sides and one with a skipped day.
        for (const int year : {2018, 2011}) {
            for (const DayKey date : time ? oddDays(*time, year) : std::vector<DayKey>()) {
                const InstantInterval interval = time->dayInterval(date);
                if (!checked.emplace(interval.from, interval.to).second)
                    continue;
                SCOPED_TRACE(name + " " + date.description());
                checkDay(*time, date);
                if (HasFatalFailure())
                    return;
            }
        }
    }
    EXPECT_GT(checked.size(), 50U);
}

} // namespace
} // namespace orvane
