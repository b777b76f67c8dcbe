// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/ConnectionGuard.h"
#include "OrvaneAPI/HttpMessage.h"
#include "Support/Result.h"

#include <QObject>
#include <QPointer>
#include <QWebSocketServer>
#include <functional>
#include <string>
#include <vector>

class QWebSocket;

namespace orvane::server {

/// Which requests for a WebSocket are granted, and by whom. Called on the thread of connections.
struct Upgrades {
    /// Takes the open connection, in answer to whose request it was given.
    using Accept = std::function<void(QWebSocket *)>;
    using Decision = Result<Accept, HttpResponse>;
    /// Calls `decided` once, at once or later; the connection may be gone by then, and the door too.
    using Decide = std::function<void(const HttpRequest &request, const std::string &peer,
                                      std::function<void(Decision)> decided)>;

    /// The one path that has WebSockets, without a query.
    std::string path;
    Decide decide;
};

/// Where a connection becomes a WebSocket. The HTTP library would open it before anybody could have looked a
/// token up, so it never sees such a request: the door reads its head, has it decided, and either answers as
/// to any request or hands the connection, all bytes still in it, to the WebSocket library.
class UpgradeDoor : public QObject {
public:
    explicit UpgradeDoor(Upgrades upgrades);
    ~UpgradeDoor() override;

    /// A connection whose next bytes are a request for the path; it is still its guard's.
    void take(GuardedSocket *socket);

private:
    void readHead(GuardedSocket *socket);
    void decide(GuardedSocket *socket, const HttpRequest &request);
    void carryOut(GuardedSocket *socket, Upgrades::Decision decision);
    void open(GuardedSocket *socket, Upgrades::Accept accept);
    void handOut();

    /// A connection whose handshake the WebSocket library is about to answer.
    struct Opening {
        QPointer<GuardedSocket> socket;
        QHostAddress peer;
        quint16 port = 0;
        Upgrades::Accept accept;
    };

    Upgrades m_upgrades;
    QWebSocketServer m_server;
    std::vector<Opening> m_openings;
};

} // namespace orvane::server
