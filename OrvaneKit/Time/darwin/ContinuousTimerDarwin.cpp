// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/ContinuousTimer.h"

#include <ctime>

namespace orvane {

namespace {

/// The system's monotonic clock counts sleep there, and its timers do not: what was due meanwhile comes as
/// much later as the computer was still awake before it. Delays here are short, and who is called asks the
/// clock.
class MonotonicTimer final : public ContinuousTimer {
public:
    std::chrono::milliseconds now() const override
    {
        using namespace std::chrono;
        timespec time{};
        ::clock_gettime(CLOCK_MONOTONIC, &time);
        return floor<milliseconds>(seconds{time.tv_sec} + nanoseconds{time.tv_nsec});
    }
    void schedule(std::chrono::milliseconds delay, std::function<void()> action) override
    {
        m_timer.schedule(delay, std::move(action));
    }
    void cancel() override { m_timer.cancel(); }

private:
    SystemRetryTimer m_timer;
};

} // namespace

std::unique_ptr<ContinuousTimer> makeContinuousTimer()
{
    return std::make_unique<MonotonicTimer>();
}

} // namespace orvane
