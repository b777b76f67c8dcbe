// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/AppClock.h"
#include "Time/WallTimer.h"

#include <QTimer>
#include <algorithm>
#include <utility>

namespace orvane {

namespace {

/// Looks at the clock from time to time: the system's timers stand still while it sleeps.
class CoarseTimer final : public WallTimer {
public:
    CoarseTimer()
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::CoarseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
    }

    void schedule(Instant at, std::function<void()> action) override
    {
        m_at = at;
        m_action = std::move(action);
        look();
    }

private:
    void look()
    {
        using std::chrono::milliseconds;
        constexpr milliseconds longest = std::chrono::minutes{1};
        const auto left = std::chrono::ceil<milliseconds>(m_at - AppClock::now());
        if (left.count() > 0) {
            m_timer.start(std::min(left, longest));
        } else if (const auto action = std::exchange(m_action, {})) {
            action();
        }
    }

    QTimer m_timer;
    Instant m_at;
    std::function<void()> m_action;
};

} // namespace

std::unique_ptr<WallTimer> makeWallTimer()
{
    return std::make_unique<CoarseTimer>();
}

} // namespace orvane
