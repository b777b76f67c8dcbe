// SPDX-License-Identifier: GPL-3.0-or-later
#include "Handlers/Router.h"
#include "Http/Problems.h"
#include "Records/NameText.h"
#include "Security/PasswordHash.h"

namespace orvane::server {

namespace {

HttpResponse listSessions(Call &call, const operations::ListSessions::Input &)
{
    std::vector<SessionResponse> sessions;
    for (SessionRecord &record : call.services.sessions.list(call.caller.userId, call.now)) {
        SessionResponse &session = sessions.emplace_back();
        session.isCurrent = record.id == call.caller.sessionId;
        session.id = std::move(record.id);
        session.deviceName = std::move(record.deviceName);
        session.createdAt = record.createdAt;
        session.lastUsedAt = record.lastUsedAt;
    }
    return jsonAnswer(200, sessions);
}

HttpResponse revokeSession(Call &call, const operations::RevokeSession::Input &input)
{
    return call.services.sessions.end(input.sessionId, call.caller.userId) ? noBody(204) : noSuch("session");
}

HttpResponse revokeOtherSessions(Call &call, const operations::RevokeOtherSessions::Input &)
{
    call.services.sessions.endOthers(call.caller.sessionId, call.caller.userId);
    return noBody(204);
}

HttpResponse changePassword(Call &call, const operations::ChangePassword::Input &input)
{
    Services &services = call.services;
    const auto account = services.accounts.byId(call.caller.userId);
    if (!account || !account->passwordHash)
        return invalid("currentPassword", "This account has no password.");
    const std::string key = "account " + nameKey(account->email);
    if (const auto wait = services.passwordGuesses.wait(key, call.now))
        return tooMany(*wait);
    if (!passwordFits(account->passwordHash, input.body.currentPassword)) {
        services.passwordGuesses.failed(key, call.now);
        return invalid("currentPassword", "This is not your password.");
    }
    const auto hash = hashPassword(input.body.newPassword);
    if (!hash)
        return problem(503, "The server is short of memory.", "Try again later.");
    services.accounts.setPassword(account->id, *hash);
    // Whoever knew the old password is out.
    services.sessions.endOthers(call.caller.sessionId, call.caller.userId);
    return noBody(204);
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
