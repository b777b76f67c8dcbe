// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/HttpFront.h"
#include "Hub/SyncHub.h"
#include "Process/ServerExecutor.h"
#include "Process/ServerOptions.h"
#include "Process/ServerSocket.h"
#include "ServerCore.h"
#include "Support/FileLock.h"

#include <QTimer>
#include <memory>
#include <optional>
#include <unordered_map>

namespace orvane::server {

/// One server over one data folder, in a process of its own with an event loop, on whose thread connections
/// are kept; requests are worked on by an executor's threads. In the folder: the database
/// `orvane-server.sqlite`, the `port` that it keeps, `server.lock` held while it runs, `server.log`, and
/// `run/server.sock`.
class ServerProcess : public QObject {
    Q_OBJECT

public:
    explicit ServerProcess(ServerOptions options);
    ~ServerProcess() override;

    enum class Outcome { serving, runsAlready };
    /// The error is a sentence for people.
    Result<Outcome, std::string> start();
    /// Where it listens, once started.
    const ListenPoint &listenPoint() const { return m_point; }

Q_SIGNALS:
    /// No request came for as long as the options say, and nobody listens to live sync.
    void idle();

private:
    bool takeFolder();
    std::string listen();
    std::string openCore();
    void serve(const HttpRequest &request, const std::string &peer, HttpFront::Reply reply);
    void answer(std::uint64_t number, Served served);
    LinkAnswer hello() const;
    void sendCode(const LinkRequest &request, const ServerSocket::Reply &reply);
    void answerCode(std::uint64_t number, const ServerCore::Code &code);
    void passOn(const LinkRequest &request, const ServerSocket::Reply &reply);
    Upgrades hubUpgrades();
    void admit(std::uint64_t number, ServerCore::Admission admission);
    void askForHub(std::vector<HubQuestion> questions, std::function<void(SyncHub::Standings)> done);
    void restartIdleTimer();
    void idleTimeIsOver();
    std::string file(const char *name) const;

    ServerOptions m_options;
    ListenPoint m_point;
    /// Lives and dies with the process; see LinkProof.h.
    const std::string m_linkKey;
    FileLock m_lock;
    std::unique_ptr<ServerCore> m_core;
    std::unique_ptr<ServerExecutor> m_executor;
    /// Who waits for an answer, by number: what belongs to a connection stays on the thread of connections.
    std::unordered_map<std::uint64_t, HttpFront::Reply> m_waiting;
    std::unordered_map<std::uint64_t, ServerSocket::Reply> m_waitingForCode;
    std::unordered_map<std::uint64_t, std::function<void(Upgrades::Decision)>> m_waitingForHub;
    std::unordered_map<std::uint64_t, std::function<void(SyncHub::Standings)>> m_waitingForStandings;
    std::uint64_t m_lastNumber = 0;
    SyncHub m_hub;
    HttpFront m_front;
    ServerSocket m_socket;
    QTimer m_idle;
};

} // namespace orvane::server
