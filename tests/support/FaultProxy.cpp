// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FaultProxy.h"

#include "Support/Require.h"

#include <charconv>
#include <random>

namespace orvane::testing {

namespace {

std::uint16_t portOf(const std::string &url)
{
    const std::string_view start = "http://127.0.0.1:";
    ORVANE_REQUIRE(url.starts_with(start), "the proxy forwards to 127.0.0.1 alone");
    std::uint16_t port = 0;
    std::from_chars(url.data() + start.size(), url.data() + url.size(), port);
    return port;
}

/// The answer without the rest of its body. The Content-Length still promises all of it.
std::string_view cut(std::string_view answer, std::size_t keep)
{
    const auto headEnd = answer.find("\r\n\r\n");
    return headEnd == std::string_view::npos ? answer : answer.substr(0, headEnd + 4 + keep);
}

/// An answer that did not come whole is the server's trouble, and ends the client's connection too.
void hand(const std::string &answer, LoopbackServer::Connection &connection)
{
    connection.send(answer);
    if (!isWholeAnswer(answer))
        connection.close();
}

} // namespace

Fault Fault::answer(int status)
{
    return answer(status, R"({"type":"about:blank","title":"Made up by the proxy","status":)" +
                              std::to_string(status) + "}");
}

Fault Fault::hugeProblem(int status)
{
    return answer(status,
                  R"({"title":"Too much","detail":")" + std::string(std::size_t{2} << 20, 'x') + "\"}");
}

Fault Fault::garbage()
{
    return {.kind = Kind::raw, .body = "\x16\x03\x01 this is no HTTP \xff\xfe\r\n\r\n"};
}

namespace plans {

FaultPlan pass()
{
    return [](const SeenRequest &) { return Fault::pass(); };
}

FaultPlan inOrder(std::vector<Fault> faults)
{
    return [faults = std::move(faults), next = std::size_t{0}](const SeenRequest &) mutable {
        return next < faults.size() ? faults[next++] : Fault::pass();
    };
}

FaultPlan seeded(std::uint64_t seed, double share, std::vector<Fault> faults)
{
    return [random = std::mt19937_64(seed), share, faults = std::move(faults)](const SeenRequest &) mutable {
        const bool hit = static_cast<double>(random() >> 11) < share * 0x1p53;
        return hit ? faults[random() % faults.size()] : Fault::pass();
    };
}

std::vector<Fault> passingTroubles()
{
    return {Fault::dropReply(),   Fault::twice(),     Fault::cutReply(),
            Fault::answer(408),   Fault::answer(429), Fault::answer(500),
            Fault::answer(503),   Fault::garbage(),   Fault::garbageBody(),
            Fault::hugeProblem(), Fault::refuse(),    Fault::slow(std::chrono::milliseconds{30})};
}

} // namespace plans

FaultProxy::FaultProxy(const std::string &upstreamUrl, FaultPlan plan)
    : LoopbackServer(
          [this](const SeenRequest &request, Connection &connection) { handle(request, connection); })
    , m_upstreamPort(portOf(upstreamUrl))
    , m_plan(std::move(plan))
{
}

FaultProxy::~FaultProxy()
{
    stop();
}

void FaultProxy::setPlan(FaultPlan plan)
{
    const std::lock_guard lock(m_planMutex);
    m_plan = std::move(plan);
}

void FaultProxy::setUpstream(const std::string &url)
{
    m_upstreamPort = portOf(url);
}

std::string FaultProxy::forward(const SeenRequest &request) const
{
    HttpHeaders headers = request.headers;
    headers.set("Host", "127.0.0.1:" + std::to_string(m_upstreamPort));
    headers.set("Connection", "close");
    std::string message = request.method + " " + request.path + " HTTP/1.1\r\n";
    for (const auto &[name, value] : headers.all())
        message += name + ": " + value + "\r\n";
    return exchangeRaw(m_upstreamPort, message + "\r\n" + request.body);
}

void FaultProxy::handle(const SeenRequest &request, Connection &connection)
{
    Fault fault;
    {
        const std::lock_guard lock(m_planMutex);
        fault = m_plan(request);
    }
    if (fault.kind != Fault::Kind::pass || fault.delay.count() > 0)
        ++m_faults;
    if (fault.delay.count() > 0 && !connection.wait(fault.delay))
        return connection.close();
    switch (fault.kind) {
    case Fault::Kind::answer:
        return connection.answer(fault.status, fault.body, "application/problem+json");
    case Fault::Kind::raw:
        connection.send(fault.body);
        return connection.close();
    case Fault::Kind::refuse:
        return connection.close();
    case Fault::Kind::pass:
        return hand(forward(request), connection);
    case Fault::Kind::dropReply:
        forward(request);
        return connection.close();
    case Fault::Kind::twice:
        forward(request);
        return hand(forward(request), connection);
    case Fault::Kind::cutReply: {
        const std::string answer = forward(request);
        connection.send(cut(answer, fault.keep));
        return connection.close();
    }
    }
}

} // namespace orvane::testing
