// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/HttpTransport.h"
#include "LocalServer/LocalServerLink.h"
#include "Session/AuthSession.h"

#include <memory>
#include <string>

/// The account on this computer: signed in by being this user, through the server's socket.
namespace orvane {

/// Carries requests to the server on this computer. Before each one the server proves itself at its socket,
/// and the request goes to the address that it names there, whatever address the caller has. Between a
/// server's end and the next proof another program may get a request all the same: it carries a proof that
/// died with the server, its tokens are good with a proof only, and an answer without one is no answer.
/// What holds a password goes through the socket itself. Used on the network thread.
class LocalServerTransport final : public HttpTransport {
public:
    /// With `start`, a server that is away (it ends when it is idle) is started for the request.
    LocalServerTransport(std::shared_ptr<LocalServerLink> link, std::shared_ptr<HttpTransport> transport,
                         bool start);

    Task<Result<HttpResponse, ConnectionError>> send(HttpRequest request, std::string baseUrl,
                                                     std::shared_ptr<CallAbort> abort) override;

private:
    std::shared_ptr<LocalServerLink> m_link;
    std::shared_ptr<HttpTransport> m_transport;
    bool m_start;
};

/// A request with the proof that it comes from who asked the server at its socket; its answer's proof is made
/// with the same nonce.
struct ProvenRequest {
    HttpRequest request;
    std::string nonce;
};
ProvenRequest withProof(const LocalServerHello &server, HttpRequest request);

/// Whether the body of a request holds a password, which is worth as much after the server's end as before:
/// such a request goes through the server's socket.
bool holdsPassword(const HttpRequest &request);

/// Signs in to that account with a fresh one-time code each time. `timeZone` is an IANA name, for an account
/// that is made by this; `start` as above.
Reauthenticator localReauthenticator(std::shared_ptr<LocalServerLink> link, std::string timeZone, bool start);

} // namespace orvane
