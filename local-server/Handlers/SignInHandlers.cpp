// SPDX-License-Identifier: GPL-3.0-or-later
#include "Handlers/Router.h"
#include "Http/Problems.h"
#include "Records/NameText.h"
#include "Security/PasswordHash.h"

namespace orvane::server {

namespace {

constexpr std::chrono::minutes accessLifetime{15};

AuthTokensResponse tokensFor(Call &call, const IssuedRefresh &refresh)
{
    const Instant expiresAt = call.now + accessLifetime;
    return {.accessToken = call.services.tokens.issue({refresh.sessionId, refresh.userId, expiresAt}),
            .accessTokenExpiresAt = expiresAt,
            .refreshToken = refresh.token,
            .refreshTokenExpiresAt = refresh.expiresAt};
}

AuthTokensResponse newSession(Call &call, const std::string &userId,
                              const std::optional<std::string> &deviceName, Sessions::Kind kind)
{
    return tokensFor(call, call.services.sessions.start(userId, deviceName, kind, call.now));
}

std::optional<HttpResponse> refusedAddress(const std::string &email)
{
    if (!isEmailAddress(email))
        return invalid("email", "Enter an e-mail address.");
    // Those belong to the account that the owner of this computer has without a password.
    if (nameKey(email).ends_with("@localhost"))
        return invalid("email", "Enter an e-mail address of another domain.");
    return std::nullopt;
}

HttpResponse register_(Call &call, const operations::Register::Input &input)
{
    const RegisterRequest &body = input.body;
    Services &services = call.services;
    if (!services.registrationOpen)
        return forbidden("Registration is closed on this server.");
    if (const auto wait = services.registrations.wait(call.peer, call.now))
        return tooMany(*wait);
    if (auto refusal = refusedAddress(body.email))
        return std::move(*refusal);
    if (body.timeZone && !isTimeZone(*body.timeZone))
        return invalid("timeZone", "This time zone is not known.");
    // Each costs the work of a hash whether it succeeds or not, so each counts.
    services.registrations.failed(call.peer, call.now);
    if (services.accounts.byEmail(body.email))
        return conflict("An account with this e-mail address exists already.");
    const auto hash = hashPassword(body.password);
    if (!hash)
        return problem(503, "The server is short of memory.", "Try again later.");
    AccountRecord account;
    account.email = trimmed(body.email);
    account.passwordHash = hash;
    account.fullName = trimmed(body.fullName.value_or(""));
    account.timeZone = body.timeZone.value_or("UTC");
    const std::string userId = services.accounts.create(account, call.now);
    return jsonAnswer(201, newSession(call, userId, body.deviceName, Sessions::Kind::Lasting));
}

HttpResponse login(Call &call, const operations::Login::Input &input)
{
    Services &services = call.services;
    const std::string key = "account " + nameKey(input.body.email);
    for (const std::string &slowed : {key, call.peer}) {
        if (const auto wait = services.passwordGuesses.wait(slowed, call.now))
            return tooMany(*wait);
    }
    const auto account = services.accounts.byEmail(input.body.email);
    if (!passwordFits(account ? account->passwordHash : std::nullopt, input.body.password)) {
        services.passwordGuesses.failed(key, call.now);
        services.passwordGuesses.failed(call.peer, call.now);
        return unauthorized("The e-mail address or the password is wrong.");
    }
    services.passwordGuesses.succeeded(key);
    if (wantsRehash(*account->passwordHash)) {
        if (const auto hash = hashPassword(input.body.password))
            services.accounts.setPassword(account->id, *hash);
    }
    return jsonAnswer(200, newSession(call, account->id, input.body.deviceName, Sessions::Kind::Lasting));
}

HttpResponse refreshTokens(Call &call, const operations::RefreshTokens::Input &input)
{
    const auto renewal = call.services.sessions.renew(input.body.refreshToken, call.now);
    if (const auto *refresh = std::get_if<IssuedRefresh>(&renewal))
        return jsonAnswer(200, tokensFor(call, *refresh));
    call.keepsChanges = true; // the session that ended stays ended
    return unauthorized("Your session has ended. Please sign in again.");
}

HttpResponse logout(Call &call, const operations::Logout::Input &input)
{
    // An unknown token is no news to whoever wants to be rid of it.
    call.services.sessions.endByToken(input.body.refreshToken);
    return noBody(202);
}

HttpResponse exchangeExternalSignIn(Call &call, const operations::ExchangeExternalSignIn::Input &input)
{
    const auto grant = call.services.codes.redeem(input.body.code, input.body.codeVerifier, call.now);
    if (!grant)
        return invalid(400, {{"code", {"This code is not valid, or no longer."}}});
    ExternalSignInResponse response;
    response.tokens = newSession(call, grant->userId, input.body.deviceName, Sessions::Kind::Local);
    response.isNewAccount = grant->isNewAccount;
    return jsonAnswer(200, response);
}

} // namespace

void addSignInHandlers(Router &router)
{
    router.add<operations::Register>(register_, Access::Anyone);
    router.add<operations::Login>(login, Access::Anyone);
    router.add<operations::RefreshTokens>(refreshTokens, Access::Anyone);
    router.add<operations::Logout>(logout, Access::Anyone);
    router.add<operations::ExchangeExternalSignIn>(exchangeExternalSignIn, Access::Anyone);
}

} // namespace orvane::server
