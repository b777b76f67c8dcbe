// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Handlers/Router.h"
#include "Http/ProofGate.h"
#include "Http/RequestGate.h"
#include "Support/Result.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orvane::server {

/// An answer, and whether its request came with a good access token.
struct Served {
    HttpResponse response;
    bool isSignedIn = false;
};

/// The server without its sockets: takes requests, answers them, keeps what they change. Used from one
/// thread. Each request is one transaction (one before and one after work that is done aside); an answer of
/// success is given after its change is on the disk.
class ServerCore {
public:
    /// Has `work` done on another thread, and then calls `done` on the server's. False, and nothing is
    /// called, when there is too much to do already.
    using RunAside = std::function<bool(std::function<void()> work, std::function<void()> done)>;
    using Done = std::function<void(Served)>;

    struct Options {
        /// A file or ":memory:".
        std::string databasePath;
        ListenPoint listenPoint;
        /// The address of a proxy that says for whom it speaks. With one the server is public: registration
        /// is closed.
        std::optional<std::string> trustedProxy = {};
        /// The server's time; the system's when absent.
        std::function<Instant()> clock;
        /// What proved requests are made with; see ProofGate.
        std::string linkKey = {};
        /// The name of the account on this computer: what stands before "@localhost".
        std::string userName = "user";
    };

    /// The error is a sentence for people.
    static Result<std::unique_ptr<ServerCore>, std::string> open(Options options);

    /// `peer` is the other side's address, for slowing down who guesses. Password hashes are made in place,
    /// each in some tenth of a second.
    HttpResponse handle(const HttpRequest &request, const std::string &peer);
    /// The same with the hashes made by `runAside`, so that others are answered meanwhile. `done` is called
    /// once, before this returns or later; the core must live until then.
    void serve(const HttpRequest &request, const std::string &peer, const RunAside &runAside,
               const Done &done);

    /// A one-time code for the account on this computer, which is made when it is not there yet; see
    /// SignInCodes. `timeZone` may be empty. The error is a sentence for people.
    Result<std::string, std::string> localSignInCode(const std::string &challenge,
                                                     const std::string &timeZone);

private:
    ServerCore(Options options, std::unique_ptr<Database> database, std::string tokenKey);

    Instant now() const;
    /// A request that has found its handler.
    struct Exchange {
        const Router::Route *route = nullptr;
        RequestParts parts;
        std::string peer;
    };
    struct Transacted {
        Step step;
        bool isSignedIn = false;
    };
    Result<Exchange, HttpResponse> route(const HttpRequest &request, const std::string &peer) const;
    Transacted transact(const Exchange &exchange, const std::function<Step(Call &)> &handle);
    void goOn(const std::shared_ptr<const Exchange> &exchange, Transacted transacted,
              const RunAside &runAside, const Done &done);
    bool signIn(Call &call, const RequestParts &parts);
    std::pair<std::string, bool> localAccount(const std::string &timeZone);

    Options m_options;
    std::unique_ptr<Database> m_database;
    Services m_services;
    RequestGate m_gate;
    ProofGate m_proofs;
    Router m_router;
};

} // namespace orvane::server
