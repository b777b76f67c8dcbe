// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/FileDescriptor.h"
#include "Time/AppClock.h"
#include "Time/WallTimer.h"

#include <QSocketNotifier>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

namespace orvane {

namespace {

/// The kernel's timer of the real-time clock: it fires after a sleep, and says when the clock was set.
class TimerFd final : public WallTimer {
public:
    TimerFd()
        : m_file(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC))
        , m_notifier(m_file.get(), QSocketNotifier::Read)
    {
        m_notifier.setEnabled(false);
        QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { fire(); });
    }

    void schedule(Instant at, std::function<void()> action) override
    {
        using std::chrono::duration_cast;
        using std::chrono::nanoseconds;
        using std::chrono::seconds;
        m_action = std::move(action);
        const auto left = at - AppClock::now();
        const auto due = (std::chrono::system_clock::now() + left).time_since_epoch();
        const auto whole = std::chrono::floor<seconds>(due);
        itimerspec when{};
        when.it_value.tv_sec = whole.count();
        when.it_value.tv_nsec = duration_cast<nanoseconds>(due - whole).count();
        ::timerfd_settime(m_file.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &when, nullptr);
        m_notifier.setEnabled(true);
    }

private:
    void fire()
    {
        // A read that fails with ECANCELED says that the clock was set.
        std::uint64_t times = 0;
        [[maybe_unused]] const auto read = ::read(m_file.get(), &times, sizeof times);
        m_notifier.setEnabled(false);
        if (const auto action = std::exchange(m_action, {}))
            action();
    }

    FileDescriptor m_file;
    QSocketNotifier m_notifier;
    std::function<void()> m_action;
};

} // namespace

std::unique_ptr<WallTimer> makeWallTimer()
{
    return std::make_unique<TimerFd>();
}

} // namespace orvane
