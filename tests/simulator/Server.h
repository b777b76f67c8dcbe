// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/HttpTransport.h"
#include "ServerCore.h"
#include "Session/AuthSession.h"
#include "Support/Eventual.h"
#include "simulator/World.h"

#include <set>

namespace orvane::simulator {

/// The real server's core, on the world's clock.
class Server {
public:
    explicit Server(World &world);

    HttpResponse handle(const HttpRequest &request) { return m_core->handle(request, "127.0.0.1"); }
    Result<std::string, std::string> signInCode(const std::string &challenge, const std::string &timeZone)
    {
        return m_core->localSignInCode(challenge, timeZone);
    }

private:
    std::unique_ptr<server::ServerCore> m_core;
};

/// The account on the server's computer signs in with this.
Task<CallResult<ExternalExchangeRequest>> codeFrom(Server *server, std::string timeZone);

/// How a device's connection fares just now.
struct Link {
    bool isUp = true;
    /// In a hundred: requests that are lost, answers that are lost, requests that come twice, answers of a
    /// gateway instead of the server's.
    int lostRequests = 0;
    int lostAnswers = 0;
    int doubled = 0;
    int refusedByGateway = 0;
    /// Answers that take as long as a minute.
    int late = 0;
};

/// A process's transport: carries requests to the server through the world's time and troubles.
class Wire final : public HttpTransport, public std::enable_shared_from_this<Wire> {
public:
    Wire(World &world, Server &server, std::shared_ptr<const Link> link)
        : m_world(world), m_server(server), m_link(std::move(link))
    {
    }

    Task<Result<HttpResponse, ConnectionError>> send(HttpRequest request, std::string baseUrl,
                                                     std::shared_ptr<CallAbort> abort) override;
    /// The process is gone: its requests may still arrive, but nobody hears their answers.
    void cut();

private:
    using Answer = Result<HttpResponse, ConnectionError>;
    using Call = Eventual<Answer>;

    void carry(HttpRequest request, Call call);
    void deliver(HttpRequest request, Call call, bool losesAnswer);
    void fail(const Call &call, World::Millis after);
    void finish(Call call, Answer answer);

    World &m_world;
    Server &m_server;
    std::shared_ptr<const Link> m_link;
    std::vector<Call> m_underWay;
    bool m_isCut = false;
};

} // namespace orvane::simulator
