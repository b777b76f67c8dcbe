// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Requests/Aside.h"

#include <chrono>
#include <functional>
#include <string>
#include <variant>

namespace orvane::server {

struct Credentials {
    std::string email;
    std::string password;
};

struct WrongPassword {};
/// Too many guesses were made; what is left to wait.
struct GuessesSlowed {
    std::chrono::seconds wait{};
};
/// Whose password it was, or why that was not found out.
using PasswordOutcome = std::variant<AccountRecord, WrongPassword, GuessesSlowed>;

/// Checks a password as every sign-in does: slowed down for who guesses, aside, and in the same time whether
/// there is such an account or not. `finish` answers what it came to.
Step checkPassword(Call &call, const Credentials &credentials,
                   const std::function<HttpResponse(Call &, PasswordOutcome)> &finish);

} // namespace orvane::server
