// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/AgentTool.h"

#include <optional>
#include <string>

/// What stands inside the messages of MCP: the params of its requests, read, and their results, written as
/// JSON. Pure; any thread.
namespace orvane::server {

/// The version that an agent asks for in initialize.
std::optional<std::string> readAskedVersion(const std::optional<RawJson> &params);

struct ToolCall {
    std::string name;
    std::optional<RawJson> arguments;
};
/// Nothing without a name, and for arguments that are no object.
std::optional<ToolCall> readToolCall(const std::optional<RawJson> &params);

std::string welcome(std::string version, std::string instructions);
/// Without those that propose for an agent that may not.
std::string toolList(bool mayPropose);
/// What could not be done is told inside the result, where the agent's model reads it.
std::string toolResult(const ToolAnswer &answer);

} // namespace orvane::server
