// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/DayTurn.h"

#include <utility>

namespace orvane {

DayTurn::DayTurn(UserTime time, std::unique_ptr<WallTimer> timer)
    : m_time(std::move(time)), m_timer(std::move(timer)), m_today(m_time.today())
{
    look();
}

void DayTurn::setTime(UserTime time)
{
    m_time = std::move(time);
    look();
}

void DayTurn::look()
{
    const DayKey today = m_time.today();
    m_timer->schedule(m_time.startOfDay(today.adding(1)), [this] { look(); });
    if (std::exchange(m_today, today) != today)
        Q_EMIT turned();
}

} // namespace orvane
