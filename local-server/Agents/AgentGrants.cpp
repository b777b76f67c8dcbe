// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentGrants.h"

#include "Database/Database.h"
#include "Security/RandomText.h"

namespace orvane::server {

namespace {

constexpr std::chrono::days refreshLifetime{60};
constexpr std::chrono::minutes grantTouchInterval{1};
/// How long an agent is known that nobody lets in, and how many are.
constexpr std::chrono::days idleClientLifetime{30};
constexpr std::int64_t mostClients = 500;

constexpr std::string_view accessKind = "access";
constexpr std::string_view refreshKind = "refresh";

// The states of a code or token: not used yet, used last, used before that.
constexpr std::string_view freshState = "fresh";
constexpr std::string_view spentState = "spent";
constexpr std::string_view deadState = "dead";

} // namespace

std::optional<std::string> AgentGrants::addClient(AgentClient client, Instant now)
{
    if (!makeRoomForClient(now))
        return std::nullopt;
    client.id = newIdentifier();
    m_database.run("INSERT INTO agent_clients (id, name, uri, created_at) VALUES (?, ?, ?, ?)", client.id,
                   client.name, client.uri, now);
    for (std::size_t i = 0; i < client.redirectUris.size(); ++i)
        m_database.run("INSERT INTO agent_client_redirects (client_id, position, uri) VALUES (?, ?, ?)",
                       client.id, static_cast<std::int64_t>(i), client.redirectUris[i]);
    return client.id;
}

/// Anybody can register, so what nobody uses goes as others come.
bool AgentGrants::makeRoomForClient(Instant now)
{
    m_database.run("DELETE FROM agent_clients WHERE created_at <= ? AND NOT EXISTS "
                   "(SELECT 1 FROM agent_grants g WHERE g.client_id = agent_clients.id)",
                   now - idleClientLifetime);
    const auto count = m_database.row("SELECT COUNT(*) FROM agent_clients",
                                      [](const SqlRow &row) { return row.integer(0); });
    if (count.value_or(0) < mostClients)
        return true;
    return m_database.run("DELETE FROM agent_clients WHERE id = (SELECT c.id FROM agent_clients c WHERE NOT "
                          "EXISTS (SELECT 1 FROM agent_grants g WHERE g.client_id = c.id) "
                          "ORDER BY c.created_at, c.id LIMIT 1)") > 0;
}

std::optional<AgentClient> AgentGrants::client(const std::string &id)
{
    auto client = m_database.row(
        "SELECT id, name, uri, created_at FROM agent_clients WHERE id = ?",
        [](const SqlRow &row) {
            return AgentClient{row.text(0), row.text(1), row.optionalText(2), {}, row.instant(3)};
        },
        id);
    if (client)
        client->redirectUris = m_database.rows(
            "SELECT uri FROM agent_client_redirects WHERE client_id = ? ORDER BY position",
            [](const SqlRow &row) { return row.text(0); }, id);
    return client;
}

std::string AgentGrants::approve(const Approval &approval, Instant now)
{
    tidy(now);
    const std::string grantId = newIdentifier();
    m_database.run("INSERT INTO agent_grants (id, user_id, client_id, may_propose, granted_at) "
                   "VALUES (?, ?, ?, ?, ?)",
                   grantId, approval.userId, approval.clientId, approval.mayPropose, now);
    for (const std::string &workspaceId : approval.workspaceIds)
        m_database.run("INSERT INTO agent_grant_workspaces (grant_id, workspace_id) VALUES (?, ?) "
                       "ON CONFLICT DO NOTHING",
                       grantId, workspaceId);
    std::string code = randomText(32);
    m_database.run("INSERT INTO agent_codes (digest, grant_id, redirect_uri, challenge, state, expires_at) "
                   "VALUES (?, ?, ?, ?, ?, ?)",
                   digestText(code), grantId, approval.redirectUri, approval.challenge, freshState,
                   now + codeLifetime);
    return code;
}

AgentGrants::Tokens AgentGrants::exchange(const CodeExchange &exchange, Instant now)
{
    struct Found {
        std::string grantId, userId, clientId, redirectUri, challenge, state;
        bool isExpired = false;
    };
    const std::string digest = digestText(exchange.code);
    const auto found = m_database.row(
        "SELECT c.grant_id, g.user_id, g.client_id, c.redirect_uri, c.challenge, c.state, c.expires_at "
        "FROM agent_codes c JOIN agent_grants g ON g.id = c.grant_id WHERE c.digest = ?",
        [&](const SqlRow &row) {
            return Found{row.text(0), row.text(1), row.text(2),          row.text(3),
                         row.text(4), row.text(5), row.instant(6) <= now};
        },
        digest);
    if (!found)
        return failure(Refused{});
    const bool fits = found->state == freshState && !found->isExpired &&
                      found->clientId == exchange.clientId && found->redirectUri == exchange.redirectUri &&
                      sameSecret(digestText(exchange.verifier), found->challenge);
    if (!fits)
        return failure(endGrant(found->grantId));
    m_database.run("UPDATE agent_codes SET state = ? WHERE digest = ?", spentState, digest);
    m_database.run("DELETE FROM agent_grants WHERE user_id = ? AND client_id = ? AND id <> ?", found->userId,
                   found->clientId, found->grantId);
    return issueBoth(found->grantId, now);
}

AgentGrants::Tokens AgentGrants::renew(const std::string &refreshToken, const std::string &clientId,
                                       Instant now)
{
    struct Found {
        std::string grantId, state;
        bool isExpired = false;
    };
    const std::string digest = digestText(refreshToken);
    const auto found = m_database.row(
        "SELECT t.grant_id, t.state, t.expires_at FROM agent_tokens t "
        "JOIN agent_grants g ON g.id = t.grant_id WHERE t.digest = ? AND t.kind = ? AND g.client_id = ?",
        [&](const SqlRow &row) { return Found{row.text(0), row.text(1), row.instant(2) <= now}; }, digest,
        refreshKind, clientId);
    if (!found || found->isExpired)
        return failure(Refused{});
    if (found->state == deadState)
        return failure(endGrant(found->grantId));
    if (found->state == freshState) {
        m_database.run("UPDATE agent_tokens SET state = ? WHERE grant_id = ? AND kind = ?", deadState,
                       found->grantId, refreshKind);
        m_database.run("UPDATE agent_tokens SET state = ? WHERE digest = ?", spentState, digest);
    } else {
        // The answer was lost, so only its repetition is to be good.
        m_database.run("UPDATE agent_tokens SET state = ? WHERE grant_id = ? AND kind = ? AND state = ?",
                       deadState, found->grantId, refreshKind, freshState);
    }
    return issueBoth(found->grantId, now);
}

std::optional<std::string> AgentGrants::endByToken(const std::string &token, const std::string &clientId)
{
    const auto grantId = m_database.row(
        "SELECT g.id FROM agent_tokens t JOIN agent_grants g ON g.id = t.grant_id "
        "WHERE t.digest = ? AND g.client_id = ?",
        [](const SqlRow &row) { return row.text(0); }, digestText(token), clientId);
    return grantId ? std::optional(endGrant(*grantId).endedOf) : std::nullopt;
}

std::optional<AgentGrants::Admission> AgentGrants::admit(const std::string &token, Instant now)
{
    auto admission = m_database.row(
        "SELECT g.id, g.user_id, c.name, g.may_propose, g.last_used_at FROM agent_tokens t "
        "JOIN agent_grants g ON g.id = t.grant_id JOIN agent_clients c ON c.id = g.client_id "
        "WHERE t.digest = ? AND t.kind = ? AND t.expires_at > ?",
        [&](const SqlRow &row) {
            return Admission{{row.text(0), row.text(1), row.text(2), {}, row.boolean(3)},
                             row.isNull(4) || now - row.instant(4) > grantTouchInterval};
        },
        digestText(token), accessKind, now);
    if (admission)
        admission->access.workspaceIds = workspacesOf(admission->access.grantId, admission->access.userId);
    return admission;
}

void AgentGrants::touch(const std::string &grantId, Instant now)
{
    m_database.run("UPDATE agent_grants SET last_used_at = ? WHERE id = ?", now, grantId);
}

std::vector<AgentGrant> AgentGrants::list(const std::string &userId, Instant now)
{
    auto grants = m_database.rows(
        "SELECT g.id, g.client_id, c.name, g.may_propose, g.granted_at, g.last_used_at FROM agent_grants g "
        "JOIN agent_clients c ON c.id = g.client_id WHERE g.user_id = ? AND EXISTS (SELECT 1 FROM "
        "agent_tokens "
        "t WHERE t.grant_id = g.id AND t.expires_at > ?) ORDER BY g.granted_at DESC, g.id",
        [](const SqlRow &row) {
            AgentGrant grant{row.text(0), row.text(1), row.text(2), row.boolean(3), row.instant(4), {}, {}};
            if (!row.isNull(5))
                grant.lastUsedAt = row.instant(5);
            return grant;
        },
        userId, now);
    for (AgentGrant &grant : grants)
        grant.workspaceIds = workspacesOf(grant.id, userId);
    return grants;
}

bool AgentGrants::end(const std::string &grantId, const std::string &userId)
{
    return m_database.run("DELETE FROM agent_grants WHERE id = ? AND user_id = ?", grantId, userId) > 0;
}

void AgentGrants::endAll(const std::string &userId)
{
    m_database.run("DELETE FROM agent_grants WHERE user_id = ?", userId);
}

std::string AgentGrants::issue(const std::string &grantId, std::string_view kind, Instant now,
                               Instant expiresAt)
{
    std::string token = randomText(32);
    m_database.run("INSERT INTO agent_tokens (digest, grant_id, kind, state, issued_at, expires_at) "
                   "VALUES (?, ?, ?, ?, ?, ?)",
                   digestText(token), grantId, kind, freshState, now, expiresAt);
    return token;
}

AgentTokens AgentGrants::issueBoth(const std::string &grantId, Instant now)
{
    tidy(now);
    AgentTokens tokens;
    tokens.userId = ownerOf(grantId);
    tokens.mayPropose =
        m_database.exists("SELECT 1 FROM agent_grants WHERE id = ? AND may_propose = 1", grantId);
    tokens.access = issue(grantId, accessKind, now, now + accessLifetime);
    tokens.refresh = issue(grantId, refreshKind, now, now + refreshLifetime);
    return tokens;
}

std::vector<std::string> AgentGrants::workspacesOf(const std::string &grantId, const std::string &userId)
{
    return m_database.rows(
        "SELECT w.workspace_id FROM agent_grant_workspaces w JOIN workspace_members m "
        "ON m.workspace_id = w.workspace_id AND m.user_id = ? WHERE w.grant_id = ? ORDER BY w.workspace_id",
        [](const SqlRow &row) { return row.text(0); }, userId, grantId);
}

std::string AgentGrants::ownerOf(const std::string &grantId)
{
    return m_database
        .row(
            "SELECT user_id FROM agent_grants WHERE id = ?", [](const SqlRow &row) { return row.text(0); },
            grantId)
        .value_or("");
}

AgentGrants::Refused AgentGrants::endGrant(const std::string &grantId)
{
    Refused refused{ownerOf(grantId)};
    m_database.run("DELETE FROM agent_grants WHERE id = ?", grantId);
    return refused;
}

/// Forgets what is over: codes, tokens, and grants that nothing is left of.
void AgentGrants::tidy(Instant now)
{
    m_database.run("DELETE FROM agent_codes WHERE expires_at <= ?", now);
    m_database.run("DELETE FROM agent_tokens WHERE expires_at <= ?", now);
    m_database.run(
        "DELETE FROM agent_grants WHERE NOT EXISTS (SELECT 1 FROM agent_tokens t WHERE t.grant_id = "
        "agent_grants.id) AND NOT EXISTS (SELECT 1 FROM agent_codes c WHERE c.grant_id = "
        "agent_grants.id)");
}

} // namespace orvane::server
