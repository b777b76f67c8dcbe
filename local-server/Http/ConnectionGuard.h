// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace orvane::server {

/// A time that only goes forward, since some point of its own.
using SteadyTime = std::chrono::milliseconds;
using SteadyClock = std::function<SteadyTime()>;

/// A connection that bounds what one request may bring: the HTTP library collects a request until it is
/// complete, however long it is. Its requests are answered one after the other, also when an answer takes a
/// while and the next request is there already.
class GuardedSocket : public QTcpSocket {
    Q_OBJECT

public:
    /// A request for `upgradePath` is kept from the HTTP library; empty when there is no such path.
    GuardedSocket(SteadyClock clock, const std::string &upgradePath, QObject *parent);
    ~GuardedSocket() override;

    /// Calls `begin` when the answers to all earlier requests have been given.
    void takeTurn(std::function<void()> begin);
    /// An answer was given: the next byte belongs to another request.
    void requestAnswered();
    /// Whether nothing is being answered, and nothing has come that was not looked at yet.
    bool isIdle() const;
    /// Whether it has had a moment to say something.
    bool hadItsMoment() const;

    /// A stranger is who has not shown a good access token over this connection so far.
    bool isStranger() const { return m_isStranger; }
    void setSignedIn();

    /// Whether it has been silent, or its request has been arriving, for too long.
    bool isStale() const;
    /// Ends the connection at once, and this object soon.
    void drop();
    /// It is open for who is signed in, who looks after it from now on: no request comes over it any more.
    void handOver();
    /// Called once, when the connection or this object ends.
    void onGone(std::function<void()> gone) { m_gone = std::move(gone); }

Q_SIGNALS:
    void signedIn();
    /// The next bytes are a request for the upgrade path. Nobody else reads them, or what comes after them.
    void upgradeAsked();

private:
    void arrived();
    void settle();
    bool isUpgrade();
    void keepFromLibrary();
    void tellGone();
    void refuse();
    void beginNextTurn();

    SteadyClock m_clock;
    /// How a request for the upgrade path begins, and how this one does as long as it may be one.
    const std::string m_upgradeLine;
    std::optional<std::string> m_line;
    std::function<void()> m_gone;
    SteadyTime m_began;
    SteadyTime m_lastArrival;
    std::optional<SteadyTime> m_requestBegan;
    std::deque<std::function<void()>> m_turns;
    qint64 m_received = 0;
    qint64 m_unread = 0;
    bool m_isAnswering = false;
    bool m_isStranger = true;
    bool m_hasSpoken = false;
    bool m_refused = false;
    bool m_isHandedOver = false;
};

/// Takes connections: those of signed-in users as long as the process has descriptors, and of strangers a
/// number for each peer. A stranger too many is let in, and that peer's oldest one goes for it, so that those
/// who hold connections open shut nobody out. Who is being answered does not have to go, and who has only
/// just come has to for want of descriptors alone. What a new connection costs does not grow with the number
/// of those that are open.
class ConnectionGuard : public QTcpServer {
    Q_OBJECT

public:
    struct Options {
        /// The address of a trusted proxy: its connections carry everybody's requests, so none of them is a
        /// stranger's.
        std::optional<std::string> trustedProxy = {};
        /// Of all connections together; what the process has descriptors for, without it.
        std::optional<std::size_t> mostConnections = {};
        /// The system's when absent.
        SteadyClock clock = {};
        /// Requests for this path go to who hears upgradeAsked(); without it there is none.
        std::string upgradePath = {};
    };

    ConnectionGuard();
    explicit ConnectionGuard(Options options);
    ~ConnectionGuard() override;

    /// Closes the connections that are stale or too many; happens by itself every second.
    void sweep();

Q_SIGNALS:
    void upgradeAsked(GuardedSocket *socket);

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    /// Connections by the number of their coming, so the oldest is first.
    using Arrivals = std::map<std::uint64_t, GuardedSocket *>;

    void take(GuardedSocket *socket);
    void forget(std::uint64_t number, const QHostAddress &peer);
    void forgetStranger(std::uint64_t number, const QHostAddress &peer);
    void keepConnections(std::size_t most);

    Options m_options;
    std::size_t m_most;
    std::uint64_t m_lastNumber = 0;
    /// The open ones, then those of them that are strangers', and these by their peer.
    Arrivals m_connections;
    Arrivals m_strangers;
    QHash<QHostAddress, Arrivals> m_strangersOf;
    QTimer m_sweep;
};

} // namespace orvane::server
