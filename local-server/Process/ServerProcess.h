// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/HttpFront.h"
#include "Process/HashPool.h"
#include "Process/ServerOptions.h"
#include "Process/ServerSocket.h"
#include "ServerCore.h"
#include "Support/FileLock.h"

#include <QTimer>
#include <memory>
#include <optional>

namespace orvane::server {

/// One server over one data folder, in a process of its own with an event loop. In the folder: the database
/// `orvane-server.sqlite`, the `port` that it keeps, `server.lock` held while it runs, `server.log`, and
/// `run/server.sock`.
class ServerProcess : public QObject {
    Q_OBJECT

public:
    explicit ServerProcess(ServerOptions options);
    ~ServerProcess() override;

    enum class Outcome { Serving, RunsAlready };
    /// The error is a sentence for people.
    Result<Outcome, std::string> start();
    /// Where it listens, once started.
    const ListenPoint &listenPoint() const { return m_point; }

Q_SIGNALS:
    /// No request came for as long as the options say.
    void idle();

private:
    bool takeFolder();
    std::string listen();
    std::string openCore();
    void serve(const HttpRequest &request, const std::string &peer, HttpFront::Reply reply);
    LinkAnswer answer(const LinkRequest &request);
    void passOn(const LinkRequest &request, const ServerSocket::Reply &reply);
    void restartIdleTimer();
    std::string file(const char *name) const;

    ServerOptions m_options;
    ListenPoint m_point;
    /// Lives and dies with the process; see LinkProof.h.
    const std::string m_linkKey;
    FileLock m_lock;
    std::unique_ptr<ServerCore> m_core;
    std::unique_ptr<HashPool> m_hashes = std::make_unique<HashPool>();
    HttpFront m_front;
    ServerSocket m_socket;
    QTimer m_idle;
};

} // namespace orvane::server
