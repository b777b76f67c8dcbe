// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/ProofGate.h"
#include "Http/RequestGate.h"
#include "Hub/HubAccess.h"
#include "Requests/Executor.h"
#include "Requests/PathRoutes.h"
#include "Requests/Router.h"
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

/// The server without its sockets and threads: takes requests, answers them, keeps what they change. Each
/// request is one transaction (one before and one after work that is done aside); an answer of success is
/// given after its change is on the disk. What takes an executor may be called from any thread, and several
/// at a time; the rest works in place, with a database of the core's own, on one thread.
class ServerCore {
public:
    struct Options {
        /// A file or ":memory:", which the core alone can use.
        std::string databasePath;
        ListenPoint listenPoint;
        /// The address of a proxy that says for whom it speaks. With one the server is public: registration
        /// is closed.
        std::optional<std::string> trustedProxy = {};
        /// The server's time, for any thread; the system's when absent.
        std::function<Instant()> clock;
        /// What proved requests are made with; see ProofGate.
        std::string linkKey = {};
        /// The name of the account on this computer: what stands before "@localhost".
        std::string userName = "user";
        /// Lets anybody sign in by a name alone, through the browser; for a server on loopback.
        bool devProvider = false;
        /// By which people reach the server, as "https://HOST[:PORT]". Passkeys need one, with TLS.
        std::optional<std::string> publicAddress = {};
        /// Says that it is the service that Orvane's makers run; it takes new accounts then.
        bool isHosted = false;
        /// Hears what requests change.
        ChangeObserver onChange = {};
    };

    /// Brings the database up to date, so that executors can open it from then on. The error is a sentence
    /// for people.
    static Result<std::unique_ptr<ServerCore>, std::string> open(Options options);

    /// `peer` is the other side's address, for slowing down who guesses. Password hashes are made in place,
    /// each in some tenth of a second.
    HttpResponse handle(const HttpRequest &request, const std::string &peer);

    using Done = std::function<void(Served)>;
    /// The same, worked on by the executor. `done` is called once, before this returns or later, on this
    /// thread or one of the executor's; the core and the executor must live until then.
    void serve(const HttpRequest &request, const std::string &peer, Executor &executor, const Done &done);

    /// Whose connection to the hub a request asks for; what it is answered instead when it may not be had.
    using Admission = Result<HubGuest, HttpResponse>;
    /// Looks at all that is looked at in any request, and at the token, which may stand in the address too.
    /// `done` as above.
    void admitToHub(const HttpRequest &request, const std::string &peer, Executor &executor,
                    const std::function<void(Admission)> &done);
    /// Answers hubStandings(). `done` as above.
    void askForHub(std::vector<HubQuestion> questions, Executor &executor,
                   const std::function<void(std::optional<std::vector<HubStanding>>)> &done);

    /// A sentence for people when there is none.
    using Code = Result<std::string, std::string>;
    /// A one-time code for the account on this computer, which is made when it is not there yet; see
    /// SignInCodes. `timeZone` may be empty.
    Code localSignInCode(const std::string &challenge, const std::string &timeZone);
    /// The same, worked on by the executor; `done` as above.
    void localSignInCode(const std::string &challenge, const std::string &timeZone, Executor &executor,
                         const std::function<void(Code)> &done);

private:
    ServerCore(Options options, std::unique_ptr<Database> database, std::string tokenKey);

    /// A request that has found its handler.
    struct Exchange {
        const Router::Route *route = nullptr;
        RequestParts parts;
        std::string peer;
        std::string address = {};
        Executor *executor = nullptr;
        Done done = {};
    };
    using SharedExchange = std::shared_ptr<const Exchange>;
    using Handle = std::function<Step(Call &)>;
    struct Transacted {
        Step step;
        bool isSignedIn = false;
    };
    enum class Entry { granted, refused, laterInWriting };

    Instant now() const;
    bool isPage(const HttpRequest &request) const;
    RequestGate::Body bodyOf(const HttpRequest &request) const;
    std::optional<Done> pass(const HttpRequest &request, const std::string &peer, const Done &done) const;
    Result<Exchange, HttpResponse> route(const HttpRequest &request) const;
    Result<const Router::Route *, HttpResponse> routeOf(const HttpRequest &request,
                                                        std::vector<std::string> &pathArguments) const;
    void transact(const SharedExchange &exchange, Lane lane, const Handle &handle);
    std::optional<Transacted> transactHere(Database &database, const Exchange &exchange, Lane lane,
                                           const Handle &handle);
    void goOn(const SharedExchange &exchange, Transacted transacted);
    Entry enter(Call &call, const Exchange &exchange, Lane lane) const;
    Entry enterSignedIn(Call &call, const std::string &token, Lane lane) const;
    static Entry enterAgent(Call &call, const std::string &token, Lane lane);
    Code newCode(Database *database, const std::string &challenge, const std::string &timeZone);
    void servePage(const HttpRequest &request, Executor &executor, const Done &done);
    HttpResponse enterPerson(Database *database, const DevProvider::Person &person);
    std::pair<std::string, bool> localAccount(Database &database, const std::string &timeZone);

    const Options m_options;
    const std::unique_ptr<Database> m_database;
    Services m_services;
    const RequestGate m_gate;
    const ProofGate m_proofs;
    const Router m_router;
    const PathRoutes m_paths;
    const Router::Route m_admissionRoute;
};

} // namespace orvane::server
