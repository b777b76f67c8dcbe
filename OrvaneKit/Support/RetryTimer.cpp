// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/RetryTimer.h"

#include <utility>

namespace orvane {

SystemRetryTimer::SystemRetryTimer()
{
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        if (const auto action = std::exchange(m_action, {}))
            action();
    });
}

void SystemRetryTimer::schedule(std::chrono::milliseconds delay, std::function<void()> action)
{
    m_action = std::move(action);
    m_timer.start(delay);
}

void SystemRetryTimer::cancel()
{
    m_timer.stop();
    m_action = {};
}

} // namespace orvane
