// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Hub/HubTickets.h"
#include "Security/AccessTokens.h"
#include "Security/GuessGuard.h"
#include "Security/PasswordGuesses.h"
#include "Security/SignInCodes.h"

namespace orvane::server {

/// What all requests share beside the database; lives as long as the server. Each member may be used from any
/// thread.
struct Services {
    const AccessTokens tokens;
    const bool registrationOpen = true;
    SignInCodes codes{};
    PasswordGuesses passwordGuesses{};
    GuessGuard registrations{20};
    HubTickets hubTickets{};
};

} // namespace orvane::server
