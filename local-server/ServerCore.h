// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Handlers/Router.h"
#include "Http/RequestGate.h"
#include "Support/Result.h"

#include <functional>
#include <memory>
#include <string>

namespace orvane::server {

/// The server without its sockets: takes requests, answers them, keeps what they change. Used from one
/// thread. Each request is one transaction; an answer of success is given after its change is on the disk.
class ServerCore {
public:
    struct Options {
        /// A file or ":memory:".
        std::string databasePath;
        ListenPoint listenPoint;
        /// The server's time; the system's when absent.
        std::function<Instant()> clock;
        /// The name of the account on this computer: what stands before "@localhost".
        std::string userName = "user";
    };

    /// The error is a sentence for people.
    static Result<std::unique_ptr<ServerCore>, std::string> open(Options options);

    /// `peer` is the other side's address, for slowing down who guesses.
    HttpResponse handle(const HttpRequest &request, const std::string &peer);

    /// A one-time code for the account on this computer, which is made when it is not there yet; see
    /// SignInCodes. `timeZone` may be empty. The error is a sentence for people.
    Result<std::string, std::string> localSignInCode(const std::string &challenge,
                                                     const std::string &timeZone);

private:
    ServerCore(Options options, std::unique_ptr<Database> database, std::string tokenKey);

    Instant now() const;
    HttpResponse route(const HttpRequest &request, const std::string &peer);
    HttpResponse run(const Router::Route &route, const RequestParts &parts, const std::string &peer);
    bool signIn(Call &call, const RequestParts &parts);
    std::pair<std::string, bool> localAccount(const std::string &timeZone);

    Options m_options;
    std::unique_ptr<Database> m_database;
    Services m_services;
    RequestGate m_gate;
    Router m_router;
};

} // namespace orvane::server
