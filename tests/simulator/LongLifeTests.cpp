// SPDX-License-Identifier: GPL-3.0-or-later
// An account as a window has it, open for three weeks of the world's time, beside what a process shows that
// was opened just then.
#include "simulator/LivingAccountTest.h"
#include "support/Memory.h"

namespace orvane::simulator {
namespace {

using std::chrono::days;
using std::chrono::minutes;
using testing::heapInUse;
using testing::residentMemory;

/// What a screen of this moment reads.
struct Shown {
    DayKey today;
    std::string zone;
    bool hour12 = false;
    std::vector<DayGroup> week;
    std::vector<TimeEntryResponse> entries;
    std::optional<TimeEntryResponse> running;
    std::vector<ProjectResponse> projects;
    std::size_t waiting = 0;

    static Shown of(Account &account)
    {
        const Tracker &tracker = account.tracker();
        const UserTime &time = account.time();
        const DayKey today = time.today();
        return {today,
                time.timeZone(),
                time.hour12(),
                tracker.days(time.weekStartContaining(today), 7),
                tracker.entries(),
                tracker.running(),
                tracker.catalog().projects(),
                account.outbox().pending().size()};
    }
};

class LongLifeTest : public LivingAccountTest {
protected:
    /// A morning's and an afternoon's work in the window, and something that is done on another device.
    void workOn(DayKey day)
    {
        const UserTime &time = window->time();
        Tracker &tracker = window->tracker();
        const auto at = [&](int hour, int minute) { return time.date(day, hour, minute); };
        EntryDetails details;
        details.description = "work on " + day.description();
        world.runUntil(at(9, 0));
        EXPECT_NE(run(tracker.start(details, at(9, 0))).outcome, SaveOutcome::failed);
        world.runUntil(at(12, 30));
        EXPECT_EQ(run(tracker.stop(at(12, 30))).outcome, SaveOutcome::stopped);
        world.runUntil(at(15, 0));
        recordElsewhere("elsewhere-" + day.description(), at(14, 0));
        // Every other day the timer is left running over midnight.
        world.runUntil(at(22, 0));
        if (day.day % 2 == 0)
            EXPECT_NE(run(tracker.start(details, at(22, 0))).outcome, SaveOutcome::failed);
    }

    void compare()
    {
        SCOPED_TRACE("at " + std::to_string(dayNumber));
        auto fresh = open(false);
        ASSERT_TRUE(fresh);
        const Shown there = Shown::of(*fresh);
        const Shown here = Shown::of(*window);
        EXPECT_EQ(here.today, there.today);
        EXPECT_EQ(here.zone, there.zone);
        EXPECT_EQ(here.hour12, there.hour12);
        EXPECT_EQ(here.week, there.week);
        EXPECT_EQ(here.entries, there.entries);
        EXPECT_EQ(here.running, there.running);
        EXPECT_EQ(here.projects, there.projects);
        EXPECT_EQ(here.waiting, there.waiting);
        EXPECT_EQ(window->state().kind(),
                  link->isUp ? AccountState::Kind::online : AccountState::Kind::offline);
        close(std::move(fresh));
    }

    void changeZoneElsewhere(const std::string &zone)
    {
        ProfileRequest profile;
        profile.timeZone = zone;
        EXPECT_TRUE(run(phone->updateProfile(profile)));
    }

    int dayNumber = 0;
};

TEST_F(LongLifeTest, ShowsAtEveryMidnightWhatAFreshProcessShows)
{
    window = open(true);
    ASSERT_TRUE(window);
    int turns = 0;
    QObject::connect(&window->tracker(), &Tracker::dayTurned, [&] { ++turns; });
    std::size_t heapAfterTwoDays = 0;
    std::optional<std::size_t> residentAfterTwoDays;
    DayKey worked;
    for (dayNumber = 1; dayNumber <= 21; ++dayNumber) {
        // In a zone further west it is the same day once more.
        if (window->time().today() == worked)
            world.runUntil(window->time().startOfDay(worked.adding(1)) + minutes{5});
        const DayKey day = window->time().today();
        worked = day;
        // Days 4 to 5 and a Sunday night without the server, and a night in which it comes and goes.
        link->isUp = dayNumber != 4 && dayNumber != 5 && dayNumber != 12;
        workOn(day);
        if (dayNumber == 7)
            changeZoneElsewhere("America/New_York");
        if (dayNumber == 18)
            link->isUp = false;
        if (dayNumber == 10) {
            world.sleepFor(days{4});
            dayNumber += 4;
        }
        const DayKey today = window->time().today();
        const Instant midnight = window->time().startOfDay(today == day ? day.adding(1) : today);
        world.runUntil(std::max(midnight, world.now()) + minutes{5});
        compare();
        if (dayNumber == 18) {
            link->isUp = true;
            world.runUntil(world.now() + minutes{5});
            compare();
        }
        if (dayNumber == 2) {
            heapAfterTwoDays = heapInUse();
            residentAfterTwoDays = residentMemory();
        }
    }
    EXPECT_GE(turns, 16);
    EXPECT_EQ(window->time().timeZone(), "America/New_York");
    constexpr std::size_t growth = std::size_t{2} << 20U;
    EXPECT_LT(heapInUse(), heapAfterTwoDays + growth);
    if (residentAfterTwoDays)
        EXPECT_LT(residentMemory(), *residentAfterTwoDays + growth);
}

} // namespace
} // namespace orvane::simulator
