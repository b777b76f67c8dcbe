// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/ConnectionGuard.h"
#include "Hub/HubDialog.h"
#include "Hub/HubTickets.h"

#include <QObject>
#include <QString>
#include <set>
#include <string>
#include <vector>

class QWebSocket;

namespace orvane::server {

/// One client at the hub: its socket, what it says, and what it watches. Owned by the hub, on whose thread it
/// lives.
class HubConnection : public QObject {
    Q_OBJECT

public:
    struct Limits {
        /// Bytes that the client has not taken; one who is further behind hears of nothing in time anyway.
        qint64 mostUnsent = 256LL * 1024;
        std::size_t mostWatched = 16;
    };

    /// Takes the open socket.
    HubConnection(QWebSocket *socket, HubGuest guest, SteadyClock clock, Limits limits);

    const HubGuest &guest() const { return m_guest; }
    const std::set<std::string> &watched() const { return m_watched; }

    /// A record to a client that has shaken hands; ends the connection of one who is too far behind.
    void send(const QString &record);
    /// Answers the invocation that asked for it, where one did.
    void settleWatch(const std::string &workspaceId, bool isGranted);
    /// The same for a watch that could not be looked into.
    void failWatch(const std::string &workspaceId);
    void unwatch(const std::string &workspaceId);
    /// Says why, and that is the end.
    void hangUp(const std::string &why, bool mayReturn);
    /// Sends a ping and ends what has been silent for too long, as the time demands. Answers how long nothing
    /// will have to be done.
    SteadyTime keepAlive();

Q_SIGNALS:
    /// The client asks for a workspace; settleWatch() or failWatch() is to follow.
    void watchAsked(const std::string &workspaceId);
    void watchGranted(const std::string &workspaceId);
    void watchEnded(const std::string &workspaceId);
    void ended();

private:
    struct Asked {
        std::string workspaceId;
        std::optional<std::string> invocationId;
    };

    void hear(const QString &frame);
    void carryOut(const HubDialog::Act &act);
    void ask(const HubDialog::Watch &watch);
    void answer(const std::optional<std::string> &invocationId, const std::string &record);
    std::vector<Asked> takeAsked(const std::string &workspaceId);
    void write(const QString &record);
    void leave(int closeCode);
    void drop();

    QWebSocket *m_socket;
    const HubGuest m_guest;
    const SteadyClock m_clock;
    const Limits m_limits;
    HubDialog m_dialog;
    std::set<std::string> m_watched;
    /// What the client waits for an answer to.
    std::vector<Asked> m_asked;
    SteadyTime m_lastHeard;
    SteadyTime m_lastPing;
    std::optional<SteadyTime> m_left;
};

} // namespace orvane::server
