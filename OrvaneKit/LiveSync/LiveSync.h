// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/CallChannel.h"
#include "Http/CallScope.h"
#include "LiveSync/HubMessages.h"
#include "LiveSync/LiveSyncError.h"
#include "LiveSync/SyncChange.h"
#include "OrvaneAPI/HttpMessage.h"
#include "Support/Eventual.h"
#include "Support/Result.h"
#include "Support/Task.h"
#include "Time/ContinuousTimer.h"

#include <QObject>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

class HubSocket;
class OrvaneClient;

/// Keeps one WebSocket open to the server's hub, so that changes made elsewhere are known within moments. It
/// watches one workspace and hands each change on; what to do about it is the owner's. While connected, the
/// client's requests carry the connection's identifier, so that the hub does not tell it of its own changes.
///
/// A connection that fails, ends or falls silent is tried again, by a table of delays and without end; only
/// `stop` ends that. Failures are no errors to anybody: `problem` has the last one's sentence.
///
/// Owner: who shows the account. Thread: the main thread.
class LiveSync final : public QObject {
    Q_OBJECT
    Q_PROPERTY(State state READ state NOTIFY stateChanged)

public:
    enum class State { disconnected, connecting, connected };
    Q_ENUM(State)

    /// The request for the WebSocket as it goes out, and where to.
    struct Opening {
        std::string address;
        HttpRequest request;
    };
    using Prepare = std::function<Task<Result<Opening, ConnectionError>>(HttpRequest)>;

    struct Parts {
        std::shared_ptr<OrvaneClient> client;
        /// For a server that proves itself first; empty: the request goes to the session's server as it is.
        Prepare prepare = {};
        /// Where a test's time and chance come in; empty: the system's. `random` is in [0, 1).
        std::unique_ptr<ContinuousTimer> timer = {};
        std::function<double()> random = {};
    };

    explicit LiveSync(Parts parts);
    ~LiveSync() override;

    /// Begins to connect; nothing when it has begun.
    void start();
    void stop();
    /// From now on this workspace is to be watched, or none.
    void watch(std::optional<std::string> workspaceId);
    /// The network may be back: what waits for its next attempt does not wait any longer.
    void tryNow();

    State state() const { return m_state; }
    /// The workspace that the hub watches for this connection.
    const std::optional<std::string> &watched() const { return m_watched; }
    /// Whether the hub does not let this user watch the workspace. It is not asked again until another one is
    /// wanted, or over another connection.
    bool isRefused() const { return m_refused.has_value() && m_refused == m_wanted && !m_asksAgain; }
    /// Why the last connection or attempt failed, as a sentence; empty while connected.
    const std::string &problem() const { return m_problem; }

Q_SIGNALS:
    void stateChanged();
    /// The hub has answered what it watches now, or does not. (A lost connection watches nothing.)
    void watchedChanged();
    /// An attempt or a connection has failed, and `problem` says why.
    void failed();
    void changed(const orvane::SyncChange &change);
    /// It is connected again after a loss, and what is wanted is watched: what changed meanwhile nobody told.
    void reconnected();

private:
    struct Ready;
    Task<> attempt();
    static Task<Result<Ready, LiveSyncError>> negotiated(std::shared_ptr<OrvaneClient> client,
                                                         CallChannel channel, Prepare prepare);
    void open(Ready ready);
    void connected(const std::string &connectionId);
    void take(const HubMessage &message);
    Task<> bringInLine();
    bool isInLine() const;
    Task<Result<bool, LiveSyncError>> invokeWatch(std::string workspaceId);
    void keepAlive();
    void lose(LiveSyncError error, HubFarewell farewell);
    void dropConnection(HubFarewell farewell);
    void setState(State state);

    Parts m_parts;
    State m_state = State::disconnected;
    /// The failures in a row.
    int m_backoff = 0;
    /// Counts attempts and their ends: what was begun under another number is over.
    std::uint64_t m_attempt = 0;
    bool m_isWaiting = false;
    bool m_hasBeenConnected = false;
    /// The calls of the attempt under way.
    std::optional<CallScope> m_calls;
    HubSocket *m_socket = nullptr;
    std::optional<std::string> m_wanted;
    std::optional<std::string> m_watched;
    std::optional<std::string> m_refused;
    /// It was no refusal but an error, which may pass: the next ping brings the question again.
    bool m_asksAgain = false;
    bool m_isBringingInLine = false;
    bool m_tellsReconnected = false;
    /// Those that wait for the hub's answer, by their identifiers.
    std::map<std::string, Eventual<Result<bool, LiveSyncError>>> m_invocations;
    std::uint64_t m_nextInvocation = 0;
    /// By the timer's clock.
    std::chrono::milliseconds m_lastHeard{0};
    std::string m_problem;
};

/// How long to wait before the next attempt, after so many failures in a row; `random` is in [0, 1).
std::chrono::milliseconds liveSyncDelay(int failures, double random);

} // namespace orvane
