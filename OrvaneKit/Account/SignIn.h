// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/CallError.h"
#include "Support/Task.h"

#include <memory>
#include <string>
#include <variant>

namespace orvane {

class AuthSession;

/// The ways in which a person signs in to a server. Values, for memory only.
struct PasswordSignIn {
    std::string email;
    std::string password;
};

/// A new account, in this computer's time zone.
struct Registration {
    std::string email;
    std::string password;
};

using SignIn = std::variant<PasswordSignIn, Registration>;

/// Afterwards the session has its tokens.
Task<CallResult<void>> signIn(SignIn way, std::shared_ptr<AuthSession> session);

} // namespace orvane
