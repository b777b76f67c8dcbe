// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Passkeys/PasskeyChecks.h"
#include "Passkeys/PasskeyRecords.h"
#include "Requests/Router.h"
#include "Security/PasswordHash.h"
#include "Security/RandomText.h"
#include "SignIn/NewSession.h"

namespace orvane::server {

namespace {

constexpr std::size_t mostPasskeys = 20;

HttpResponse notOffered()
{
    return problem(404, "There are no passkeys here.",
                   "They need an https address, which the server is told with --public-address.");
}

HttpResponse questionOver()
{
    return invalid(400, {{"challengeToken", {"This request is over. Please try again."}}});
}

// Signing in

HttpResponse nativePasskeyOptions(Call &call, const operations::NativePasskeyOptions::Input &)
{
    const auto &site = call.services.passkeySite;
    if (!site)
        return notOffered();
    auto issued = call.services.passkeyChallenges.issue({}, call.now);
    return jsonAnswer(200, NativePasskeyOptionsResponse{.challengeToken = std::move(issued.token),
                                                        .challenge = std::move(issued.challenge),
                                                        .rpId = site->rpId});
}

HttpResponse nativePasskeyLogin(Call &call, const operations::NativePasskeyLogin::Input &input)
{
    const auto &site = call.services.passkeySite;
    if (!site)
        return notOffered();
    auto challenge = call.services.passkeyChallenges.redeem(input.body.challengeToken, {}, call.now);
    if (!challenge)
        return questionOver();
    const auto answer = readPasskeySignature(input.body.credential.text);
    if (!answer)
        return invalid(400, {{"credential", {"This is not what a passkey answers."}}});
    PasskeyRecords passkeys(call.database);
    const auto passkey = passkeys.byCredential(base64UrlText(answer->id));
    const auto counter = passkey && answer->userHandle == passkey->userId
                             ? checkedCounter(*answer, {*site, std::move(*challenge)},
                                              fromBase64UrlText(passkey->publicKey).value_or(""),
                                              static_cast<std::uint32_t>(passkey->counter))
                             : std::nullopt;
    if (!counter)
        return unauthorized("No account here has this passkey.");
    passkeys.use(passkey->id, *counter, call.now);
    return jsonAnswer(200, newSession(call, passkey->userId, input.body.deviceName, Sessions::Kind::lasting));
}

// One's own

HttpResponse listPasskeys(Call &call, const operations::ListPasskeys::Input &)
{
    return jsonAnswer(200, PasskeyRecords(call.database).described(call.caller.userId));
}

HttpResponse removePasskey(Call &call, const operations::RemovePasskey::Input &input)
{
    if (!PasskeyRecords(call.database).remove(input.passkeyId, call.caller.userId))
        return noSuch("passkey");
    call.changedMe();
    return noBody(204);
}

HttpResponse creationOptions(Call &call, const AccountRecord &account)
{
    auto issued = call.services.passkeyChallenges.issue(account.id, call.now);
    PasskeyOwner owner{.userId = account.id,
                       .email = account.email,
                       .name = account.fullName.empty() ? account.email : account.fullName,
                       .passkeyIds = {}};
    for (PasskeyRecord &passkey : PasskeyRecords(call.database).list(account.id))
        owner.passkeyIds.push_back(std::move(passkey.credentialId));
    PasskeyOptionsResponse response;
    response.options.text = creationOptionsJson({*call.services.passkeySite, std::move(issued.challenge)},
                                                owner, PasskeyChallenges::lifetime);
    response.challengeToken = std::move(issued.token);
    response.expiresAt = issued.expiresAt;
    return jsonAnswer(200, response);
}

HttpResponse wrongPassword(const char *sentence)
{
    return invalid(400, {{"currentPassword", {sentence}}});
}

Step passkeyCreationOptions(Call &call, const operations::PasskeyCreationOptions::Input &input);

/// `hash` is what the password was checked against.
Step creationConfirmed(Call &call, const operations::PasskeyCreationOptions::Input &input,
                       const std::string &hash, bool fits)
{
    const auto account = call.accounts.byId(call.caller.userId);
    if (!account || account->passwordHash != hash)
        return passkeyCreationOptions(call, input);
    if (const auto wait = call.services.passwordGuesses.settle(account->email, call.peer, fits, call.now))
        return tooMany(*wait);
    return fits ? creationOptions(call, *account) : wrongPassword("This is not your password.");
}

Step passkeyCreationOptions(Call &call, const operations::PasskeyCreationOptions::Input &input)
{
    if (!call.services.passkeySite)
        return notOffered();
    const auto account = call.accounts.byId(call.caller.userId);
    if (!account)
        return unauthorized("This account no longer exists.");
    if (!account->passwordHash)
        return creationOptions(call, *account);
    if (!input.body.currentPassword)
        return wrongPassword("Enter your password.");
    if (const auto wait = call.services.passwordGuesses.wait(account->email, call.peer, call.now))
        return tooMany(*wait);
    const std::string hash = *account->passwordHash;
    return aside(
        [hash, password = *input.body.currentPassword] { return passwordFits(hash, password); },
        [hash, input](Call &later, bool fits) { return creationConfirmed(later, input, hash, fits); });
}

HttpResponse savePasskey(Call &call, const operations::SavePasskey::Input &input)
{
    const auto &site = call.services.passkeySite;
    if (!site)
        return notOffered();
    const std::string name = trimmed(input.body.name);
    if (name.empty() || hasControlCharacter(name))
        return invalid(400, {{"name", {"Enter a name for the passkey."}}});
    auto challenge =
        call.services.passkeyChallenges.redeem(input.body.challengeToken, call.caller.userId, call.now);
    if (!challenge)
        return questionOver();
    const auto made = createdPasskey(input.body.credential.text, {*site, std::move(*challenge)});
    if (!made)
        return invalid(400, {{"credential", {"This is no new passkey for this server."}}});
    PasskeyRecords passkeys(call.database);
    if (passkeys.byCredential(base64UrlText(made->id)))
        return conflict("This passkey is there already.");
    if (passkeys.list(call.caller.userId).size() >= mostPasskeys)
        return conflict("An account has at most 20 passkeys. Remove one first.");
    const PasskeyRecord record{.id = newIdentifier(),
                               .userId = call.caller.userId,
                               .credentialId = base64UrlText(made->id),
                               .publicKey = base64UrlText(made->publicKey),
                               .counter = made->counter,
                               .name = name,
                               .createdAt = call.now,
                               .lastUsedAt = {}};
    passkeys.add(record);
    call.changedMe();
    return jsonAnswer(201, PasskeyResponse{.id = record.id, .name = name, .createdAt = call.now});
}

} // namespace

void addPasskeyHandlers(Router &router)
{
    router.add<operations::NativePasskeyOptions>(nativePasskeyOptions);
    router.add<operations::NativePasskeyLogin>(nativePasskeyLogin);
    router.add<operations::ListPasskeys>(listPasskeys);
    router.add<operations::RemovePasskey>(removePasskey);
    router.add<operations::PasskeyCreationOptions>(passkeyCreationOptions);
    router.add<operations::SavePasskey>(savePasskey);
}

} // namespace orvane::server
