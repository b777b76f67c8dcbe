// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <vector>

namespace orvane::server {

/// A connection that bounds what one request may bring: the HTTP library collects a request until it is
/// complete, however long it is.
class GuardedSocket : public QTcpSocket {
    Q_OBJECT

public:
    explicit GuardedSocket(QObject *parent);

    /// An answer was given: the next byte belongs to another request.
    void requestAnswered();
    /// Drops a connection that has been quiet, or whose request has been arriving, for too long.
    void dropIfStale();

private:
    void arrived();
    void settle();
    void refuse();

    QElapsedTimer m_lastArrival;
    QElapsedTimer m_requestBegan;
    qint64 m_received = 0;
    qint64 m_unread = 0;
    bool m_refused = false;
};

/// Takes connections, up to a number.
class ConnectionGuard : public QTcpServer {
    Q_OBJECT

public:
    explicit ConnectionGuard(QObject *parent = nullptr);

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void sweep();

    std::vector<QPointer<GuardedSocket>> m_sockets;
    QTimer m_sweep;
};

} // namespace orvane::server
