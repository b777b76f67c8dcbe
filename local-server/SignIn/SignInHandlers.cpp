// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Requests/Router.h"
#include "Security/PasswordHash.h"
#include "SignIn/NewSession.h"
#include "SignIn/PasswordCheck.h"
#include "Support/ZoneNames.h"

namespace orvane::server {

namespace {

std::optional<HttpResponse> refusedAddress(const std::string &email)
{
    if (!isEmailAddress(email))
        return invalid("email", "Enter an e-mail address.");
    // Those belong to the account that the owner of this computer has without a password.
    if (nameKey(email).ends_with("@localhost"))
        return invalid("email", "Enter an e-mail address of another domain.");
    return std::nullopt;
}

HttpResponse addressTaken()
{
    return conflict("An account with this e-mail address exists already.");
}

HttpResponse registered(Call &call, const RegisterRequest &body, const std::optional<std::string> &hash)
{
    if (call.accounts.byEmail(body.email))
        return addressTaken();
    if (!hash)
        return problem(503, "The server is short of memory.", "Try again later.");
    AccountRecord account;
    account.email = trimmed(body.email);
    account.passwordHash = hash;
    account.fullName = trimmed(body.fullName.value_or(""));
    account.timeZone = body.timeZone.value_or("UTC");
    const std::string userId = call.accounts.create(account, call.now);
    return jsonAnswer(201, newSession(call, userId, body.deviceName, Sessions::Kind::lasting));
}

Step register_(Call &call, const operations::Register::Input &input)
{
    const RegisterRequest &body = input.body;
    Services &services = call.services;
    if (!services.registrationOpen)
        return forbidden("Registration is closed on this server.");
    if (const auto wait = services.registrations.wait(call.peer, call.now))
        return tooMany(*wait);
    if (auto refusal = refusedAddress(body.email))
        return std::move(*refusal);
    if (body.timeZone && !isZone(*body.timeZone))
        return invalid("timeZone", "This time zone is not known.");
    // Each costs the work of a hash whether it succeeds or not, so each counts.
    if (const auto wait = services.registrations.settle(call.peer, false, call.now))
        return tooMany(*wait);
    if (call.accounts.byEmail(body.email))
        return addressTaken();
    return aside([password = body.password] { return hashPassword(password); },
                 [body](Call &later, const std::optional<std::string> &hash) {
                     return registered(later, body, hash);
                 });
}

Step login(Call &call, const operations::Login::Input &input)
{
    const auto finish = [deviceName = input.body.deviceName](Call &later,
                                                             const PasswordOutcome &outcome) -> HttpResponse {
        if (const auto *slowed = std::get_if<GuessesSlowed>(&outcome))
            return tooMany(slowed->wait);
        const auto *account = std::get_if<AccountRecord>(&outcome);
        if (!account)
            return unauthorized("The e-mail address or the password is wrong.");
        return jsonAnswer(200, newSession(later, account->id, deviceName, Sessions::Kind::lasting));
    };
    return checkPassword(call, {input.body.email, input.body.password}, finish);
}

HttpResponse refreshTokens(Call &call, const operations::RefreshTokens::Input &input)
{
    const auto renewal = call.sessions.renew(input.body.refreshToken, call.isProved, call.now);
    if (const auto *refresh = std::get_if<IssuedRefresh>(&renewal))
        return jsonAnswer(200, tokensFor(call, *refresh));
    if (const auto *ended = std::get_if<Sessions::Ended>(&renewal))
        call.changedAccount(ended->userId);
    call.keepsChanges = true; // the session that ended stays ended
    return unauthorized("Your session has ended. Please sign in again.");
}

HttpResponse logout(Call &call, const operations::Logout::Input &input)
{
    // An unknown token is no news to whoever wants to be rid of it.
    if (const auto userId = call.sessions.endByToken(input.body.refreshToken, call.isProved))
        call.changedAccount(*userId);
    return noBody(202);
}

HttpResponse startExternalSignIn(Call &call, const operations::StartExternalSignIn::Input &input)
{
    DevProvider *provider = call.services.devProvider.get();
    if (provider == nullptr || input.provider != DevProvider::providerName)
        return noSuch("sign-in provider");
    if (input.redirectUri != DevProvider::callback)
        return invalid(400, {{"redirectUri", {"This is not where Orvane can be sent back to."}}});
    if (!isCodeChallenge(input.codeChallenge))
        return invalid(400, {{"codeChallenge", {"This is not the SHA-256 of a verifier, as base64url."}}});
    HttpResponse response{302, {}, {}};
    response.headers.set("Location",
                         provider->begin(input.codeChallenge, input.timeZone.value_or(""), call.now));
    return response;
}

/// A login is the account's own: it has no other way in, so it stays.
HttpResponse listExternalLogins(Call &call, const operations::ListExternalLogins::Input &)
{
    std::vector<ExternalLoginResponse> logins;
    const auto account = call.accounts.byId(call.caller.userId);
    if (account && DevProvider::isAccount(account->email))
        logins.push_back({.id = account->id,
                          .provider = std::string(DevProvider::providerName),
                          .email = {},
                          .createdAt = account->createdAt});
    return jsonAnswer(200, logins);
}

HttpResponse removeExternalLogin(Call &call, const operations::RemoveExternalLogin::Input &input)
{
    const auto account = call.accounts.byId(call.caller.userId);
    if (!account || !DevProvider::isAccount(account->email) || input.loginId != account->id)
        return noSuch("login");
    return conflict("This is the only way to sign in to this account.");
}

HttpResponse exchangeExternalSignIn(Call &call, const operations::ExchangeExternalSignIn::Input &input)
{
    const auto grant = call.services.codes.redeem(input.body.code, input.body.codeVerifier, call.now);
    if (!grant)
        return invalid(400, {{"code", {"This code is not valid, or no longer."}}});
    ExternalSignInResponse response;
    response.tokens = newSession(call, grant->userId, input.body.deviceName,
                                 grant->isLocal ? Sessions::Kind::local : Sessions::Kind::lasting);
    response.isNewAccount = grant->isNewAccount;
    return jsonAnswer(200, response);
}

} // namespace

void addSignInHandlers(Router &router)
{
    router.add<operations::Register>(register_);
    router.add<operations::Login>(login);
    router.add<operations::RefreshTokens>(refreshTokens);
    router.add<operations::Logout>(logout);
    router.add<operations::StartExternalSignIn>(startExternalSignIn);
    router.add<operations::ExchangeExternalSignIn>(exchangeExternalSignIn);
    router.add<operations::ListExternalLogins>(listExternalLogins);
    router.add<operations::RemoveExternalLogin>(removeExternalLogin);
}

} // namespace orvane::server
