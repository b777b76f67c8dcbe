// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/AgentAccess.h"
#include "Requests/Call.h"
#include "Support/Json.h"
#include "Support/Result.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::server {

/// An agent's request being handled: its call's caller is the agent's user.
struct AgentCall {
    Call &call;
    const AgentAccess &access;
};

/// A JSON object, or a sentence that tells the agent what to do instead.
using ToolAnswer = Result<std::string, std::string>;

/// Something that an agent can have done. Made once; any thread.
struct AgentTool {
    std::string_view name;
    std::string_view title;
    /// For the agent's model: what it gives and when to use it.
    std::string_view description;
    /// One that reads changes nothing at all.
    Lane lane = Lane::reading;
    /// Whether a second call with the same arguments does nothing more.
    bool isIdempotent = true;
    /// JSON schemas of the arguments and of the answer.
    std::string inputSchema;
    std::string outputSchema;
    /// Takes an object; changes nothing when it answers a sentence.
    std::function<ToolAnswer(AgentCall &, const RawJson &arguments)> run;
};

/// All there are, in the order in which agents see them.
const std::vector<AgentTool> &agentTools();
/// Null for a name that none has.
const AgentTool *findAgentTool(std::string_view name);

// Each area's file makes its own.
void addCatalogTools(std::vector<AgentTool> &tools);
void addEntryTools(std::vector<AgentTool> &tools);
void addProposalTools(std::vector<AgentTool> &tools);

} // namespace orvane::server
