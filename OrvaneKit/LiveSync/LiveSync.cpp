// SPDX-License-Identifier: GPL-3.0-or-later
#include "LiveSync/LiveSync.h"

#include "Client/OrvaneClient.h"
#include "Http/SyncConnection.h"
#include "LiveSync/HubNegotiation.h"
#include "LiveSync/HubSocket.h"
#include "Session/AuthSession.h"

#include <QLoggingCategory>
#include <QPointer>
#include <QRandomGenerator>
#include <QUrl>
#include <algorithm>
#include <array>
#include <cmath>

namespace orvane {

namespace {

using namespace std::chrono_literals;

Q_LOGGING_CATEGORY(logLiveSync, "orvane.livesync", QtWarningMsg)

constexpr std::chrono::milliseconds pingInterval = 15s;
constexpr std::chrono::milliseconds longestSilence = 30s;
/// For a token, the negotiation and the server's proof together.
constexpr std::chrono::milliseconds negotiationLimit = 60s;
/// For the WebSocket and the hub's first word: a server that takes a connection and says nothing must not
/// hold up the next attempt.
constexpr std::chrono::milliseconds openingLimit = longestSilence;

LiveSyncError refusedToOpen()
{
    return {"The server wouldn't open live sync."};
}

LiveSyncError negotiationError(const CallError &error)
{
    return std::holds_alternative<ConnectionError>(error) ? LiveSyncError{describe(error)} : refusedToOpen();
}

ServerCall negotiationCall()
{
    ServerCall call{.operation = "NegotiateSync", .request = {}, .wanted = {}};
    call.request.method = HttpMethod::post;
    call.request.path = "/api/hubs/sync/negotiate?negotiateVersion=1";
    call.wanted = {{200, &readJson<HubNegotiation>}};
    return call;
}

std::string encoded(const std::string &text)
{
    return QUrl::toPercentEncoding(QString::fromStdString(text)).toStdString();
}

HttpRequest socketRequest(const HubNegotiation &negotiation, const std::string &token)
{
    HttpRequest request;
    request.path =
        "/api/hubs/sync?id=" + encoded(negotiation.connectionToken) + "&access_token=" + encoded(token);
    return request;
}

Task<Result<LiveSync::Opening, ConnectionError>> asItIs(LiveSync::Opening opening)
{
    co_return opening;
}

} // namespace

std::chrono::milliseconds liveSyncDelay(int failures, double random)
{
    constexpr std::array<std::chrono::milliseconds, 5> table{1s, 2s, 5s, 10s, 30s};
    const auto index = static_cast<std::size_t>(std::clamp(failures - 1, 0, int{table.size()} - 1));
    const double factor = random * 0.4 + 0.8;
    return std::chrono::milliseconds(std::llround(static_cast<double>(table[index].count()) * factor));
}

/// What a WebSocket is opened with.
struct LiveSync::Ready {
    Opening opening;
    std::string connectionId;
};

LiveSync::LiveSync(Parts parts) : m_parts(std::move(parts))
{
    if (!m_parts.timer)
        m_parts.timer = makeContinuousTimer();
    if (!m_parts.random)
        m_parts.random = [] { return QRandomGenerator::global()->generateDouble(); };
    if (!m_parts.prepare)
        m_parts.prepare = [client = m_parts.client](HttpRequest request) {
            return asItIs({client->session()->server(), std::move(request)});
        };
}

LiveSync::~LiveSync()
{
    dropConnection(HubFarewell::done);
}

// The loop

void LiveSync::start()
{
    if (m_state != State::disconnected)
        return;
    m_backoff = 0;
    m_hasBeenConnected = false;
    const QPointer<LiveSync> self(this);
    const std::uint64_t number = m_attempt;
    setState(State::connecting);
    if (self && number == m_attempt)
        attempt();
}

void LiveSync::stop()
{
    dropConnection(HubFarewell::done);
    m_problem.clear();
    setState(State::disconnected);
}

void LiveSync::tryNow()
{
    if (!m_isWaiting)
        return;
    m_parts.timer->cancel();
    attempt();
}

Task<> LiveSync::attempt()
{
    m_isWaiting = false;
    const QPointer<LiveSync> self(this);
    const std::uint64_t number = ++m_attempt;
    m_calls.emplace();
    m_parts.timer->schedule(negotiationLimit, [this] { lose(refusedToOpen(), HubFarewell::goingAway); });
    auto ready =
        co_await negotiated(m_parts.client, m_parts.client->channelWithin(*m_calls), m_parts.prepare);
    if (!self || number != m_attempt)
        co_return;
    if (ready)
        open(std::move(*ready));
    else
        lose(std::move(ready.error()), HubFarewell::goingAway);
}

Task<Result<LiveSync::Ready, LiveSyncError>> LiveSync::negotiated(std::shared_ptr<OrvaneClient> client,
                                                                  CallChannel channel, Prepare prepare)
{
    // The channel sees to a token by itself, but could not tell a failed renewal from a refused negotiation.
    if (const auto token = co_await client->session()->validAccessToken(); !token)
        co_return failure(LiveSyncError{describe(token.error())});
    auto negotiation = co_await channel.ask<HubNegotiation>(negotiationCall());
    if (!negotiation)
        co_return failure(negotiationError(negotiation.error()));
    // The one that the negotiation was taken with.
    const auto token = co_await client->session()->validAccessToken();
    if (!token)
        co_return failure(LiveSyncError{describe(token.error())});
    auto opening = co_await prepare(socketRequest(*negotiation, *token));
    if (!opening)
        co_return failure(LiveSyncError{describe(CallError(opening.error()))});
    co_return Ready{std::move(*opening), std::move(negotiation->connectionId)};
}

void LiveSync::open(Ready ready)
{
    m_parts.timer->schedule(openingLimit, [this] { lose(refusedToOpen(), HubFarewell::goingAway); });
    m_socket = new HubSocket(this);
    connect(m_socket, &HubSocket::opened, this,
            [this, id = std::move(ready.connectionId)] { connected(id); });
    connect(m_socket, &HubSocket::heard, this, [this] { m_lastHeard = m_parts.timer->now(); });
    connect(m_socket, &HubSocket::received, this, &LiveSync::take);
    connect(m_socket, &HubSocket::ended, this,
            [this](const LiveSyncError &error) { lose(error, HubFarewell::goingAway); });
    m_socket->open(ready.opening.address, ready.opening.request);
}

void LiveSync::connected(const std::string &connectionId)
{
    m_backoff = 0;
    m_problem.clear();
    m_tellsReconnected = std::exchange(m_hasBeenConnected, true);
    m_lastHeard = m_parts.timer->now();
    m_parts.client->syncConnection()->set(connectionId);
    m_parts.timer->schedule(pingInterval, [this] { keepAlive(); });
    const QPointer<LiveSync> self(this);
    const std::uint64_t number = m_attempt;
    setState(State::connected);
    if (self && number == m_attempt)
        bringInLine();
}

void LiveSync::keepAlive()
{
    if (m_parts.timer->now() - m_lastHeard > longestSilence)
        return lose({"Nothing was heard from the server."}, HubFarewell::goingAway);
    m_socket->send(hubPing());
    m_parts.timer->schedule(pingInterval, [this] { keepAlive(); });
    if (std::exchange(m_asksAgain, false)) {
        m_refused.reset();
        bringInLine();
    }
}

void LiveSync::lose(LiveSyncError error, HubFarewell farewell)
{
    qCDebug(logLiveSync) << "not connected:" << error.message.c_str();
    const QPointer<LiveSync> self(this);
    dropConnection(farewell);
    m_problem = std::move(error.message);
    m_isWaiting = true;
    m_parts.timer->schedule(liveSyncDelay(++m_backoff, m_parts.random()), [this] { attempt(); });
    const std::uint64_t number = m_attempt;
    setState(State::connecting);
    if (self && number == m_attempt)
        Q_EMIT failed();
}

/// Afterwards nothing that was begun goes on, and nothing is known of what the hub watches.
void LiveSync::dropConnection(HubFarewell farewell)
{
    ++m_attempt;
    m_isWaiting = false;
    m_parts.timer->cancel();
    m_parts.client->syncConnection()->set(std::nullopt);
    m_calls.reset();
    if (HubSocket *socket = std::exchange(m_socket, nullptr))
        socket->leave(farewell);
    m_watched.reset();
    m_refused.reset();
    m_asksAgain = false;
    m_isBringingInLine = false;
    m_tellsReconnected = false;
    for (const auto &[id, waiting] : std::exchange(m_invocations, {}))
        waiting.finish(failure(LiveSyncError{"The connection to the server was lost."}));
}

void LiveSync::setState(State state)
{
    if (std::exchange(m_state, state) != state)
        Q_EMIT stateChanged();
}

// What is watched

void LiveSync::watch(std::optional<std::string> workspaceId)
{
    if (m_wanted == workspaceId)
        return;
    m_wanted = std::move(workspaceId);
    m_refused.reset();
    m_asksAgain = false;
    if (m_state == State::connected)
        bringInLine();
}

bool LiveSync::isInLine() const
{
    return m_wanted == m_watched || (m_wanted && m_wanted == m_refused);
}

Task<> LiveSync::bringInLine()
{
    // Who does already looks at what is wanted again after each answer.
    if (std::exchange(m_isBringingInLine, true))
        co_return;
    const QPointer<LiveSync> self(this);
    const std::uint64_t number = m_attempt;
    while (!isInLine()) {
        if (m_watched)
            m_socket->send(hubUnwatch(*std::exchange(m_watched, std::nullopt)));
        if (m_wanted) {
            std::string workspaceId = *m_wanted;
            const auto answer = co_await invokeWatch(workspaceId);
            if (!self || number != m_attempt)
                co_return;
            m_asksAgain = !answer;
            (answer.value_or(false) ? m_watched : m_refused) = std::move(workspaceId);
        }
        Q_EMIT watchedChanged();
        if (!self || number != m_attempt)
            co_return;
    }
    m_isBringingInLine = false;
    if (std::exchange(m_tellsReconnected, false))
        Q_EMIT reconnected();
}

Task<Result<bool, LiveSyncError>> LiveSync::invokeWatch(std::string workspaceId)
{
    const std::uint64_t invocation = m_nextInvocation++;
    const Eventual<Result<bool, LiveSyncError>> answer;
    m_invocations.emplace(std::to_string(invocation), answer);
    m_socket->send(hubWatch(invocation, workspaceId));
    co_return co_await answer;
}

void LiveSync::take(const HubMessage &message)
{
    if (const auto *change = std::get_if<HubChange>(&message)) {
        Q_EMIT changed(change->change);
    } else if (const auto *completion = std::get_if<HubCompletion>(&message)) {
        const auto waiting = m_invocations.extract(completion->invocationId);
        if (waiting.empty())
            return;
        if (completion->error.empty())
            waiting.mapped().finish(completion->result);
        else
            waiting.mapped().finish(failure(LiveSyncError{completion->error}));
    }
}

} // namespace orvane
