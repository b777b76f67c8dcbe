// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/NetworkThread.h"

#include "Support/Require.h"

namespace orvane {

NetworkThread::NetworkThread(NetworkLimits limits, std::chrono::milliseconds patience)
    : m_patience(patience)
    , m_transport(std::make_shared<NetworkTransport>(limits))
    , m_executor(std::make_shared<QObject>())
{
    m_thread.setObjectName(QStringLiteral("network"));
    m_executor->moveToThread(&m_thread);
    // Runs on the thread, when its loop has ended for whatever reason.
    QObject::connect(
        &m_thread, &QThread::finished, &m_thread, [this] { m_transport->close(); }, Qt::DirectConnection);
    m_thread.start();
}

NetworkThread::NetworkThread(OnThisThread)
    : m_patience(0)
    , m_transport(std::make_shared<NetworkTransport>())
    , m_executor(std::make_shared<QObject>())
{
}

NetworkThread::~NetworkThread()
{
    if (m_executor->thread() != &m_thread) {
        m_transport->close();
        return;
    }
    ORVANE_REQUIRE(!isCurrent(), "the network thread cannot end itself");
    QMetaObject::invokeMethod(
        executor(),
        [this] {
            m_transport->close();
            m_stopping = true;
            quitWhenIdle();
        },
        Qt::QueuedConnection);
    if (!m_thread.wait(QDeadlineTimer(m_patience))) {
        m_thread.quit();
        m_thread.wait();
    }
}

void NetworkThread::callEnded()
{
    --m_underWay;
    if (m_stopping)
        quitWhenIdle();
}

void NetworkThread::quitWhenIdle()
{
    if (m_underWay == 0)
        m_thread.quit();
}

} // namespace orvane
