// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServerCore.h"

#include "Agents/AgentGrants.h"
#include "Agents/AgentSignIn.h"
#include "Agents/McpEndpoint.h"
#include "Http/Forms.h"
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

HttpResponse failed(const Database &database)
{
    switch (database.lastFailure()) {
    case DatabaseFailure::taken:
        return conflict("Another request was faster. See what is there now.");
    case DatabaseFailure::busy:
        return busy();
    case DatabaseFailure::broken:
        break;
    }
    return databaseFailed();
}

bool keepsChanges(const Step &step, const Call &call)
{
    const auto *response = std::get_if<HttpResponse>(&step);
    return !response || response->status < 400 || call.keepsChanges;
}

std::string queryValue(const QueryPairs &query, std::string_view name)
{
    const auto found = std::ranges::find(query, name, &QueryPairs::value_type::first);
    return found == query.end() ? std::string() : found->second;
}

Step negotiate(Call &call, const RequestParts &parts)
{
    return negotiateHub(call, queryValue(parts.query, "negotiateVersion"));
}

std::string_view queryTextOf(const std::string &path)
{
    const std::size_t mark = path.find('?');
    return mark == std::string::npos ? std::string_view() : std::string_view(path).substr(mark + 1);
}

// Nothing for a badly encoded one.
std::optional<QueryPairs> queryOf(const std::string &path)
{
    return parseQuery(queryTextOf(path));
}

/// As other protocols and browsers write it.
std::optional<QueryPairs> formQueryOf(const std::string &path)
{
    return readForm(queryTextOf(path));
}

HttpResponse badlyEncoded()
{
    return problem(400, "The request was not understood.", "The address is badly encoded.");
}

/// A WebSocket's request can bring its token in the address, where browsers let it bring no headers.
void authorizeByQuery(RequestParts &parts)
{
    const std::string token = queryValue(parts.query, "access_token");
    if (!token.empty() && !parts.headers.find("Authorization"))
        parts.headers.set("Authorization", "Bearer " + token);
}

/// Without the query.
std::string_view pathOf(const HttpRequest &request)
{
    return std::string_view(request.path).substr(0, request.path.find('?'));
}

Router allHandlers()
{
    Router router;
    addServerHandlers(router);
    addSignInHandlers(router);
    addPasskeyHandlers(router);
    addSessionHandlers(router);
    addAccountHandlers(router);
    addMyDataHandlers(router);
    addWorkspaceHandlers(router);
    addProjectHandlers(router);
    addTaskHandlers(router);
    addClientHandlers(router);
    addTagHandlers(router);
    addEntryHandlers(router);
    addEntryBulkHandlers(router);
    addSuggestionHandlers(router);
    addProposalHandlers(router);
    addAgentAuthorizationHandlers(router);
    return router;
}

PathRoutes allPaths()
{
    PathRoutes paths;
    paths.add(HttpMethod::post, hubNegotiatePath, {.handle = negotiate, .lane = Lane::reading});
    addAgentSignInPaths(paths);
    addAgentToolPaths(paths);
    return paths;
}

bool mayWrite(const Router::Route &route, const RequestParts &parts)
{
    return route.mayWrite && route.mayWrite(parts);
}

