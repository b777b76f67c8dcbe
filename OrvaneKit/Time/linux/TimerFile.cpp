// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/linux/TimerFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

namespace orvane {

TimerFile::TimerFile(clockid_t clock)
    : m_file(::timerfd_create(clock, TFD_NONBLOCK | TFD_CLOEXEC))
    , m_notifier(m_file.get(), QSocketNotifier::Read)
{
    m_notifier.setEnabled(false);
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { fire(); });
}

void TimerFile::schedule(std::chrono::nanoseconds when, int flags, std::function<void()> action)
{
    m_action = std::move(action);
    // A time of nothing would switch it off.
    set(std::max(when, std::chrono::nanoseconds{1}), flags);
    m_notifier.setEnabled(true);
}

void TimerFile::cancel()
{
    m_action = {};
    set({}, 0);
    m_notifier.setEnabled(false);
}

void TimerFile::set(std::chrono::nanoseconds when, int flags)
{
    const auto whole = std::chrono::floor<std::chrono::seconds>(when);
    itimerspec due{};
    due.it_value.tv_sec = whole.count();
    due.it_value.tv_nsec = (when - whole).count();
    ::timerfd_settime(m_file.get(), flags, &due, nullptr);
}

void TimerFile::fire()
{
    std::uint64_t times = 0;
    // Nothing to read: it was scheduled anew between the kernel's word and this. Other errors say that the
    // clock was set.
    if (::read(m_file.get(), &times, sizeof times) < 0 && errno == EAGAIN)
        return;
    m_notifier.setEnabled(false);
    if (const auto action = std::exchange(m_action, {}))
        action();
}

} // namespace orvane
