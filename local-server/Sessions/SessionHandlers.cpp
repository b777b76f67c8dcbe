// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentAuthorization.h"
#include "Agents/AgentMessages.h"
#include "Http/Problems.h"
#include "Requests/Router.h"
#include "Security/PasswordHash.h"

namespace orvane::server {

namespace {

SessionResponse agentSession(Call &call, AgentGrant grant)
{
    AgentAccessResponse agent;
    agent.clientId = std::move(grant.clientId);
    agent.clientName = grant.clientName;
    agent.scopes = scopesOf(grant.mayPropose);
    agent.organizations = workspacesAmong(call, call.caller.userId, grant.workspaceIds);
    agent.grantedAt = grant.grantedAt;
    agent.lastUsedAt = grant.lastUsedAt;
    SessionResponse session;
    session.id = std::move(grant.id);
    session.deviceName = std::move(grant.clientName);
    session.createdAt = grant.grantedAt;
    session.lastUsedAt = grant.lastUsedAt.value_or(grant.grantedAt);
    session.agent = std::move(agent);
    return session;
}

HttpResponse listSessions(Call &call, const operations::ListSessions::Input &)
{
    std::vector<SessionResponse> sessions;
    for (SessionRecord &record : call.sessions.list(call.caller.userId, call.now)) {
        SessionResponse &session = sessions.emplace_back();
        session.isCurrent = record.id == call.caller.sessionId;
        session.id = std::move(record.id);
        session.deviceName = std::move(record.deviceName);
        session.createdAt = record.createdAt;
        session.lastUsedAt = record.lastUsedAt;
    }
    for (AgentGrant &grant : AgentGrants(call.database).list(call.caller.userId, call.now))
        sessions.push_back(agentSession(call, std::move(grant)));
    return jsonAnswer(200, sessions);
}

HttpResponse revokeSession(Call &call, const operations::RevokeSession::Input &input)
{
    if (!call.sessions.end(input.sessionId, call.caller.userId) &&
        !AgentGrants(call.database).end(input.sessionId, call.caller.userId))
        return noSuch("session");
    call.changedMe();
    return noBody(204);
}

/// The agents' too: who let them in may have been somebody else.
void endAllOthers(Call &call)
{
    call.sessions.endOthers(call.caller.sessionId, call.caller.userId);
    AgentGrants(call.database).endAll(call.caller.userId);
    call.services.agentAttempts.closeAllOf(call.caller.userId);
}

HttpResponse revokeOtherSessions(Call &call, const operations::RevokeOtherSessions::Input &)
{
    endAllOthers(call);
    call.changedMe();
    return noBody(204);
}

/// What the current password came to, and the new one's hash when it is needed and could be made.
struct PasswordChange {
    bool fits = false;
    std::optional<std::string> newHash;
};

Step changePassword(Call &call, const operations::ChangePassword::Input &input);

/// `hash` is what the current password was checked against.
Step passwordChanged(Call &call, const operations::ChangePassword::Input &input, const std::string &hash,
                     const PasswordChange &change)
{
    const auto account = call.accounts.byId(call.caller.userId);
    if (!account || account->passwordHash != hash)
        return changePassword(call, input);
    if (const auto wait =
            call.services.passwordGuesses.settle(account->email, call.peer, change.fits, call.now))
        return tooMany(*wait);
    if (!change.fits)
        return invalid("currentPassword", "This is not your password.");
    if (!change.newHash)
        return problem(503, "The server is short of memory.", "Try again later.");
    call.accounts.setPassword(account->id, *change.newHash);
    // Whoever knew the old password is out.
    endAllOthers(call);
    call.changedMe();
    return noBody(204);
}

Step changePassword(Call &call, const operations::ChangePassword::Input &input)
{
    const auto account = call.accounts.byId(call.caller.userId);
    if (!account || !account->passwordHash)
        return invalid("currentPassword", "This account has no password.");
    if (const auto wait = call.services.passwordGuesses.wait(account->email, call.peer, call.now))
        return tooMany(*wait);
    const std::string hash = *account->passwordHash;
    return aside(
        [hash, body = input.body] {
            PasswordChange change{.fits = passwordFits(hash, body.currentPassword), .newHash = {}};
            if (change.fits)
                change.newHash = hashPassword(body.newPassword);
            return change;
        },
        [hash, input](Call &later, const PasswordChange &change) {
            return passwordChanged(later, input, hash, change);
        });
}

} // namespace

void addSessionHandlers(Router &router)
{
    router.add<operations::ListSessions>(listSessions);
    router.add<operations::RevokeSession>(revokeSession);
    router.add<operations::RevokeOtherSessions>(revokeOtherSessions);
    router.add<operations::ChangePassword>(changePassword);
}

} // namespace orvane::server
