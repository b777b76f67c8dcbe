// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalServer/LocalAccount.h"

#include "Session/Pkce.h"

namespace orvane {

namespace {

Task<Result<HttpResponse, ConnectionError>> sendProved(std::shared_ptr<LocalServerLink> link,
                                                       std::shared_ptr<HttpTransport> transport, bool start,
                                                       HttpRequest request)
{
    auto address = co_await link->provenAddress(start);
    if (!address)
        co_return failure(connectionError(address.error()));
    co_return co_await transport->send(std::move(request), std::move(*address));
}

Task<CallResult<ExternalExchangeRequest>> codeFor(std::shared_ptr<LocalServerLink> link, std::string timeZone,
                                                  bool start)
{
    const auto address = co_await link->provenAddress(start);
    if (!address)
        co_return failure(CallError(connectionError(address.error())));
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
