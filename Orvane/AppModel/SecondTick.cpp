// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/SecondTick.h"

#include "Time/AppClock.h"

namespace orvane {

SecondTick::SecondTick(QObject *parent) : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        schedule();
        Q_EMIT ticked();
    });
}

void SecondTick::setNeeded(const QObject *who, bool isNeeded)
{
    if (isNeeded && !m_needing.contains(who)) {
        m_needing.insert(who);
        connect(who, &QObject::destroyed, this, [this, who] { setNeeded(who, false); });
    } else if (!isNeeded && m_needing.remove(who)) {
        disconnect(who, &QObject::destroyed, this, nullptr);
    }
    update();
}

void SecondTick::setVisible(bool isVisible)
{
    if (m_isVisible == isVisible)
        return;
    m_isVisible = isVisible;
    update();
    if (isVisible)
        Q_EMIT ticked();
}

void SecondTick::update()
{
    const bool isWanted = m_isVisible && !m_needing.isEmpty();
    if (isWanted && !m_timer.isActive())
        schedule();
    else if (!isWanted)
        m_timer.stop();
}

void SecondTick::schedule()
{
    using namespace std::chrono;
    const auto now = AppClock::now();
    // A timer that fires a little early has made this second's tick.
    const auto next = floor<seconds>(now + milliseconds{100}) + seconds{1};
    m_timer.start(ceil<milliseconds>(next - now));
}

} // namespace orvane
