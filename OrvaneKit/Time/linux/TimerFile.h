// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/FileDescriptor.h"

#include <QSocketNotifier>
#include <chrono>
#include <ctime>
#include <functional>

namespace orvane {

/// A timer of the kernel's on one of its clocks; unlike Qt's own it goes on while the computer sleeps.
///
/// Owner: the timer that it serves. Thread: the one that made it, which has an event loop.
class TimerFile {
public:
    explicit TimerFile(clockid_t clock);

    /// Calls `action` once, and not what was scheduled before. `when` and `flags` are timerfd_settime's: the
    /// time from now on, or with TFD_TIMER_ABSTIME the clock's; with TFD_TIMER_CANCEL_ON_SET also when the
    /// clock was set.
    void schedule(std::chrono::nanoseconds when, int flags, std::function<void()> action);
    void cancel();

private:
    void set(std::chrono::nanoseconds when, int flags);
    void fire();

    FileDescriptor m_file;
    QSocketNotifier m_notifier;
    std::function<void()> m_action;
};

} // namespace orvane
