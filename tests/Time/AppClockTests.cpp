// SPDX-License-Identifier: GPL-3.0-or-later
#include "ClockOffset.h"

#include <cmath>
#include <limits>

namespace orvane {
namespace {

TEST(AppClock, TellsWholeMillisecondsAndRunsOnFromWhereItIsSet)
{
    const Instant before =
        millisecondsFloor(std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now()));
    const Instant now = AppClock::now();
    EXPECT_EQ(now, millisecondsFloor(now));
    EXPECT_GE(now, before);

    const ClockOffset moved("2031-05-06T07:08:09.010Z");
    const Instant first = AppClock::now();
    EXPECT_EQ(first, millisecondsFloor(first));
    EXPECT_LT(std::abs(secondsBetween(*instantFromIso8601("2031-05-06T07:08:09.010Z"), first)), 60);
    EXPECT_GE(AppClock::now(), first);
}

TEST(AppClock, StandsStillWhileItIsHeld)
{
    const ClockOffset moved("2031-05-06T07:08:09.010Z");
    {
        const ClockHold hold;
        const Instant asked = AppClock::now();
        // Whatever becomes of the computer's clock meanwhile.
        AppClock::setNow(asked + std::chrono::hours{1});
        EXPECT_EQ(AppClock::now(), asked);
        EXPECT_GE(hold.held(), std::chrono::milliseconds{0});
    }
    EXPECT_GE(AppClock::now(), *instantFromIso8601("2031-05-06T08:08:09.010Z")) << "and then runs on";
}

TEST(AppClockDeathTest, AnOffsetIsFiniteAndInRange)
{
    EXPECT_DEATH(OffsetBox::shared().setOffset(std::numeric_limits<double>::quiet_NaN()), "offset");
    EXPECT_DEATH(OffsetBox::shared().setOffset(1e18), "offset");
}

} // namespace
} // namespace orvane
