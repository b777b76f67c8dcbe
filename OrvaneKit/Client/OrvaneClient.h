// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/ServerCalls.h"

#include <memory>

namespace orvane {

class AuthSession;
class HttpTransport;
class NetworkThread;
class SyncConnection;

/// The one object through which everything else talks to the server: each operation of the API is a method
/// (see ServerCalls). There is one for each signed-in session; drop it at sign-out.
///
/// Methods may be called from any thread that runs an event loop and resume there; requests, renewals of the
/// token and decoding happen on the network thread. There is no time limit beyond the transport's, and
/// dropping a task cancels nothing: calls that shall end with their owner are made `within` its scope.
class OrvaneClient : public ServerCalls {
public:
    OrvaneClient(std::shared_ptr<NetworkThread> thread, std::shared_ptr<AuthSession> session,
                 std::shared_ptr<HttpTransport> transport);
    /// Over the network thread's own transport.
    OrvaneClient(std::shared_ptr<NetworkThread> thread, std::shared_ptr<AuthSession> session);
    OrvaneClient(const OrvaneClient &) = delete;
    OrvaneClient &operator=(const OrvaneClient &) = delete;
    ~OrvaneClient();

    const std::shared_ptr<AuthSession> &session() const { return m_session; }
    /// Where live sync leaves its connection's identifier for the requests to carry.
    const std::shared_ptr<SyncConnection> &syncConnection() const { return m_sync; }

    /// The same calls, which end when the scope does.
    ServerCalls within(const CallScope &scope) const { return ServerCalls(channelWithin(scope)); }
    /// For requests beside the API's operations.
    CallChannel channelWithin(const CallScope &scope) const { return channel().within(scope); }

private:
    OrvaneClient(std::shared_ptr<NetworkThread> thread, std::shared_ptr<AuthSession> session,
                 std::shared_ptr<HttpTransport> transport, std::shared_ptr<SyncConnection> sync);

    std::shared_ptr<NetworkThread> m_thread;
    std::shared_ptr<AuthSession> m_session;
    std::shared_ptr<SyncConnection> m_sync;
};

} // namespace orvane
