// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Database/Database.h"
#include "Records/Accounts.h"
#include "Records/Sessions.h"
#include "Records/Workspaces.h"
#include "Security/AccessTokens.h"
#include "Security/GuessGuard.h"
#include "Security/PasswordGuesses.h"
#include "Security/SignInCodes.h"

#include <string>

namespace orvane::server {

/// What the handlers work with; lives as long as the server.
struct Services {
    Database &database;
    AccessTokens tokens;
    SignInCodes codes{};
    PasswordGuesses passwordGuesses{};
    GuessGuard registrations{20};
    bool registrationOpen = true;

    Accounts accounts{database};
    Sessions sessions{database};
    Workspaces workspaces{database};
};

/// Who sent a request, once its access token has been accepted.
struct Caller {
    std::string userId;
    std::string sessionId;
};

/// One request being handled, inside one transaction of the database. The transaction is kept when the answer
/// is a success, undone otherwise.
struct Call {
    Services &services;
    /// The server's time, in whole milliseconds.
    Instant now;
    /// The address of the other side: of the one that a trusted proxy speaks for.
    std::string peer;
    /// Empty for operations that need no signing in.
    Caller caller;
    /// Whether it came from one of this user's own programs; see ProofGate.
    bool isProved = false;
    /// Set by a handler whose changes are to stay although it refuses.
    bool keepsChanges = false;
};

} // namespace orvane::server
