// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalServer/LocalAccount.h"

#include "Session/Pkce.h"

namespace orvane {

namespace {

Task<Result<HttpResponse, ConnectionError>> sendProved(std::shared_ptr<LocalServerLink> link,
                                                       std::shared_ptr<HttpTransport> transport, bool start,
                                                       HttpRequest request)
{
    const auto server = co_await link->provenServer(start);
    if (!server)
        co_return failure(connectionError(server.error()));
    auto answer = co_await transport->send(request, server->address);
    if (answer)
        co_return std::move(answer);
    // A server that ends closes its port before its socket. If another one has taken over, it is asked.
    const auto next = co_await link->provenAnew(start);
    if (!next || next->pid == server->pid)
        co_return std::move(answer);
    co_return co_await transport->send(std::move(request), next->address);
}

Task<CallResult<ExternalExchangeRequest>> codeFor(std::shared_ptr<LocalServerLink> link, std::string timeZone,
                                                  bool start)
{
    const auto server = co_await link->provenServer(start);
    if (!server)
        co_return failure(CallError(connectionError(server.error())));
    const Pkce pkce = Pkce::make();
    auto code = co_await link->requestCode(pkce.challenge, timeZone);
    if (!code)
        co_return failure(CallError(connectionError(code.error())));
    ExternalExchangeRequest request;
    request.code = std::move(*code);
    request.codeVerifier = pkce.verifier;
    request.timeZone = std::move(timeZone);
    co_return std::move(request);
}

} // namespace

LocalServerTransport::LocalServerTransport(std::shared_ptr<LocalServerLink> link,
                                           std::shared_ptr<HttpTransport> transport, bool start)
    : m_link(std::move(link)), m_transport(std::move(transport)), m_start(start)
{
}

Task<Result<HttpResponse, ConnectionError>> LocalServerTransport::send(HttpRequest request, std::string)
{
    return sendProved(m_link, m_transport, m_start, std::move(request));
}

Reauthenticator localReauthenticator(std::shared_ptr<LocalServerLink> link, std::string timeZone, bool start)
{
    return [link = std::move(link), timeZone = std::move(timeZone), start] {
        return codeFor(link, timeZone, start);
    };
}

} // namespace orvane
