// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/ActionMoment.h"

#include "Support/DateText.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using Kind = ActionMoment::Kind;

const Instant asked = instantFromIso8601("2026-03-04T09:00:00Z").value();

TEST(ActionMoment, IsWhenItWasAskedForUnlessATimerBeginsLater)
{
    const auto of = [&](std::chrono::milliseconds after, std::chrono::milliseconds waited) {
        TimeEntryResponse running;
        running.start = asked + after;
        return ActionMoment::of(running, asked, waited);
    };
    const auto expected = [&](Kind kind, std::chrono::milliseconds after) {
        return ActionMoment{kind, asked + after};
    };
    EXPECT_EQ(ActionMoment::of({}, asked, 2s), expected(Kind::free, 0s));
    EXPECT_EQ(of(-1h, 2s), expected(Kind::free, 0s));
    EXPECT_EQ(of(0s, 2s), expected(Kind::free, 0s));
    EXPECT_EQ(of(1s, 2s), expected(Kind::overtaken, 1s)) << "started elsewhere while this one waited";
    EXPECT_EQ(of(3s, 2s), expected(Kind::free, 3s)) << "by a clock that is a little ahead";
    EXPECT_EQ(of(1min, 2s), expected(Kind::ahead, 1min));
}

TEST(ActionMoment, AStartAheadOfTimeNamesItsDay)
{
    EXPECT_TRUE(ActionMoment::mayStart(asked - 12h, false, asked));
    EXPECT_TRUE(ActionMoment::mayStart(asked + 1min, false, asked));
    EXPECT_FALSE(ActionMoment::mayStart(asked + 61s, false, asked));
    EXPECT_TRUE(ActionMoment::mayStart(asked + 12h, true, asked));
}

} // namespace
} // namespace orvane
