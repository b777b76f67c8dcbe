// SPDX-License-Identifier: GPL-3.0-or-later
#include "Hub/SyncHub.h"

#include <QPointer>
#include <QWebSocket>
#include <algorithm>
#include <ranges>

namespace orvane::server {

namespace {

/// How long somebody may listen on whose session came to its end by itself.
constexpr std::chrono::seconds reviewInterval{60};
/// Pings of many connections go out together rather than one after the other.
constexpr std::chrono::seconds shortestRest{1};
constexpr std::chrono::seconds firstLook{5};

SteadyTime systemSteadyTime()
{
    return std::chrono::floor<SteadyTime>(std::chrono::steady_clock::now().time_since_epoch());
}

QString changedRecord(const Change &change)
{
    const hub::Change told{std::string(text(change.topic)), change.workspaceId, change.userId};
    return QString::fromStdString(
        hub::record(hub::Message::invocation("Changed", {RawJson{encodeJson(told)}})));
}

template <class Index, class Connection>
void removeFrom(Index &index, const std::string &key, Connection *connection)
{
    const auto found = index.find(key);
    if (found == index.end())
        return;
    found->second.erase(connection);
    if (found->second.empty())
        index.erase(found);
}

} // namespace

SyncHub::SyncHub(Options options) : m_options(std::move(options))
{
    if (!m_options.clock)
        m_options.clock = systemSteadyTime;
    m_lastReview = m_options.clock();
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &SyncHub::keepAlive);
}

SyncHub::~SyncHub()
{
    for (HubConnection *connection : m_connections) {
        connection->disconnect(this);
        delete connection;
    }
}

std::optional<HttpResponse> SyncHub::refuse(const HubGuest &guest) const
{
    const auto own = m_ofUser.find(guest.userId);
    const std::size_t ofUser = own == m_ofUser.end() ? 0 : own->second.size();
    if (ofUser < m_options.mostOfAUser && m_connections.size() < m_options.mostInAll)
        return std::nullopt;
    HttpResponse response =
        problem(503, "Live sync has no room.", "Too many connections are open. Try again later.");
    response.headers.set("Retry-After", "30");
    return response;
}

void SyncHub::take(QWebSocket *socket, const HubGuest &guest)
{
    auto *connection = new HubConnection(socket, guest, m_options.clock, m_options.limits);
    m_connections.insert(connection);
    m_ofUser[guest.userId].insert(connection);
    connect(connection, &HubConnection::ended, this, [this, connection] { forget(connection); });
    connect(connection, &HubConnection::watchAsked, this,
            [this, connection](const std::string &workspaceId) { lookInto(connection, workspaceId); });
    connect(
        connection, &HubConnection::watchGranted, this,
        [this, connection](const std::string &workspaceId) { m_watching[workspaceId].insert(connection); });
    connect(connection, &HubConnection::watchEnded, this, [this, connection](const std::string &workspaceId) {
        removeFrom(m_watching, workspaceId, connection);
    });
    wakeWithin(firstLook);
}

void SyncHub::forget(HubConnection *connection)
{
    if (m_connections.erase(connection) == 0)
        return;
    removeFrom(m_ofUser, connection->guest().userId, connection);
    for (const std::string &workspaceId : connection->watched())
        removeFrom(m_watching, workspaceId, connection);
    connection->disconnect(this);
    connection->deleteLater();
    if (m_connections.empty()) {
        m_timer.stop();
        Q_EMIT emptied();
    }
}

void SyncHub::lookInto(HubConnection *connection, const std::string &workspaceId)
{
    m_options.ask({{connection->guest(), {workspaceId}}},
                  [asking = QPointer(connection), workspaceId](const Standings &standings) {
                      if (!asking)
                          return;
                      if (!standings)
                          return asking->failWatch(workspaceId);
                      asking->settleWatch(workspaceId, !standings->front().workspaceIds.empty());
                  });
}

const SyncHub::Connections &SyncHub::listeners(const Change &change) const
{
    static const Connections nobody;
    const bool isOfWorkspace = !change.workspaceId.empty();
    const Index &index = isOfWorkspace ? m_watching : m_ofUser;
    const auto found = index.find(isOfWorkspace ? change.workspaceId : change.userId);
    return found == index.end() ? nobody : found->second;
}

void SyncHub::tell(const ChangeNotice &notice)
{
    for (const Change &change : notice.changes) {
        const Connections &told = listeners(change);
        if (told.empty())
            continue;
        const QString record = changedRecord(change);
        for (HubConnection *connection : told) {
            const HubGuest &guest = connection->guest();
            const bool isOwnDoing = !notice.byConnection.empty() && guest.userId == notice.byUser &&
                                    guest.connectionId == notice.byConnection;
            if (!isOwnDoing)
                connection->send(record);
        }
        // Who had a session, or was in the workspace, may have lost that.
        if (change.topic == ChangeTopic::me || change.topic == ChangeTopic::settings)
            review(told);
    }
}

void SyncHub::review(const Connections &connections)
{
    std::vector<HubQuestion> questions;
    std::vector<QPointer<HubConnection>> asked;
    for (HubConnection *connection : connections) {
        const auto &watched = connection->watched();
        questions.push_back({connection->guest(), {watched.begin(), watched.end()}});
        asked.emplace_back(connection);
    }
    m_options.ask(std::move(questions),
                  [self = QPointer(this), asked = std::move(asked)](const Standings &standings) {
                      // The next look may be luckier.
                      if (!self || !standings)
                          return;
                      for (std::size_t i = 0; i < asked.size(); ++i) {
                          if (asked[i])
                              self->judge(*asked[i], (*standings)[i]);
                      }
                  });
}

void SyncHub::judge(HubConnection &connection, const HubStanding &standing) const
{
    if (!standing.isSignedIn)
        return connection.hangUp("Your session has ended.", false);
    std::vector<std::string> lost;
    for (const std::string &workspaceId : connection.watched()) {
        if (std::ranges::find(standing.workspaceIds, workspaceId) == standing.workspaceIds.end())
            lost.push_back(workspaceId);
    }
    for (const std::string &workspaceId : lost)
        connection.unwatch(workspaceId);
}

void SyncHub::keepAlive()
{
    const SteadyTime now = m_options.clock();
    if (now - m_lastReview >= reviewInterval) {
        m_lastReview = now;
        review(m_connections);
    }
    SteadyTime rest = m_lastReview + reviewInterval - now;
    for (HubConnection *connection : m_connections)
        rest = std::min(rest, connection->keepAlive());
    if (!m_connections.empty())
        m_timer.start(std::max<SteadyTime>(rest, shortestRest));
}

void SyncHub::wakeWithin(SteadyTime time)
{
    if (!m_timer.isActive() || m_timer.remainingTimeAsDuration() > time)
        m_timer.start(time);
}

void SyncHub::close()
{
    const std::vector<HubConnection *> all(m_connections.begin(), m_connections.end());
    for (HubConnection *connection : all)
        connection->hangUp("The server is stopping.", true);
}

} // namespace orvane::server
