// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ConnectionGuard.h"

#include "Http/Forwarding.h"
#include "Http/Problems.h"
#include "Http/RequestGate.h"

#include <algorithm>
#include <iterator>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <utility>
#include <vector>

namespace orvane::server {

namespace {

constexpr std::size_t mostStrangersOfAPeer = 64;
/// For the database, the log, the server's own socket and what comes and goes.
constexpr std::size_t descriptorsOfOurs = 64;
/// A request's line and headers may have this much on top of its body.
constexpr qint64 longestHead = 64 * 1024;
constexpr qint64 longestRequest = static_cast<qint64>(longestBody) + longestHead;
/// Requests that a client may send before the first is answered.
constexpr std::size_t mostTurns = 32;
/// What is read away of a refused request, so that its sender gets to see the answer.
constexpr qint64 longestDrain = 16 * longestRequest;
/// Many clients behind one address may come at once, and each needs a moment to show its token.
constexpr std::chrono::seconds grace{1};
constexpr std::chrono::seconds longestSilence{5};
constexpr std::chrono::seconds longestQuiet{120};
constexpr std::chrono::seconds longestArrival{30};
constexpr std::chrono::seconds sweepInterval{1};
/// Many clients may come back in one moment, after the network was away.
constexpr int backlog = 1024;

using Arrivals = std::map<std::uint64_t, GuardedSocket *>;
using Doomed = std::vector<GuardedSocket *>;

SteadyTime steadyNow()
{
    return std::chrono::floor<SteadyTime>(std::chrono::steady_clock::now().time_since_epoch());
}

std::size_t descriptorsForConnections()
{
    struct rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return mostStrangersOfAPeer;
    const auto all = static_cast<std::size_t>(limit.rlim_cur);
    return std::max(all, 2 * descriptorsOfOurs) - descriptorsOfOurs;
}

/// The oldest ones beyond `most` of those who have said nothing in the moment that they had.
Doomed settledBeyond(std::size_t most, const Arrivals &strangers)
{
    Doomed doomed;
    for (const auto &[number, socket] : strangers) {
        // Whoever came later had even less time.
        if (strangers.size() - doomed.size() <= most || !socket->hadItsMoment())
            break;
        if (socket->isIdle())
            doomed.push_back(socket);
    }
    return doomed;
}

/// Each goes out of the lists as it goes, so these are not walked meanwhile.
void dropAll(const Doomed &doomed)
{
    for (GuardedSocket *socket : doomed)
        socket->drop();
}

} // namespace

GuardedSocket::GuardedSocket(SteadyClock clock, const std::string &upgradePath, QObject *parent)
    : QTcpSocket(parent)
    , m_clock(std::move(clock))
    , m_upgradeLine(upgradePath.empty() ? "" : "GET " + upgradePath)
    , m_began(m_clock())
    , m_lastArrival(m_began)
{
    // Connected before the HTTP library connects, hence called before it reads.
    connect(this, &QTcpSocket::readyRead, this, &GuardedSocket::arrived);
    connect(this, &QTcpSocket::disconnected, this, &GuardedSocket::tellGone);
}

GuardedSocket::~GuardedSocket()
{
    // Libraries that the connection went through take their leave by cutting all that was connected to it.
    tellGone();
    // The end of what is below says that it is disconnected, when there is no GuardedSocket any more.
    QObject::disconnect(this, &QTcpSocket::disconnected, this, &GuardedSocket::tellGone);
}

void GuardedSocket::tellGone()
{
    if (const auto gone = std::exchange(m_gone, {}))
        gone();
}

void GuardedSocket::arrived()
{
    if (isUpgrade())
        return keepFromLibrary();
    m_lastArrival = m_clock();
    m_hasSpoken = true;
    if (!m_requestBegan)
        m_requestBegan = m_lastArrival;
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

/// The first bytes of a request decide, of which the library may have read some already.
bool GuardedSocket::isUpgrade()
{
    const bool beginsRequest = !isTransactionStarted() && !m_isAnswering && !m_refused;
    if (beginsRequest && !m_upgradeLine.empty())
        m_line.emplace();
    if (!m_line)
        return false;
    const auto missing = static_cast<qint64>(m_upgradeLine.size() + 1 - m_line->size());
    m_line->append(peek(m_unread + missing).mid(m_unread).toStdString());
    const std::string_view begun = std::string_view(*m_line).substr(0, m_upgradeLine.size());
    const bool isLike = std::string_view(m_upgradeLine).starts_with(begun);
    if (isLike && m_line->size() <= m_upgradeLine.size())
        return false;
    const bool is = isLike && (m_line->back() == '?' || m_line->back() == ' ');
    m_line.reset();
    return is;
}

void GuardedSocket::keepFromLibrary()
{
    m_lastArrival = m_clock();
    m_hasSpoken = true;
    if (!m_requestBegan)
        m_requestBegan = m_lastArrival;
    QObject::disconnect(this, &QTcpSocket::readyRead, nullptr, nullptr);
    if (isTransactionStarted())
        rollbackTransaction();
    Q_EMIT upgradeAsked();
}

void GuardedSocket::handOver()
{
    setSignedIn();
    m_isHandedOver = true;
    // The HTTP library keeps a request for each connection until it hears of its end, which the WebSocket
    // library would keep from it. After that it must hear nothing more.
    Q_EMIT destroyed(this);
    QObject::disconnect(this, nullptr, nullptr, nullptr);
    connect(this, &QTcpSocket::disconnected, this, &GuardedSocket::tellGone);
    connect(this, &QTcpSocket::disconnected, this, &QObject::deleteLater);
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

void GuardedSocket::drop()
{
    // The HTTP library would go on to read what is there no more.
    QObject::disconnect(this, &QTcpSocket::readyRead, nullptr, nullptr);
    abort();
    deleteLater();
}

void GuardedSocket::takeTurn(std::function<void()> begin)
{
    if (m_isAnswering && m_turns.size() >= mostTurns) {
        QMetaObject::invokeMethod(this, &GuardedSocket::drop, Qt::QueuedConnection);
    } else if (m_isAnswering) {
        m_turns.push_back(std::move(begin));
    } else {
        m_isAnswering = true;
        begin();
    }
}

void GuardedSocket::requestAnswered()
{
    // Who has to give way from now on is to have its answer all the same.
    flush();
    m_received = 0;
    m_requestBegan.reset();
    m_lastArrival = m_clock();
    m_isAnswering = !m_turns.empty();
    // Not from inside this answer: the answers of many short requests would pile up on the stack.
    if (m_isAnswering)
        QMetaObject::invokeMethod(this, &GuardedSocket::beginNextTurn, Qt::QueuedConnection);
}

void GuardedSocket::beginNextTurn()
{
    // What was asked behind a request to close is not done.
    if (state() != ConnectedState) {
        m_turns.clear();
        m_isAnswering = false;
        return;
    }
    const auto begin = std::move(m_turns.front());
    m_turns.pop_front();
    begin();
}

void GuardedSocket::setSignedIn()
{
    if (!std::exchange(m_isStranger, false))
        return;
    Q_EMIT signedIn();
}

bool GuardedSocket::isIdle() const
{
    if (m_isAnswering)
        return false;
    int waiting = 0;
    const bool known = ::ioctl(static_cast<int>(socketDescriptor()), FIONREAD, &waiting) == 0;
    return !(known && waiting > 0);
}

bool GuardedSocket::hadItsMoment() const
{
    return m_clock() - m_began >= grace;
}

bool GuardedSocket::isStale() const
{
    if (m_isAnswering || m_isHandedOver)
        return false;
    const SteadyTime now = m_clock();
    const auto longest = m_hasSpoken || !m_isStranger ? longestQuiet : longestSilence;
    return now - m_lastArrival >= longest || (m_requestBegan && now - *m_requestBegan >= longestArrival);
}

ConnectionGuard::ConnectionGuard() : ConnectionGuard(Options{}) {}

ConnectionGuard::ConnectionGuard(Options options)
    : m_options(std::move(options)), m_most(m_options.mostConnections.value_or(descriptorsForConnections()))
{
    if (!m_options.clock)
        m_options.clock = steadyNow;
    setListenBacklogSize(backlog);
    connect(&m_sweep, &QTimer::timeout, this, &ConnectionGuard::sweep);
    m_sweep.start(sweepInterval);
}

ConnectionGuard::~ConnectionGuard()
{
    // They end after the lists out of which they would go.
    for (const auto &[number, socket] : m_connections) {
        socket->onGone({});
        socket->disconnect(this);
    }
}

void ConnectionGuard::incomingConnection(qintptr descriptor)
{
    auto *socket = new GuardedSocket(m_options.clock, m_options.upgradePath, this);
    if (!socket->setSocketDescriptor(descriptor)) {
        delete socket;
        return;
    }
    if (addressText(socket->peerAddress()) == m_options.trustedProxy)
        socket->setSignedIn();
    const auto known = m_strangersOf.constFind(socket->peerAddress());
    if (socket->isStranger() && known != m_strangersOf.cend())
        dropAll(settledBeyond(mostStrangersOfAPeer - 1, *known));
    keepConnections(m_most - 1);
    if (m_connections.size() >= m_most) {
        socket->drop();
        return;
    }
    take(socket);
    addPendingConnection(socket);
}

void ConnectionGuard::take(GuardedSocket *socket)
{
    const std::uint64_t number = ++m_lastNumber;
    // A closed socket does not say any more whose it was.
    const QHostAddress peer = socket->peerAddress();
    m_connections.emplace(number, socket);
    if (socket->isStranger()) {
        m_strangers.emplace(number, socket);
        m_strangersOf[peer].emplace(number, socket);
    }
    connect(socket, &GuardedSocket::signedIn, this, [this, number, peer] { forgetStranger(number, peer); });
    connect(socket, &GuardedSocket::upgradeAsked, this, [this, socket] { Q_EMIT upgradeAsked(socket); });
    socket->onGone([this, number, peer] { forget(number, peer); });
}

void ConnectionGuard::forget(std::uint64_t number, const QHostAddress &peer)
{
    m_connections.erase(number);
    forgetStranger(number, peer);
}

void ConnectionGuard::forgetStranger(std::uint64_t number, const QHostAddress &peer)
{
    m_strangers.erase(number);
    const auto of = m_strangersOf.find(peer);
    if (of == m_strangersOf.end())
        return;
    of->erase(number);
    if (of->empty())
        m_strangersOf.erase(of);
}

/// Of all connections together; strangers alone go.
void ConnectionGuard::keepConnections(std::size_t most)
{
    Doomed doomed;
    for (const auto &[number, socket] : m_strangers) {
        if (m_connections.size() - doomed.size() <= most)
            break;
        if (socket->isIdle())
            doomed.push_back(socket);
    }
    dropAll(doomed);
}

void ConnectionGuard::sweep()
{
    Doomed doomed;
    for (const auto &[number, socket] : m_connections) {
        if (socket->isStale())
            doomed.push_back(socket);
    }
    dropAll(std::exchange(doomed, {}));
    for (const Arrivals &strangers : std::as_const(m_strangersOf))
        std::ranges::copy(settledBeyond(mostStrangersOfAPeer, strangers), std::back_inserter(doomed));
    dropAll(doomed);
}

} // namespace orvane::server
