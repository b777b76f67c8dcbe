// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/ContinuousTimer.h"
#include "Time/linux/TimerFile.h"

#include <ctime>
#include <utility>

namespace orvane {

namespace {

/// On the time since the computer was started, sleep included.
class BootTimer final : public ContinuousTimer {
public:
    std::chrono::milliseconds now() const override
    {
        using namespace std::chrono;
        timespec time{};
        ::clock_gettime(CLOCK_BOOTTIME, &time);
        return floor<milliseconds>(seconds{time.tv_sec} + nanoseconds{time.tv_nsec});
    }

    void schedule(std::chrono::milliseconds delay, std::function<void()> action) override
    {
        m_timer.schedule(delay, 0, std::move(action));
    }

    void cancel() override { m_timer.cancel(); }

private:
    TimerFile m_timer{CLOCK_BOOTTIME};
};

} // namespace

std::unique_ptr<ContinuousTimer> makeContinuousTimer()
{
    return std::make_unique<BootTimer>();
}

} // namespace orvane
