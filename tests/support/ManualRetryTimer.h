// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/RetryTimer.h"

#include <utility>
#include <vector>

namespace orvane {

/// A timer whose time passes only when the test says so. `delays` holds every delay that was asked for.
class ManualRetryTimer final : public RetryTimer {
public:
    void schedule(std::chrono::milliseconds delay, std::function<void()> action) override
    {
        delays.push_back(delay);
        m_remaining = delay;
        m_action = std::move(action);
    }
    void cancel() override { m_action = {}; }

    bool isScheduled() const { return static_cast<bool>(m_action); }
    void advance(std::chrono::milliseconds time)
    {
        m_remaining -= time;
        if (m_remaining <= std::chrono::milliseconds{0} && m_action)
            std::exchange(m_action, {})();
    }

    std::vector<std::chrono::milliseconds> delays;

private:
    std::chrono::milliseconds m_remaining{0};
    std::function<void()> m_action;
};

} // namespace orvane
