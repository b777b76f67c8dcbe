// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/AgentAttempts.h"
#include "Agents/AgentPace.h"
#include "DevProvider/DevProvider.h"
#include "Hub/HubTickets.h"
#include "Passkeys/PasskeyChallenges.h"
#include "Passkeys/PasskeySite.h"
#include "Security/AccessTokens.h"
#include "Security/GuessGuard.h"
#include "Security/PasswordGuesses.h"
#include "Security/SignInCodes.h"

#include <memory>

namespace orvane::server {

/// What all requests share beside the database; lives as long as the server. Each member may be used from any
/// thread.
struct Services {
    const AccessTokens tokens;
    const bool registrationOpen = true;
    /// None where nobody signs in through it.
    const std::shared_ptr<DevProvider> devProvider{};
    /// None where there are no passkeys.
    const std::optional<PasskeySite> passkeySite{};
    /// Whether it says that it is the service that Orvane's makers run.
    const bool isHosted = false;
    /// By which people reach it beyond this computer; empty where they do not.
    const std::string publicAddress{};
    SignInCodes codes{};
    PasskeyChallenges passkeyChallenges{};
    PasswordGuesses passwordGuesses{};
    GuessGuard registrations{20};
    GuessGuard agentRegistrations{20};
    AgentAttempts agentAttempts{};
    AgentPace agentPace{};
    HubTickets hubTickets{};
};

} // namespace orvane::server
