// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/ContinuousTimer.h"

#include "support/Await.h"

#include <gtest/gtest.h>
#include <string>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using testing::eventually;

TEST(ContinuousTimer, CallsOnceTheLatestOfWhatWasScheduled)
{
    const auto timer = makeContinuousTimer();
    std::string called;
    const auto before = timer->now();
    timer->schedule(1ms, [&] { called += "replaced "; });
    timer->schedule(30ms, [&] { called += "first "; });
    ASSERT_TRUE(eventually([&] { return !called.empty(); }));
    EXPECT_GE(timer->now() - before, 30ms);
    timer->schedule(1ms, [&] { called += "cancelled "; });
    timer->cancel();
    // Due before the loop looks, and scheduled anew by then.
    timer->schedule(1ms, [&] { called += "replaced "; });
    while (timer->now() - before < 60ms) {
    }
    timer->schedule(0ms, [&] {
        timer->schedule(0ms, [&] { called += "from within "; });
        called += "second ";
    });
    EXPECT_TRUE(eventually([&] { return called == "first second from within "; })) << called;
}

TEST(ContinuousTimer, MayGoInsideItsOwnCall)
{
    auto timer = makeContinuousTimer();
    timer->schedule(1ms, [&] { timer.reset(); });
    EXPECT_TRUE(eventually([&] { return timer == nullptr; }));
}

} // namespace
} // namespace orvane
