// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Hub/HubAccess.h"
#include "Hub/HubConnection.h"
#include "Requests/Changes.h"

#include <QObject>
#include <QTimer>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class QWebSocket;

namespace orvane::server {

/// Everybody who listens to live sync: tells those who watch a workspace what changes there, and a user's own
/// connections what changes for that user. Lives on the thread of connections; asks others about the
/// database, so that nobody waits for it.
class SyncHub : public QObject {
    Q_OBJECT

public:
    using Standings = std::optional<std::vector<HubStanding>>;
    /// Has questions answered, on the hub's thread; the answer may come when the hub is gone.
    using Ask = std::function<void(std::vector<HubQuestion>, std::function<void(Standings)>)>;

    struct Options {
        Ask ask;
        /// The system's when absent.
        SteadyClock clock = {};
        std::size_t mostOfAUser = 1024;
        std::size_t mostInAll = 4096;
        HubConnection::Limits limits = {};
    };

    explicit SyncHub(Options options);
    ~SyncHub() override;

    /// Why no further connection can be had; nothing when one can.
    std::optional<HttpResponse> refuse(const HubGuest &guest) const;
    /// Takes an open socket.
    void take(QWebSocket *socket, const HubGuest &guest);
    void tell(const ChangeNotice &notice);
    /// Says goodbye to all, who may come back.
    void close();
    bool isEmpty() const { return m_connections.empty(); }

    /// What is due by now: pings, the end of the silent, a look at whether sessions go on. Happens by itself.
    void keepAlive();

Q_SIGNALS:
    /// The last connection ended.
    void emptied();

private:
    using Connections = std::unordered_set<HubConnection *>;
    using Index = std::unordered_map<std::string, Connections>;

    void forget(HubConnection *connection);
    void lookInto(HubConnection *connection, const std::string &workspaceId);
    void review(const Connections &connections);
    void judge(HubConnection &connection, const HubStanding &standing) const;
    void wakeWithin(SteadyTime time);
    const Connections &listeners(const Change &change) const;

    Options m_options;
    Connections m_connections;
    Index m_ofUser;
    Index m_watching;
    SteadyTime m_lastReview{0};
    QTimer m_timer;
};

} // namespace orvane::server
