// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Entries/EntryRecords.h"
#include "Workspaces/WorkspaceAccess.h"

#include <optional>

namespace orvane::server {

using ProposalRefusal = std::optional<ProposalRefusalResponse>;

/// The code of what is refused since the user tracked that time already.
inline constexpr std::string_view overlapRefusal = "overlaps";

/// What speaks against an entry as an agent proposes it; `before` is the entry that would be changed. What
/// the user has in it already is not the agent's doing and is not held against the proposal, save for what no
/// change of the entry would pass.
ProposalRefusal proposedEntryRefusal(Call &call, const WorkspaceAccess &workspace,
                                     const std::optional<EntryRecord> &before, const EntryRecord &after);

/// What the user would hear: the code is for programs, the sentence for whoever reads the agent's answer.
ProposalRefusalResponse proposalRefusal(std::string_view code, std::string sentence);

} // namespace orvane::server
