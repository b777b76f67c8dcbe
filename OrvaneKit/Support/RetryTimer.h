// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <chrono>
#include <functional>

namespace orvane {

/// One scheduled call on a monotonic clock: the seam where code waits, so that tests can let the time pass by
/// hand. Lives on, and calls back on, the thread that made it.
class RetryTimer {
public:
    RetryTimer() = default;
    RetryTimer(const RetryTimer &) = delete;
    RetryTimer &operator=(const RetryTimer &) = delete;
    virtual ~RetryTimer() = default;

    /// Calls `action` once after `delay`; replaces what was scheduled before.
    virtual void schedule(std::chrono::milliseconds delay, std::function<void()> action) = 0;
    virtual void cancel() = 0;
};

/// The real one.
class SystemRetryTimer final : public RetryTimer {
public:
    SystemRetryTimer();
    void schedule(std::chrono::milliseconds delay, std::function<void()> action) override;
    void cancel() override;

private:
    QTimer m_timer;
    std::function<void()> m_action;
};

} // namespace orvane
