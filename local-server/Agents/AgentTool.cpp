// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentTool.h"

#include <algorithm>

namespace orvane::server {

const std::vector<AgentTool> &agentTools()
{
    static const std::vector<AgentTool> tools = [] {
        std::vector<AgentTool> made;
        addCatalogTools(made);
        addEntryTools(made);
        addProposalTools(made);
        return made;
    }();
    return tools;
}

const AgentTool *findAgentTool(std::string_view name)
{
    const auto found = std::ranges::find(agentTools(), name, &AgentTool::name);
    return found == agentTools().end() ? nullptr : &*found;
}

} // namespace orvane::server
