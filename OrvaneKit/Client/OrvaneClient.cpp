// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client/OrvaneClient.h"

#include "Http/NetworkThread.h"
#include "Http/ProblemMiddleware.h"
#include "Http/SyncConnection.h"
#include "Session/AuthMiddleware.h"
#include "Session/AuthSession.h"

namespace orvane {

namespace {

ClientChain chain(std::shared_ptr<HttpTransport> transport, std::shared_ptr<AuthSession> session,
                  std::shared_ptr<SyncConnection> sync)
{
    const std::string server = session->server();
    return {std::move(transport),
            server,
            {std::make_shared<ProblemMiddleware>(), std::make_shared<AuthMiddleware>(std::move(session)),
             std::make_shared<SyncConnectionMiddleware>(std::move(sync))}};
}

} // namespace

OrvaneClient::OrvaneClient(std::shared_ptr<NetworkThread> thread, std::shared_ptr<AuthSession> session,
                           std::shared_ptr<HttpTransport> transport, std::shared_ptr<SyncConnection> sync)
    : ServerCalls(CallChannel(*thread, chain(std::move(transport), session, sync)))
    , m_thread(std::move(thread))
    , m_session(std::move(session))
    , m_sync(std::move(sync))
{
}

OrvaneClient::OrvaneClient(std::shared_ptr<NetworkThread> thread, std::shared_ptr<AuthSession> session,
                           std::shared_ptr<HttpTransport> transport)
    : OrvaneClient(std::move(thread), std::move(session), std::move(transport),
                   std::make_shared<SyncConnection>())
{
}

OrvaneClient::OrvaneClient(std::shared_ptr<NetworkThread> thread, std::shared_ptr<AuthSession> session)
    : OrvaneClient(thread, std::move(session), thread->transport())
{
}

OrvaneClient::~OrvaneClient() = default;

} // namespace orvane
