// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/AgentGrants.h"
#include "OrvaneAPI/HttpMessage.h"
#include "Support/Result.h"

#include <optional>
#include <string>
#include <string_view>

/// What agents and the server say to each other while they sign in, as OAuth writes it. Reading is pure, for
/// any thread.
namespace orvane::server {

/// What an agent may be allowed, as it asks for it.
inline constexpr std::string_view readScope = "time:read";
inline constexpr std::string_view proposeScope = "time:propose";

std::string scopeText(bool mayPropose);
std::vector<std::string> scopesOf(bool mayPropose);
/// Whether the scopes that are asked for let it propose: they name that, or nothing. Nothing for a text that
/// asks for what there is not.
std::optional<bool> asksToPropose(std::string_view scope);

/// An error in OAuth's words, and a sentence beside it.
struct OAuthFault {
    std::string error;
    std::string description;
};
HttpResponse oauthFailed(int status, const OAuthFault &fault);

/// An agent's description of itself; what it leaves out, and what is not used here, is passed over.
Result<AgentClient, OAuthFault> readAgentRegistration(std::string_view body);
HttpResponse agentRegistered(const AgentClient &client);
HttpResponse agentTokensAnswer(const AgentTokens &tokens);
/// Where an agent finds out how to sign in. `address` is the server's, without a slash at the end.
HttpResponse protectedResourceAnswer(const std::string &address);
HttpResponse authorizationServerAnswer(const std::string &address);

} // namespace orvane::server
