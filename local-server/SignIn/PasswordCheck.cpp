// SPDX-License-Identifier: GPL-3.0-or-later
#include "SignIn/PasswordCheck.h"

#include "Security/PasswordHash.h"

namespace orvane::server {

namespace {

using Finish = std::function<HttpResponse(Call &, PasswordOutcome)>;

/// What a password came to beside the hash that was kept for it.
struct CheckedPassword {
    bool fits = false;
    /// A stronger one to keep instead.
    std::optional<std::string> newHash;
};

CheckedPassword checkedPassword(const std::optional<std::string> &hash, const std::string &password)
{
    CheckedPassword checked{.fits = passwordFits(hash, password), .newHash = {}};
    if (checked.fits && wantsRehash(*hash))
        checked.newHash = hashPassword(password);
    return checked;
}

/// `hash` is what the password was checked against.
Step passwordChecked(Call &call, const Credentials &credentials, const Finish &finish,
                     const std::optional<std::string> &hash, const CheckedPassword &checked)
{
    auto account = call.accounts.byEmail(credentials.email);
    if ((account ? account->passwordHash : std::nullopt) != hash)
        return checkPassword(call, credentials, finish);
    if (const auto wait =
            call.services.passwordGuesses.settle(credentials.email, call.peer, checked.fits, call.now))
        return finish(call, GuessesSlowed{*wait});
    if (!checked.fits)
        return finish(call, WrongPassword{});
    if (checked.newHash)
        call.accounts.setPassword(account->id, *checked.newHash);
    return finish(call, std::move(*account));
}

} // namespace

Step checkPassword(Call &call, const Credentials &credentials, const Finish &finish)
{
    if (const auto wait = call.services.passwordGuesses.wait(credentials.email, call.peer, call.now))
        return finish(call, GuessesSlowed{*wait});
    const auto account = call.accounts.byEmail(credentials.email);
    const auto hash = account ? account->passwordHash : std::nullopt;
    return aside([hash, password = credentials.password] { return checkedPassword(hash, password); },
                 [hash, credentials, finish](Call &later, const CheckedPassword &checked) {
                     return passwordChecked(later, credentials, finish, hash, checked);
                 });
}

} // namespace orvane::server
