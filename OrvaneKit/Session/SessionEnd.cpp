// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/SessionEnd.h"

#include <QMetaMethod>

namespace orvane {

void SessionEnd::listen(QObject *context, std::function<void()> handler)
{
    const std::lock_guard lock(m_mutex);
    connect(this, &SessionEnd::happened, context, std::move(handler), Qt::QueuedConnection);
    if (std::exchange(m_unheard, false))
        Q_EMIT happened();
}

void SessionEnd::tell()
{
    const std::lock_guard lock(m_mutex);
    m_unheard = !isSignalConnected(QMetaMethod::fromSignal(&SessionEnd::happened));
    Q_EMIT happened();
}

} // namespace orvane
