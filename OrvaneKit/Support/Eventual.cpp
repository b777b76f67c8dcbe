// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/Eventual.h"

#include "Support/Require.h"

#include <QAbstractEventDispatcher>
#include <QMetaObject>

namespace orvane {

QObject *hereReceiver()
{
    QObject *receiver = QAbstractEventDispatcher::instance();
    ORVANE_REQUIRE(receiver != nullptr, "an asynchronous call needs an event loop on its thread");
    return receiver;
}

void EventualWaiters::Waiter::resume() const
{
    if (home == nullptr)
        handle.resume();
    else
        QMetaObject::invokeMethod(home, [handle = handle] { handle.resume(); }, Qt::QueuedConnection);
}

bool EventualWaiters::isFinished() const
{
    const std::lock_guard lock(m_mutex);
    return m_isFinished;
}

bool EventualWaiters::claim()
{
    const std::lock_guard lock(m_mutex);
    return !std::exchange(m_isClaimed, true);
}

void EventualWaiters::wake()
{
    std::vector<Waiter> waiting;
    {
        const std::lock_guard lock(m_mutex);
        m_isFinished = true;
        waiting.swap(m_waiting);
    }
    for (const Waiter &waiter : waiting)
        waiter.resume();
}

void EventualWaiters::add(std::coroutine_handle<> handle)
{
    const Waiter waiter{handle, m_resume == ResumeWaiters::inPlace ? nullptr : hereReceiver()};
    {
        const std::lock_guard lock(m_mutex);
        if (!m_isFinished) {
            m_waiting.push_back(waiter);
            return;
        }
    }
    waiter.resume();
}

} // namespace orvane