HttpResponse refusedEntry(const Call &call, Router::Entrance entrance, const HttpHeaders &headers)
{
    if (entrance == Router::Entrance::agent)
        return agentSignInWanted(call.address, bearerToken(headers).has_value());
    return unauthorized("Your session has ended or its token is not valid.");
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
    , m_services{.tokens = AccessTokens(std::move(key)),
                 .registrationOpen =
                     m_options.isHosted || (m_options.listenPoint.isLoopback() && !m_options.trustedProxy),
                 .devProvider = m_options.devProvider
                                    ? std::make_shared<DevProvider>(m_options.listenPoint.url())
                                    : nullptr,
                 .passkeySite =
                     m_options.publicAddress ? PasskeySite::at(*m_options.publicAddress) : std::nullopt,
                 .isHosted = m_options.isHosted,
                 .publicAddress = m_options.publicAddress.value_or("")}
    , m_gate(m_options.listenPoint, m_options.trustedProxy, m_options.publicAddress)
    , m_proofs(m_options.linkKey)
    , m_router(allHandlers())
    , m_paths(allPaths())
    , m_admissionRoute{.handle = {}, .lane = Lane::reading}
{
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
    InPlaceExecutor inPlace(*m_database);
    serve(request, peer, inPlace, [&response](Served served) { response = std::move(served.response); });
    return response;
}

/// What every request has to pass. Answers what makes an answer whole, or nothing for one that was refused.
std::optional<ServerCore::Done> ServerCore::pass(const HttpRequest &request, const std::string &peer,
                                                 const Done &done) const
{
    if (auto refusal = m_proofs.refuse(request)) {
        done({std::move(*refusal)});
        return std::nullopt;
    }
    const auto prove = [this, nonce = m_proofs.nonceOf(request), done](Served served) {
        m_proofs.prove(nonce, served.response);
        done(std::move(served));
    };
    if (auto refusal = m_gate.refuse(request, peer, bodyOf(request))) {
        prove({std::move(*refusal)});
        return std::nullopt;
    }
    return [prove](Served served) {
        // Answers are for the caller alone and go stale at once.
        served.response.headers.set("Cache-Control", "no-store");
        prove(std::move(served));
    };
}

/// Of the sign-in for trying it out, which a browser shows.
bool ServerCore::isPage(const HttpRequest &request) const
{
    return m_services.devProvider && DevProvider::owns(request.path);
}

RequestGate::Body ServerCore::bodyOf(const HttpRequest &request) const
{
    const Router::Route *route = m_paths.find(request.method, pathOf(request));
    return isPage(request) ? RequestGate::Body::form : route ? route->body : RequestGate::Body::json;
}

void ServerCore::serve(const HttpRequest &request, const std::string &peer, Executor &executor,
                       const Done &done)
{
    const auto finish = pass(request, peer, done);
    if (!finish)
        return;
    if (isPage(request))
        return servePage(request, executor, *finish);
    auto routed = route(request);
    if (!routed)
        return (*finish)({std::move(routed.error())});
    routed->peer = m_gate.senderOf(request, peer);
    routed->address = m_gate.addressOf(request, peer);
    routed->executor = &executor;
    routed->done = *finish;
    const auto exchange = std::make_shared<const Exchange>(std::move(*routed));
    transact(exchange, exchange->route->lane,
             [exchange](Call &call) { return exchange->route->handle(call, exchange->parts); });
}

Result<const Router::Route *, HttpResponse> ServerCore::routeOf(const HttpRequest &request,
                                                                std::vector<std::string> &pathArguments) const
{
    const std::string_view path = pathOf(request);
    if (const Router::Route *route = m_paths.find(request.method, path))
        return route;
    if (const auto methods = m_paths.methods(path); !methods.empty())
        return failure(wrongMethod(methods));
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
    pathArguments = std::move(match->pathArguments);
    return route;
}

Result<ServerCore::Exchange, HttpResponse> ServerCore::route(const HttpRequest &request) const
{
    RequestParts parts{.headers = request.headers, .body = request.body};
    const auto found = routeOf(request, parts.pathArguments);
    if (!found)
        return failure(found.error());
    const bool isForm = !m_paths.methods(pathOf(request)).empty();
    auto query = isForm ? formQueryOf(request.path) : queryOf(request.path);
    if (!query)
        return failure(badlyEncoded());
    parts.query = std::move(*query);
    return Exchange{.route = *found, .parts = std::move(parts), .peer = {}};
}

void ServerCore::transact(const SharedExchange &exchange, Lane lane, const Handle &handle)
{
    exchange->executor->transact(lane, [this, exchange, lane, handle](Database *database) {
        if (!database)
            return exchange->done({databaseFailed()});
        if (auto transacted = transactHere(*database, *exchange, lane, handle))
            return goOn(exchange, std::move(*transacted));
        transact(exchange, Lane::writing, handle);
    });
}

/// Answers what the work came to once it is done: by the handler's second half, or third.
void ServerCore::goOn(const SharedExchange &exchange, Transacted transacted)
{
    if (auto *response = std::get_if<HttpResponse>(&transacted.step))
        return exchange->done({std::move(*response), transacted.isSignedIn});
    const auto &[work, finish] = std::get<Aside>(transacted.step);
    const bool isTaken = exchange->executor->compute(
        work, [this, exchange, finish] { transact(exchange, Lane::writing, finish); });
    if (!isTaken)
        exchange->done({busy(), transacted.isSignedIn});
}

/// Nothing when the request has to begin anew in a transaction that may write.
std::optional<ServerCore::Transacted> ServerCore::transactHere(Database &database, const Exchange &exchange,
                                                               Lane lane, const Handle &handle)
{
    Call call{.services = m_services,
              .database = database,
              .now = now(),
              .peer = exchange.peer,
              .address = exchange.address};
    call.isProved = ProofGate::isProved(exchange.parts.headers);
    database.begin(lane);
    const Entry entry = enter(call, exchange, lane);
    if (entry == Entry::laterInWriting ||
        (entry == Entry::granted && lane == Lane::reading && mayWrite(*exchange.route, exchange.parts))) {
        database.rollback();
        return std::nullopt;
    }
    Step step = entry == Entry::granted
                    ? handle(call)
                    : refusedEntry(call, exchange.route->entrance, exchange.parts.headers);
    const bool isSignedIn = !call.caller.userId.empty();
    const bool keeps = keepsChanges(step, call);
    if (keeps ? database.commit() : !database.hasFailed()) {
        if (!keeps)
            database.rollback();
        else if (m_options.onChange && !call.changes.empty())
            m_options.onChange({std::move(call.changes), call.caller.userId,
                                exchange.parts.headers.find("X-Sync-Connection").value_or("")});
        return Transacted{std::move(step), isSignedIn};
    }
    if (database.lastFailure() != DatabaseFailure::taken)
        qCWarning(serverLog, "the database failed: %s", database.lastError().c_str());
    database.rollback();
    return Transacted{failed(database), isSignedIn};
}

/// Lets the caller in, if the operation wants that anybody is.
ServerCore::Entry ServerCore::enter(Call &call, const Exchange &exchange, Lane lane) const
{
    if (exchange.route->entrance == Router::Entrance::open)
        return Entry::granted;
    const auto token = bearerToken(exchange.parts.headers);
    if (!token)
        return Entry::refused;
    return exchange.route->entrance == Router::Entrance::agent ? enterAgent(call, *token, lane)
                                                               : enterSignedIn(call, *token, lane);
}

ServerCore::Entry ServerCore::enterSignedIn(Call &call, const std::string &token, Lane lane) const
{
    const auto claims = m_services.tokens.read(token, call.now);
    const auto lastUse =
        claims ? call.sessions.lastUse(claims->sessionId, claims->userId, call.isProved, call.now)
               : std::nullopt;
    if (!lastUse)
        return Entry::refused;
    if (Sessions::isTouchDue(*lastUse, call.now)) {
        if (lane == Lane::reading)
            return Entry::laterInWriting;
        call.sessions.touch(claims->sessionId, call.now);
    }
    call.caller = {claims->userId, claims->sessionId};
    return Entry::granted;
}

ServerCore::Entry ServerCore::enterAgent(Call &call, const std::string &token, Lane lane)
{
    AgentGrants grants(call.database);
    auto admission = grants.admit(token, call.now);
    if (!admission)
        return Entry::refused;
    if (admission->isTouchDue) {
        if (lane == Lane::reading)
            return Entry::laterInWriting;
        grants.touch(admission->access.grantId, call.now);
    }
    call.caller = {.userId = admission->access.userId, .sessionId = {}};
    call.agent = std::move(admission->access);
    return Entry::granted;
}

void ServerCore::admitToHub(const HttpRequest &request, const std::string &peer, Executor &executor,
                            const std::function<void(Admission)> &done)
{
    const auto guest = std::make_shared<HubGuest>();
    const auto finish = pass(request, peer, [guest, done](Served served) {
        if (served.response.status == 200)
            done(std::move(*guest));
        else
            done(failure(std::move(served.response)));
    });
    if (!finish)
        return;
    auto query = queryOf(request.path);
    if (!query)
        return (*finish)({badlyEncoded()});
    Exchange exchange{.route = &m_admissionRoute,
                      .parts = {{}, std::move(*query), request.headers},
                      .peer = m_gate.senderOf(request, peer),
                      .executor = &executor,
                      .done = *finish};
    authorizeByQuery(exchange.parts);
    const std::string ticket = queryValue(exchange.parts.query, "id");
    transact(std::make_shared<const Exchange>(std::move(exchange)), Lane::reading,
             [guest, ticket](Call &call) -> Step {
                 const auto &[userId, sessionId] = call.caller;
                 auto connection = call.services.hubTickets.redeem(ticket, userId, sessionId, call.now);
                 if (!connection)
                     return noSuch("connection");
                 *guest = {std::move(*connection), userId, sessionId, call.isProved};
                 return noBody(200);
             });
}

void ServerCore::askForHub(std::vector<HubQuestion> questions, Executor &executor,
                           const std::function<void(std::optional<std::vector<HubStanding>>)> &done)
{
    executor.transact(Lane::reading, [this, questions = std::move(questions), done](Database *database) {
        done(database ? hubStandings(*database, questions, now()) : std::nullopt);
    });
}

ServerCore::Code ServerCore::localSignInCode(const std::string &challenge, const std::string &timeZone)
{
    Code code;
    InPlaceExecutor inPlace(*m_database);
    localSignInCode(challenge, timeZone, inPlace, [&code](Code made) { code = std::move(made); });
    return code;
}

void ServerCore::localSignInCode(const std::string &challenge, const std::string &timeZone,
                                 Executor &executor, const std::function<void(Code)> &done)
{
    if (!isCodeChallenge(challenge))
        return done(failure(std::string("codeChallenge must be the base64url SHA-256 of the verifier")));
    executor.transact(Lane::writing, [this, challenge, timeZone, done](Database *database) {
        done(newCode(database, challenge, timeZone));
    });
}

ServerCore::Code ServerCore::newCode(Database *database, const std::string &challenge,
                                     const std::string &timeZone)
{
    if (!database)
        return failure(std::string("the server could not use its database"));
    database->begin();
    const auto [userId, isNew] = localAccount(*database, timeZone);
    if (!database->commit()) {
        qCWarning(serverLog, "the database failed: %s", database->lastError().c_str());
        return failure(std::string("the server could not use its database"));
    }
    return m_services.codes.issue({.userId = userId, .isNewAccount = isNew, .isLocal = true}, challenge,
                                  now());
}

void ServerCore::servePage(const HttpRequest &request, Executor &executor, const Done &done)
{
    auto answer = m_services.devProvider->answer(request, now());
    if (auto *response = std::get_if<HttpResponse>(&answer))
        return done({std::move(*response)});
    executor.transact(Lane::writing, [this, person = std::get<DevProvider::Person>(answer),
                                      done](Database *database) { done({enterPerson(database, person)}); });
}

HttpResponse ServerCore::enterPerson(Database *database, const DevProvider::Person &person)
{
    if (database == nullptr)
        return databaseFailed();
    database->begin();
    Accounts accounts(*database);
    const auto known = accounts.byEmail(person.account);
    AccountRecord account;
    account.email = person.account;
    account.emailConfirmed = true;
    account.fullName = person.name;
    account.timeZone = isZone(person.timeZone) ? person.timeZone : "UTC";
    const std::string userId = known ? known->id : accounts.create(std::move(account), now());
    if (!database->commit()) {
        qCWarning(serverLog, "the database failed: %s", database->lastError().c_str());
        return databaseFailed();
    }
    return DevProvider::backWithCode(
        m_services.codes.issue({.userId = userId, .isNewAccount = !known}, person.challenge, now()));
}

std::pair<std::string, bool> ServerCore::localAccount(Database &database, const std::string &timeZone)
{
    Accounts accounts(database);
    if (const auto found = accounts.local())
        return {found->id, false};
    AccountRecord account;
    account.email = m_options.userName + "@localhost";
    account.emailConfirmed = true;
    account.fullName = m_options.userName;
    account.timeZone = isZone(timeZone) ? timeZone : "UTC";
    account.isLocal = true;
    return {accounts.create(std::move(account), now()), true};
}

} // namespace orvane::server
