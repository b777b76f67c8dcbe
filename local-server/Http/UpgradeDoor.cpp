// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/UpgradeDoor.h"

#include "Http/Forwarding.h"
#include "Http/Problems.h"
#include "Http/RequestHead.h"

#include <QWebSocket>
#include <algorithm>
#include <utility>

namespace orvane::server {

namespace {

/// An access token and what browsers add of their own.
constexpr qsizetype longestUpgradeHead = 16L * 1024;
/// Of a connection; more than any one frame that the hub reads.
constexpr qint64 mostUnread = 64LL * 1024;

void refuse(GuardedSocket &socket, const HttpResponse &response)
{
    QByteArray out = "HTTP/1.1 " + QByteArray::number(response.status) + " Refused\r\n";
    for (const auto &[name, value] : response.headers.all())
        out += QByteArray::fromStdString(name) + ": " + QByteArray::fromStdString(value) + "\r\n";
    out += "Connection: close\r\nContent-Length: " + QByteArray::number(response.body.size()) + "\r\n\r\n";
    socket.write(out + QByteArray::fromStdString(response.body));
    socket.disconnectFromHost();
}

HttpResponse notUnderstood()
{
    return problem(400, "The request was not understood.", "Its head is no plain request.");
}

HttpResponse upgradeRequired()
{
    HttpResponse response =
        problem(426, "This address takes WebSockets alone.", "Ask for a connection to be upgraded.");
    response.headers.set("Upgrade", "websocket");
    return response;
}

} // namespace

UpgradeDoor::UpgradeDoor(Upgrades upgrades)
    : m_upgrades(std::move(upgrades))
    , m_server(QStringLiteral("orvane-server"), QWebSocketServer::NonSecureMode)
{
    connect(&m_server, &QWebSocketServer::newConnection, this, &UpgradeDoor::handOut);
}

UpgradeDoor::~UpgradeDoor() = default;

void UpgradeDoor::take(GuardedSocket *socket)
{
    // Whatever comes while it is decided waits with the sender.
    socket->setReadBufferSize(mostUnread);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readHead(socket); });
    readHead(socket);
}

void UpgradeDoor::readHead(GuardedSocket *socket)
{
    // All of it stays in the connection, where the WebSocket library is to find it.
    const QByteArray begun = socket->peek(longestUpgradeHead);
    const auto end = begun.indexOf("\r\n\r\n");
    if (end < 0 && begun.size() < longestUpgradeHead)
        return;
    disconnect(socket, &QTcpSocket::readyRead, this, nullptr);
    const auto request =
        end < 0 ? std::nullopt : readGetHead({begun.constData(), static_cast<std::size_t>(end) + 4});
    if (!request)
        return refuse(*socket, notUnderstood());
    if (!asksForWebSocket(request->headers))
        return refuse(*socket, upgradeRequired());
    socket->takeTurn([this, socket, request] { decide(socket, *request); });
}

void UpgradeDoor::decide(GuardedSocket *socket, const HttpRequest &request)
{
    const QPointer<UpgradeDoor> self(this);
    const QPointer<GuardedSocket> asking(socket);
    m_upgrades.decide(
        request, addressText(socket->peerAddress()), [self, asking](Upgrades::Decision decision) {
            const bool isThere = self && asking && asking->state() == QAbstractSocket::ConnectedState;
            if (isThere)
                self->carryOut(asking, std::move(decision));
        });
}

void UpgradeDoor::carryOut(GuardedSocket *socket, Upgrades::Decision decision)
{
    if (decision)
        return open(socket, std::move(*decision));
    refuse(*socket, decision.error());
    socket->requestAnswered();
}

void UpgradeDoor::open(GuardedSocket *socket, Upgrades::Accept accept)
{
    std::erase_if(m_openings, [](const Opening &opening) { return !opening.socket; });
    m_openings.push_back({socket, socket->peerAddress(), socket->peerPort(), std::move(accept)});
    socket->handOver();
    // Small messages, each of which somebody waits for.
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_server.handleConnection(socket);
    // The head has come already.
    Q_EMIT socket->readyRead();
}

void UpgradeDoor::handOut()
{
    while (QWebSocket *open = m_server.nextPendingConnection()) {
        const auto opening = std::ranges::find_if(m_openings, [open](const Opening &one) {
            return one.port == open->peerPort() && one.peer == open->peerAddress();
        });
        if (opening == m_openings.end()) {
            open->deleteLater();
            continue;
        }
        const auto accept = std::move(opening->accept);
        m_openings.erase(opening);
        accept(open);
    }
}

} // namespace orvane::server
