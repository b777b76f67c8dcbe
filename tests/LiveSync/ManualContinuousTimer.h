// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Time/ContinuousTimer.h"

#include <utility>
#include <vector>

namespace orvane::testing {

/// A timer whose time passes only when the test says so. `delays` holds every delay that was asked for.
class ManualContinuousTimer final : public ContinuousTimer {
public:
    std::chrono::milliseconds now() const override { return m_now; }
    void schedule(std::chrono::milliseconds delay, std::function<void()> action) override
    {
        delays.push_back(delay);
        m_due = m_now + delay;
        m_action = std::move(action);
    }
    void cancel() override { m_action = {}; }

    /// As a sleep does: what was due meanwhile comes at its end.
    void advance(std::chrono::milliseconds time)
    {
        m_now += time;
        if (m_action && m_now >= m_due)
            std::exchange(m_action, {})();
    }

    std::vector<std::chrono::milliseconds> delays;

private:
    std::chrono::milliseconds m_now{1'000'000};
    std::chrono::milliseconds m_due{0};
    std::function<void()> m_action;
};

} // namespace orvane::testing
