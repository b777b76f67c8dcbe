// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/AgentGrants.h"
#include "OrvaneAPI/Schemas.h"
#include "Support/Result.h"

#include <optional>
#include <string>
#include <vector>

/// An agent's request for leave, and the person's answer to it.
namespace orvane::server {

struct Call;

/// A request with which nothing is wrong.
struct AgentRequest {
    AgentClient client;
    std::string redirectUri;
    std::string challenge;
    std::optional<std::string> state;
    bool mayPropose = false;
};

/// What is wrong with one.
struct AgentRequestFault {
    /// The member of OAuthAuthorizationRequest that it is about, and a sentence for people.
    std::string field;
    std::string sentence;
    /// Where the agent can be told so, in OAuth's words; empty for a request that names no place of a
    /// registered agent's.
    std::string redirectUri;
};

Result<AgentRequest, AgentRequestFault> checkAgentRequest(Call &call,
                                                          const OAuthAuthorizationRequest &request);

/// The user's workspaces, by organization.
std::vector<OrganizationAccess> workspacesToGive(Call &call, const std::string &userId);
/// Those of them that are in a list.
std::vector<OrganizationAccess> workspacesAmong(Call &call, const std::string &userId,
                                                const std::vector<std::string> &workspaceIds);

/// Keep the answer and say where it takes the browser. The workspaces are the user's own, and there is one.
std::string approveAgent(Call &call, const AgentRequest &request, const std::string &userId,
                         const std::vector<std::string> &workspaceIds);
std::string refuseAgent(const AgentRequest &request);

} // namespace orvane::server
