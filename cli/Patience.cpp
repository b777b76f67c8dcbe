// SPDX-License-Identifier: GPL-3.0-or-later
#include "Patience.h"

#include "Account/ServerAccess.h"

#include <algorithm>

namespace orvane {

namespace {

/// A server that is only busy with a long queue answers the request in flight by then, and is not taken for
/// one that is away.
constexpr std::chrono::milliseconds windDown{300};

} // namespace

Patience::Patience(std::chrono::milliseconds length, QObject *parent) : QObject(parent), m_length(length)
{
    for (QTimer *timer : {&m_windDown, &m_end}) {
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
    }
    connect(&m_windDown, &QTimer::timeout, this, [this] {
        m_isWindingDown = true;
        Q_EMIT windingDown();
    });
    connect(&m_end, &QTimer::timeout, this,
            [this] { m_access->giveUp("The server did not answer in time."); });
}

void Patience::begin(std::shared_ptr<ServerAccess> access)
{
    m_access = std::move(access);
    count();
}

void Patience::restart()
{
    if (m_end.isActive() && !m_isWindingDown)
        count();
}

void Patience::end()
{
    m_windDown.stop();
    m_end.stop();
}

void Patience::count()
{
    m_windDown.start(std::max(m_length - windDown, std::chrono::milliseconds{0}));
    m_end.start(m_length);
    m_access->giveUpAt(std::chrono::steady_clock::now() + m_length);
}

} // namespace orvane
