// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/Server.h"

#include "Session/Pkce.h"
#include "Support/Require.h"

namespace orvane::simulator {

namespace {

using Millis = World::Millis;

HttpResponse gatewayAnswer(Random &random)
{
    static constexpr int statuses[] = {502, 503, 429, 408};
    return {.status = statuses[random.below(std::size(statuses))], .headers = {}, .body = {}};
}

} // namespace

Server::Server(World &world)
{
    auto core = server::ServerCore::open({.databasePath = ":memory:",
                                          .listenPoint = {.address = "127.0.0.1", .port = 80},
                                          .clock = [&world] { return world.now(); },
                                          .userName = "user"});
    ORVANE_REQUIRE(core, "the server's core does not open");
    m_core = std::move(*core);
}

Task<CallResult<ExternalExchangeRequest>> codeFrom(Server *server, std::string timeZone)
{
    const Pkce pkce = Pkce::make();
    auto code = server->signInCode(pkce.challenge, timeZone);
    if (!code)
        co_return failure(CallError(ConnectionError{code.error()}));
    ExternalExchangeRequest request;
    request.code = std::move(*code);
    request.codeVerifier = pkce.verifier;
    request.timeZone = std::move(timeZone);
    co_return std::move(request);
}

Task<Result<HttpResponse, ConnectionError>> Wire::send(HttpRequest request, std::string,
                                                       std::shared_ptr<CallAbort>)
{
    Call call;
    if (m_isCut)
        co_return failure(ConnectionError{"the process is gone"});
    m_underWay.push_back(call);
    carry(std::move(request), call);
    co_return co_await call;
}

/// Decides a request's fate and puts it on its way.
void Wire::carry(HttpRequest request, Call call)
{
    Random &random = m_world.random();
    request.headers.set("Host", "127.0.0.1");
    if (!m_link->isUp || random.chance(m_link->lostRequests))
        return fail(call, Millis(random.between(1, 2000)));
    const Millis way(random.between(1, 80));
    if (random.chance(m_link->refusedByGateway)) {
        m_world.post(m_world.newLane(), way, [self = shared_from_this(), call] {
            self->finish(call, gatewayAnswer(self->m_world.random()));
        });
        return;
    }
    const bool losesAnswer = random.chance(m_link->lostAnswers);
    if (random.chance(m_link->doubled)) {
        // The first copy arrives somewhere, its answer is not heard.
        m_world.post(m_world.newLane(), Millis(random.between(1, 80)),
                     [self = shared_from_this(), request] { self->m_server.handle(request); });
    }
    m_world.post(m_world.newLane(), way, [self = shared_from_this(), request, call, losesAnswer] {
        self->deliver(request, call, losesAnswer);
    });
}

void Wire::deliver(HttpRequest request, Call call, bool losesAnswer)
{
    const HttpResponse answer = m_server.handle(request);
    Random &random = m_world.random();
    if (losesAnswer || !m_link->isUp)
        return fail(call, Millis(random.between(1, 2000)));
    const bool isLate = random.chance(m_link->late);
    const Millis back(isLate ? random.between(1'000, 59'000) : random.between(1, 80));
    m_world.post(m_world.newLane(), back,
                 [self = shared_from_this(), call, answer] { self->finish(call, answer); });
}

void Wire::fail(const Call &call, Millis after)
{
    m_world.post(m_world.newLane(), after, [self = shared_from_this(), call] {
        self->finish(call, failure(ConnectionError{"the connection was lost"}));
    });
}

void Wire::finish(Call call, Answer answer)
{
    call.finish(std::move(answer));
    std::erase_if(m_underWay, [](const Call &other) { return other.isFinished(); });
}

void Wire::cut()
{
    m_isCut = true;
    for (Call &call : std::vector<Call>(m_underWay))
        call.finish(failure(ConnectionError{"the process is gone"}));
    m_underWay.clear();
}

} // namespace orvane::simulator
