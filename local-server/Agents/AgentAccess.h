// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace orvane::server {

/// What an agent's access token comes to: on whose behalf it asks, under which name, and which workspaces
/// that person let it into. It opens the agents' tools and nothing else.
struct AgentAccess {
    /// The grant that the token belongs to; it ends with it.
    std::string grantId;
    std::string userId;
    /// What the agent called itself when it registered.
    std::string agentName;
    /// Those that the person is in still.
    std::vector<std::string> workspaceIds;
    /// Whether it may propose; every agent may read.
    bool mayPropose = false;
};

} // namespace orvane::server
