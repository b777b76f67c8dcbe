// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "OrvaneAPI/Schemas.h"
#include "Terminal/TerminalStyle.h"
#include "Time/UserTime.h"

#include <string>
#include <vector>

namespace orvane {

/// What agents proposed as people read it: a line each with the entry that it is about, below it what would
/// change and the agent's reason. Not for an empty list. Main thread, like the catalog.
std::string proposalList(const std::vector<AgentProposalResponse> &proposals, const Catalog &catalog,
                         const UserTime &time, const TerminalStyle &style);

/// The identifier as the list shows it, among those of all.
std::string shortProposalId(const std::vector<AgentProposalResponse> &proposals, const std::string &id);

} // namespace orvane
