// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServerCore.h"

#include "Http/Problems.h"
#include "OrvaneAPI/Routes.h"
#include "Security/RandomText.h"
#include "Support/ZoneNames.h"

#include <QLoggingCategory>
#include <algorithm>

namespace orvane::server {

namespace {

Q_LOGGING_CATEGORY(serverLog, "orvane.server")

/// The key under which access tokens are signed, made at the database's first use.
std::optional<std::string> tokenKey(Database &database)
{
    database.begin();
    auto key = database.row("SELECT value FROM server_keys WHERE name = 'access-tokens'",
                            [](const SqlRow &row) { return row.text(0); });
    if (!key) {
        key = randomText(32);
        database.run("INSERT INTO server_keys (name, value) VALUES ('access-tokens', ?)", *key);
    }
    return database.commit() ? key : std::nullopt;
}

HttpResponse databaseFailed()
{
    return problem(503, "The server could not use its database.", "Nothing was changed. Try again later.");
}

HttpResponse wrongMethod(const std::vector<HttpMethod> &methods)
{
    std::string allowed;
    for (const HttpMethod method : methods) {
        allowed += allowed.empty() ? "" : ", ";
        allowed += text(method);
    }
    HttpResponse response = problem(405, "This address does not take that method.", {});
    response.headers.set("Allow", allowed);
    return response;
}

HttpResponse busy()
{
    HttpResponse response = problem(503, "The server is busy.", "Try again in a moment.");
    response.headers.set("Retry-After", "1");
    return response;
}

std::optional<std::string> bearerToken(const HttpHeaders &headers)
{
    constexpr std::string_view scheme = "bearer ";
    const auto value = headers.find("Authorization");
    if (!value || qstrnicmp(value->c_str(), scheme.data(), scheme.size()) != 0)
        return std::nullopt;
    return value->substr(std::min(value->find_first_not_of(' ', scheme.size()), value->size()));
}

bool keepsChanges(const Step &step, const Call &call)
{
    const auto *response = std::get_if<HttpResponse>(&step);
    return !response || response->status < 400 || call.keepsChanges;
}

} // namespace

Result<std::unique_ptr<ServerCore>, std::string> ServerCore::open(Options options)
{
    auto database = Database::open(options.databasePath);
    if (!database)
        return failure(std::move(database.error()));
    auto key = tokenKey(**database);
    if (!key)
        return failure("the database cannot be used: " + (*database)->lastError());
    return std::unique_ptr<ServerCore>(
        new ServerCore(std::move(options), std::move(*database), std::move(*key)));
}

ServerCore::ServerCore(Options options, std::unique_ptr<Database> database, std::string key)
    : m_options(std::move(options))
    , m_database(std::move(database))
    , m_services{.database = *m_database,
                 .tokens = AccessTokens(std::move(key)),
                 .registrationOpen = m_options.listenPoint.isLoopback() && !m_options.trustedProxy}
    , m_gate(m_options.listenPoint, m_options.trustedProxy)
    , m_proofs(m_options.linkKey)
{
    addServerHandlers(m_router);
    addSignInHandlers(m_router);
    addSessionHandlers(m_router);
    addAccountHandlers(m_router);
    addWorkspaceHandlers(m_router);
    addProjectHandlers(m_router);
    addClientHandlers(m_router);
    addTagHandlers(m_router);
    addEntryHandlers(m_router);
    addEntryBulkHandlers(m_router);
    addSuggestionHandlers(m_router);
}

Instant ServerCore::now() const
{
    return millisecondsFloor(
        m_options.clock ? m_options.clock()
                        : std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now()));
}

HttpResponse ServerCore::handle(const HttpRequest &request, const std::string &peer)
{
    HttpResponse response;
    const auto inPlace = [](const std::function<void()> &work, const std::function<void()> &done) {
        work();
        done();
        return true;
    };
    serve(request, peer, inPlace, [&response](Served served) { response = std::move(served.response); });
    return response;
}

void ServerCore::serve(const HttpRequest &request, const std::string &peer, const RunAside &runAside,
                       const Done &done)
{
    if (auto refusal = m_proofs.refuse(request))
        return done({std::move(*refusal)});
    const auto prove = [this, nonce = m_proofs.nonceOf(request), done](Served served) {
        m_proofs.prove(nonce, served.response);
        done(std::move(served));
    };
    if (auto refusal = m_gate.refuse(request, peer))
        return prove({std::move(*refusal)});
    const Done finish = [prove](Served served) {
        // Answers are for the caller alone and go stale at once.
        served.response.headers.set("Cache-Control", "no-store");
        prove(std::move(served));
    };
    auto routed = route(request, m_gate.senderOf(request, peer));
    if (!routed)
        return finish({std::move(routed.error())});
    const auto exchange = std::make_shared<const Exchange>(std::move(*routed));
    const auto handle = [&](Call &call) { return exchange->route->handle(call, exchange->parts); };
    goOn(exchange, transact(*exchange, handle), runAside, finish);
}

