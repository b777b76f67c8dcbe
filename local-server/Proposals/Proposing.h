// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"
#include "Workspaces/WorkspaceAccess.h"

#include <optional>
#include <string>
#include <vector>

/// What an agent may do on behalf of the caller: propose, and take back what nobody has answered. Nothing
/// here touches an entry.
namespace orvane::server {

/// How many may wait for one user's answer in one workspace.
inline constexpr std::size_t mostPendingProposals = 500;

/// One outcome for each item, in their order: the proposal made of it, or a refusal whose code stands at
/// ProposalPlan. 429, and nothing is taken, when more would wait than may. `agentName` is shown to the user;
/// a request has passed the API document's checks.
using ProposalOutcomes = Result<std::vector<ProposalOutcomeResponse>, HttpResponse>;
ProposalOutcomes propose(Call &call, const WorkspaceAccess &workspace, const std::string &agentName,
                         const ProposeEntriesRequest &request);
ProposalOutcomes propose(Call &call, const WorkspaceAccess &workspace, const std::string &agentName,
                         const ProposeChangesRequest &request);

/// Withdraws those of the caller's that still wait, and answers which; an agent only its own. Those that are
/// settled or not there are passed over.
std::vector<std::string> withdrawProposals(Call &call, const WorkspaceAccess &workspace,
                                           const std::optional<std::string> &agentName,
                                           const std::vector<std::string> &ids);

/// An agent's name as it is kept and shown: one line of what can be seen, never empty.
std::string shownAgentName(const std::string &name);

} // namespace orvane::server
