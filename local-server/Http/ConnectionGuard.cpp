// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ConnectionGuard.h"

#include "Http/Problems.h"
#include "Http/RequestGate.h"

#include <sys/socket.h>
#include <unistd.h>

namespace orvane::server {

namespace {

constexpr std::size_t mostConnections = 128;
/// A request's line and headers may have this much on top of its body.
constexpr qint64 longestHead = 64 * 1024;
constexpr qint64 longestRequest = static_cast<qint64>(longestBody) + longestHead;
/// What is read away of a refused request, so that its sender gets to see the answer.
constexpr qint64 longestDrain = 16 * longestRequest;
constexpr std::chrono::milliseconds longestQuiet{120'000};
constexpr std::chrono::milliseconds longestArrival{30'000};
constexpr std::chrono::milliseconds sweepInterval{5'000};

} // namespace

GuardedSocket::GuardedSocket(QObject *parent) : QTcpSocket(parent)
{
    m_lastArrival.start();
    // Connected before the HTTP library connects, hence called before it reads.
    connect(this, &QTcpSocket::readyRead, this, &GuardedSocket::arrived);
}

void GuardedSocket::arrived()
{
    m_lastArrival.start();
    if (!m_requestBegan.isValid())
        m_requestBegan.start();
    m_received += bytesAvailable() - m_unread;
    if (!m_refused && m_received > longestRequest) {
        refuse();
    }
    if (m_refused) {
        if (isTransactionStarted())
            commitTransaction();
        skip(bytesAvailable());
        if (m_received > longestDrain)
            abort();
    }
    QMetaObject::invokeMethod(this, &GuardedSocket::settle, Qt::QueuedConnection);
}

void GuardedSocket::settle()
{
    m_unread = bytesAvailable();
}

void GuardedSocket::refuse()
{
    m_refused = true;
    const auto body = QByteArray::fromStdString(bodyTooLarge().body);
    write("HTTP/1.1 413 Payload Too Large\r\nContent-Type: application/problem+json\r\n"
          "Connection: close\r\nContent-Length: " +
          QByteArray::number(body.size()) + "\r\n\r\n" + body);
    flush();
    // Closing at once with unread bytes would take the answer back; the sender closes, or the sweep does.
    ::shutdown(static_cast<int>(socketDescriptor()), SHUT_WR);
}

void GuardedSocket::requestAnswered()
{
    m_received = 0;
    m_requestBegan.invalidate();
}

void GuardedSocket::dropIfStale()
{
    const bool stuck = m_requestBegan.isValid() && m_requestBegan.hasExpired(longestArrival.count());
    if (!stuck && !m_lastArrival.hasExpired(longestQuiet.count()))
        return;
    abort();
    deleteLater();
}

ConnectionGuard::ConnectionGuard(QObject *parent) : QTcpServer(parent)
{
    connect(&m_sweep, &QTimer::timeout, this, &ConnectionGuard::sweep);
    m_sweep.start(sweepInterval);
}

void ConnectionGuard::incomingConnection(qintptr descriptor)
{
    std::erase_if(m_sockets, [](const auto &socket) {
        return !socket || socket->state() == QAbstractSocket::UnconnectedState;
    });
    if (m_sockets.size() >= mostConnections) {
        ::close(static_cast<int>(descriptor));
        return;
    }
    auto *socket = new GuardedSocket(this);
    socket->setSocketDescriptor(descriptor);
    m_sockets.emplace_back(socket);
    addPendingConnection(socket);
}

void ConnectionGuard::sweep()
{
    for (const auto &socket : m_sockets) {
        if (socket)
            socket->dropIfStale();
    }
}

} // namespace orvane::server
