// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/AppClock.h"
#include "Time/WallTimer.h"
#include "Time/linux/TimerFile.h"

#include <sys/timerfd.h>
#include <utility>

namespace orvane {

namespace {

/// On the real-time clock: it fires after a sleep, and says when the clock was set.
class RealTimeTimer final : public WallTimer {
public:
    void schedule(Instant at, std::function<void()> action) override
    {
        const auto left = at - AppClock::now();
        m_timer.schedule((std::chrono::system_clock::now() + left).time_since_epoch(),
                         TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, std::move(action));
    }

private:
    TimerFile m_timer{CLOCK_REALTIME};
};

} // namespace

std::unique_ptr<WallTimer> makeWallTimer()
{
    return std::make_unique<RealTimeTimer>();
}

} // namespace orvane
