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

/// The end of a sign-in through the browser; see ExternalSignIn.
struct CodeSignIn {
    std::string code;
    /// Of the same attempt.
    std::string verifier;
};

/// See PasskeyService.
struct PasskeySignIn {
    /// As it came with the options.
    std::string challengeToken;
    /// The passkey's answer to them, as JSON.
    std::string credential;
};

using SignIn = std::variant<PasswordSignIn, Registration, CodeSignIn, PasskeySignIn>;

/// Afterwards the session has its tokens.
Task<CallResult<void>> signIn(SignIn way, std::shared_ptr<AuthSession> session);

} // namespace orvane
