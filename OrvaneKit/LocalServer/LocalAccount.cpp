// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalServer/LocalAccount.h"

#include "OrvaneAPI/LinkProof.h"
#include "OrvaneAPI/Operations.h"
#include "OrvaneAPI/Routes.h"
#include "Session/Pkce.h"

#include <QUrl>
#include <algorithm>
#include <array>

namespace orvane {

namespace {

using Answered = Result<HttpResponse, ConnectionError>;
using Link = std::shared_ptr<LocalServerLink>;
using Transport = std::shared_ptr<HttpTransport>;
using Abort = std::shared_ptr<CallAbort>;

/// The path as it goes out: the URL's own form of it, which the proof has to be about.
std::string pathSent(const std::string &address, const std::string &path)
{
    return QUrl(QString::fromStdString(address + path), QUrl::StrictMode)
        .adjusted(QUrl::NormalizePathSegments)
        .toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority)
        .toStdString();
}

Task<Answered> sendWithProof(Transport transport, LocalServerHello server, HttpRequest request, Abort abort)
{
    ProvenRequest proven = withProof(server, std::move(request));
    auto answer = co_await transport->send(std::move(proven.request), server.address, std::move(abort));
    if (answer && !isAnswerProved(server.key, proven.nonce, *answer))
        co_return failure(ConnectionError{"the answer is not the server's own"});
    co_return std::move(answer);
}

Task<Answered> passOn(Link link, HttpRequest request)
{
    auto answer = co_await link->passOn(std::move(request));
    if (!answer)
        co_return failure(connectionError(answer.error()));
    co_return std::move(*answer);
}

Task<Answered> sendTo(LocalServerHello server, Link link, Transport transport, HttpRequest request,
                      Abort abort)
{
    if (holdsPassword(request))
        return passOn(std::move(link), std::move(request));
    return sendWithProof(std::move(transport), std::move(server), std::move(request), std::move(abort));
}

Task<Answered> sendProved(Link link, Transport transport, bool start, HttpRequest request, Abort abort)
{
    const auto server = co_await link->provenServer(start);
    if (!server)
        co_return failure(connectionError(server.error()));
    auto answer = co_await sendTo(*server, link, transport, request, abort);
    if (answer)
        co_return std::move(answer);
    // The server may have ended meanwhile. If another process has taken over, that one is asked.
    const auto next = co_await link->provenAnew(start);
    if (!next || next->key == server->key)
        co_return std::move(answer);
    co_return co_await sendTo(*next, link, transport, std::move(request), std::move(abort));
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

ProvenRequest withProof(const LocalServerHello &server, HttpRequest request)
{
    ProvenRequest proven{std::move(request), newProofNonce()};
    proven.request.path = pathSent(server.address, proven.request.path);
    proven.request.headers.set(linkProofHeader, requestProof(server.key, proven.nonce, proven.request));
    return proven;
}

bool holdsPassword(const HttpRequest &request)
{
    using namespace operations;
    constexpr std::array names{
        Login::name,         Register::name,       WebLogin::name,      WebRegister::name,
        ResetPassword::name, ChangePassword::name, DeleteAccount::name, PasskeyCreationOptions::name};
    const auto match = matchRoute(request.method, request.path);
    return match && std::ranges::find(names, match->operation->name) != names.end();
}

LocalServerTransport::LocalServerTransport(std::shared_ptr<LocalServerLink> link,
                                           std::shared_ptr<HttpTransport> transport, bool start)
    : m_link(std::move(link)), m_transport(std::move(transport)), m_start(start)
{
}

Task<Result<HttpResponse, ConnectionError>> LocalServerTransport::send(HttpRequest request, std::string,
                                                                       std::shared_ptr<CallAbort> abort)
{
    return sendProved(m_link, m_transport, m_start, std::move(request), std::move(abort));
}

Reauthenticator localReauthenticator(std::shared_ptr<LocalServerLink> link, std::string timeZone, bool start)
{
    return [link = std::move(link), timeZone = std::move(timeZone), start] {
        return codeFor(link, timeZone, start);
    };
}

} // namespace orvane
