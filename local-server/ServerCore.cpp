// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServerCore.h"

#include "Http/Problems.h"
#include "OrvaneAPI/Routes.h"
#include "Records/NameText.h"
#include "Security/RandomText.h"

#include <QLoggingCategory>

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

std::optional<std::string> bearerToken(const HttpHeaders &headers)
{
    constexpr std::string_view scheme = "Bearer ";
    const auto value = headers.find("Authorization");
    if (!value || !value->starts_with(scheme))
        return std::nullopt;
    return value->substr(scheme.size());
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
                 .registrationOpen = m_options.listenPoint.isLoopback()}
    , m_gate(m_options.listenPoint)
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
    if (auto refusal = m_gate.refuse(request))
        return std::move(*refusal);
    HttpResponse response = route(request, peer);
    // Answers are for the caller alone and go stale at once.
    response.headers.set("Cache-Control", "no-store");
    return response;
}

HttpResponse ServerCore::route(const HttpRequest &request, const std::string &peer)
{
    auto match = matchRoute(request.method, request.path);
    if (!match) {
        const auto methods = routeMethods(request.path);
        return methods.empty() ? problem(404, "Not found.", "The server has nothing at this address.")
                               : wrongMethod(methods);
    }
    const Router::Route *route = m_router.find(match->operation->name);
    if (!route)
        return problem(501, "Not available here.", "The server on this computer does not offer this.");
    const std::size_t mark = request.path.find('?');
    auto query = parseQuery(mark == std::string::npos ? std::string_view()
                                                      : std::string_view(request.path).substr(mark + 1));
    if (!query)
        return problem(400, "The request was not understood.", "The address is badly encoded.");
    return run(*route, {std::move(match->pathArguments), std::move(*query), request.headers, request.body},
               peer);
}

HttpResponse ServerCore::run(const Router::Route &route, const RequestParts &parts, const std::string &peer)
{
    Call call{m_services, now(), peer, {}};
    m_database->begin();
    HttpResponse response = route.access == Access::Anyone || signIn(call, parts)
                                ? route.handle(call, parts)
                                : unauthorized("Your session has ended or its token is not valid.");
    const bool keeps = response.status < 400 || call.keepsChanges;
    if (keeps ? m_database->commit() : !m_database->hasFailed()) {
        if (!keeps)
            m_database->rollback();
        return response;
    }
    qCWarning(serverLog, "the database failed: %s", m_database->lastError().c_str());
    m_database->rollback();
    return databaseFailed();
}

bool ServerCore::signIn(Call &call, const RequestParts &parts)
{
    const auto token = bearerToken(parts.headers);
    const auto claims = token ? m_services.tokens.read(*token, call.now) : std::nullopt;
    if (!claims || !m_services.sessions.touch(claims->sessionId, claims->userId, call.now))
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
    account.timeZone = isTimeZone(timeZone) ? timeZone : "UTC";
    account.isLocal = true;
    return {m_services.accounts.create(account, now()), true};
}

} // namespace orvane::server
