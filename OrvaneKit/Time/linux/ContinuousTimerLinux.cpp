// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/FileDescriptor.h"
#include "Time/ContinuousTimer.h"

#include <QSocketNotifier>
#include <algorithm>
#include <cstdint>
#include <ctime>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

namespace orvane {

namespace {

/// The kernel's timer of the time since it was started, sleep included. Qt's own timers stand still
/// meanwhile.
class BootTimer final : public ContinuousTimer {
public:
    BootTimer()
        : m_file(::timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC))
        , m_notifier(m_file.get(), QSocketNotifier::Read)
    {
        m_notifier.setEnabled(false);
        QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { fire(); });
    }

    std::chrono::milliseconds now() const override
    {
        using namespace std::chrono;
        timespec time{};
        ::clock_gettime(CLOCK_BOOTTIME, &time);
        return floor<milliseconds>(seconds{time.tv_sec} + nanoseconds{time.tv_nsec});
    }

    void schedule(std::chrono::milliseconds delay, std::function<void()> action) override
    {
        m_action = std::move(action);
        // A time of nothing would switch it off.
        set(std::max(delay, std::chrono::milliseconds{1}));
        m_notifier.setEnabled(true);
    }

    void cancel() override
    {
        m_action = {};
        set({});
        m_notifier.setEnabled(false);
    }

private:
    void set(std::chrono::milliseconds delay)
    {
        using namespace std::chrono;
        const auto whole = floor<seconds>(delay);
        itimerspec when{};
        when.it_value.tv_sec = whole.count();
        when.it_value.tv_nsec = nanoseconds(delay - whole).count();
        ::timerfd_settime(m_file.get(), 0, &when, nullptr);
    }

    void fire()
    {
        std::uint64_t times = 0;
        // Nothing to read: it was scheduled anew between the kernel's word and this.
        if (::read(m_file.get(), &times, sizeof times) < 0)
            return;
        m_notifier.setEnabled(false);
        if (const auto action = std::exchange(m_action, {}))
            action();
    }

    FileDescriptor m_file;
    QSocketNotifier m_notifier;
    std::function<void()> m_action;
};

} // namespace

std::unique_ptr<ContinuousTimer> makeContinuousTimer()
{
    return std::make_unique<BootTimer>();
}

} // namespace orvane