Result<ServerCore::Exchange, HttpResponse> ServerCore::route(const HttpRequest &request,
                                                             const std::string &peer) const
{
    auto match = matchRoute(request.method, request.path);
    if (!match) {
        const auto methods = routeMethods(request.path);
        return failure(methods.empty() ? problem(404, "Not found.", "The server has nothing at this address.")
                                       : wrongMethod(methods));
    }
    const Router::Route *route = m_router.find(match->operation->name);
    if (!route)
        return failure(
            problem(501, "Not available here.", "The server on this computer does not offer this."));
    const std::size_t mark = request.path.find('?');
    auto query = parseQuery(mark == std::string::npos ? std::string_view()
                                                      : std::string_view(request.path).substr(mark + 1));
    if (!query)
        return failure(problem(400, "The request was not understood.", "The address is badly encoded."));
    return Exchange{
        route, {std::move(match->pathArguments), std::move(*query), request.headers, request.body}, peer};
}

/// Answers what the work came to once it is done: by the handler's second half, or third.
void ServerCore::goOn(const std::shared_ptr<const Exchange> &exchange, Transacted transacted,
                      const RunAside &runAside, const Done &done)
{
    if (auto *response = std::get_if<HttpResponse>(&transacted.step))
        return done({std::move(*response), transacted.isSignedIn});
    const auto &[work, finish] = std::get<Aside>(transacted.step);
    const bool isTaken = runAside(work, [this, exchange, finish, runAside, done] {
        goOn(exchange, transact(*exchange, finish), runAside, done);
    });
    if (!isTaken)
        done({busy(), transacted.isSignedIn});
}

ServerCore::Transacted ServerCore::transact(const Exchange &exchange,
                                            const std::function<Step(Call &)> &handle)
{
    Call call{m_services, now(), exchange.peer, {}};
    call.isProved = ProofGate::isProved(exchange.parts.headers);
    m_database->begin();
    const bool mayEnter = exchange.route->access == Access::Anyone || signIn(call, exchange.parts);
    Step step = mayEnter ? handle(call) : unauthorized("Your session has ended or its token is not valid.");
    const bool isSignedIn = !call.caller.userId.empty();
    const bool keeps = keepsChanges(step, call);
    if (keeps ? m_database->commit() : !m_database->hasFailed()) {
        if (!keeps)
            m_database->rollback();
        return {std::move(step), isSignedIn};
    }
    qCWarning(serverLog, "the database failed: %s", m_database->lastError().c_str());
    m_database->rollback();
    return {databaseFailed(), isSignedIn};
}

bool ServerCore::signIn(Call &call, const RequestParts &parts)
{
    const auto token = bearerToken(parts.headers);
    const auto claims = token ? m_services.tokens.read(*token, call.now) : std::nullopt;
    if (!claims || !m_services.sessions.touch(claims->sessionId, claims->userId, call.isProved, call.now))
        return false;
    call.caller = {claims->userId, claims->sessionId};
    return true;
}

Result<std::string, std::string> ServerCore::localSignInCode(const std::string &challenge,
                                                             const std::string &timeZone)
{
    if (!isCodeChallenge(challenge))
        return failure(std::string("codeChallenge must be the base64url SHA-256 of the verifier"));
    m_database->begin();
    const auto [userId, isNew] = localAccount(timeZone);
    if (!m_database->commit()) {
        qCWarning(serverLog, "the database failed: %s", m_database->lastError().c_str());
        return failure(std::string("the server could not use its database"));
    }
    return m_services.codes.issue(userId, isNew, challenge, now());
}

std::pair<std::string, bool> ServerCore::localAccount(const std::string &timeZone)
{
    if (const auto found = m_services.accounts.local())
        return {found->id, false};
    AccountRecord account;
    account.email = m_options.userName + "@localhost";
    account.emailConfirmed = true;
    account.fullName = m_options.userName;
    account.timeZone = isZone(timeZone) ? timeZone : "UTC";
    account.isLocal = true;
    return {m_services.accounts.create(account, now()), true};
}

} // namespace orvane::server
