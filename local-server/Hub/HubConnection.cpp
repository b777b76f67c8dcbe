// SPDX-License-Identifier: GPL-3.0-or-later
#include "Hub/HubConnection.h"

#include <QTimer>
#include <QWebSocket>
#include <QWebSocketProtocol>
#include <algorithm>
#include <iterator>

namespace orvane::server {

namespace {

constexpr std::chrono::seconds pingInterval{15};
constexpr std::chrono::seconds longestHandshake{15};
constexpr std::chrono::seconds longestHubSilence{30};
/// For the client to take what was said last, and say its own farewell.
constexpr std::chrono::seconds longestFarewell{5};
/// Questions of one client that wait for the database.
constexpr std::size_t mostAsked = 16;

} // namespace

HubConnection::HubConnection(QWebSocket *socket, HubGuest guest, SteadyClock clock, Limits limits)
    : m_socket(socket)
    , m_guest(std::move(guest))
    , m_clock(std::move(clock))
    , m_limits(limits)
    , m_lastHeard(m_clock())
    , m_lastPing(m_lastHeard)
{
    m_socket->setParent(this);
    m_socket->setMaxAllowedIncomingFrameSize(longestHubMessage);
    m_socket->setMaxAllowedIncomingMessageSize(longestHubMessage);
    connect(m_socket, &QWebSocket::textMessageReceived, this, &HubConnection::hear);
    connect(m_socket, &QWebSocket::binaryMessageReceived, this,
            [this] { leave(QWebSocketProtocol::CloseCodeDatatypeNotSupported); });
    connect(m_socket, &QWebSocket::disconnected, this, &HubConnection::ended);
}

void HubConnection::hear(const QString &frame)
{
    for (const auto &act : m_dialog.hear(frame.toStdString())) {
        if (!m_left)
            carryOut(act);
    }
    // Until the handshake it is the handshake that is waited for.
    if (m_dialog.isOpen())
        m_lastHeard = m_clock();
}

void HubConnection::carryOut(const HubDialog::Act &act)
{
    if (const auto *say = std::get_if<HubDialog::Say>(&act))
        write(QString::fromStdString(say->text));
    else if (const auto *watch = std::get_if<HubDialog::Watch>(&act))
        ask(*watch);
    else if (const auto *drop = std::get_if<HubDialog::Unwatch>(&act))
        unwatch(drop->workspaceId);
    else
        leave(QWebSocketProtocol::CloseCodeNormal);
}

void HubConnection::ask(const HubDialog::Watch &watch)
{
    if (m_asked.size() >= mostAsked)
        return hangUp("Too much is asked at a time.", true);
    m_asked.push_back({watch.workspaceId, watch.invocationId});
    Q_EMIT watchAsked(watch.workspaceId);
}

std::vector<HubConnection::Asked> HubConnection::takeAsked(const std::string &workspaceId)
{
    const auto isOfIt = [&](const Asked &one) { return one.workspaceId == workspaceId; };
    std::vector<Asked> taken;
    std::ranges::copy_if(m_asked, std::back_inserter(taken), isOfIt);
    std::erase_if(m_asked, isOfIt);
    return taken;
}

void HubConnection::answer(const std::optional<std::string> &invocationId, const std::string &record)
{
    if (invocationId)
        send(QString::fromStdString(record));
}

void HubConnection::settleWatch(const std::string &workspaceId, bool isGranted)
{
    const auto asked = takeAsked(workspaceId);
    // Nobody asks any more who has unwatched it meanwhile.
    if (asked.empty() || m_left)
        return;
    const bool isFull = m_watched.size() >= m_limits.mostWatched && !m_watched.contains(workspaceId);
    if (isGranted && !isFull && m_watched.insert(workspaceId).second)
        Q_EMIT watchGranted(workspaceId);
    for (const Asked &one : asked) {
        const std::string id = one.invocationId.value_or("");
        const auto completion = isGranted && isFull
                                    ? hub::Message::failedCompletion(id, "Too many workspaces are watched.")
                                    : hub::Message::completion(id, isGranted ? "true" : "false");
        answer(one.invocationId, hub::record(completion));
    }
}

void HubConnection::failWatch(const std::string &workspaceId)
{
    for (const Asked &one : takeAsked(workspaceId))
        answer(one.invocationId, hub::record(hub::Message::failedCompletion(
                                     one.invocationId.value_or(""), "The server is busy. Try again.")));
}

void HubConnection::unwatch(const std::string &workspaceId)
{
    for (const Asked &one : takeAsked(workspaceId))
        answer(one.invocationId,
               hub::record(hub::Message::completion(one.invocationId.value_or(""), "false")));
    if (m_watched.erase(workspaceId) > 0)
        Q_EMIT watchEnded(workspaceId);
}

void HubConnection::send(const QString &record)
{
    if (m_dialog.isOpen())
        write(record);
}

void HubConnection::write(const QString &record)
{
    if (m_left)
        return;
    m_socket->sendTextMessage(record);
    if (m_socket->bytesToWrite() > m_limits.mostUnsent)
        drop();
}

void HubConnection::hangUp(const std::string &why, bool mayReturn)
{
    send(QString::fromStdString(hub::record(hub::Message::close(why, mayReturn))));
    leave(QWebSocketProtocol::CloseCodeGoingAway);
}

void HubConnection::leave(int closeCode)
{
    if (m_left)
        return;
    m_left = m_clock();
    m_socket->flush();
    m_socket->close(static_cast<QWebSocketProtocol::CloseCode>(closeCode));
}

/// Who does not read is not waited for. The socket's end is told as it comes, which must not be in the midst
/// of telling everybody something.
void HubConnection::drop()
{
    if (!m_left)
        m_left = m_clock();
    QTimer::singleShot(0, m_socket, &QWebSocket::abort);
}

SteadyTime HubConnection::keepAlive()
{
    const SteadyTime now = m_clock();
    if (m_left) {
        if (now - *m_left >= longestFarewell)
            drop();
        return longestFarewell;
    }
    const SteadyTime patience = m_dialog.isOpen() ? longestHubSilence : longestHandshake;
    if (now - m_lastHeard >= patience) {
        drop();
        return longestFarewell;
    }
    if (now - m_lastPing >= pingInterval) {
        m_lastPing = now;
        send(QString::fromStdString(hub::record(hub::Message::ping())));
    }
    return std::min<SteadyTime>(m_lastPing + pingInterval, m_lastHeard + patience) - now;
}

} // namespace orvane::server
