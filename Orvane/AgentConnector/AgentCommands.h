// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace orvane {

/// The agents that can be told of the server through their own command.
enum class CodingAgent { claudeCode, codex };

inline constexpr std::array codingAgents{CodingAgent::claudeCode, CodingAgent::codex};

/// The agent's command: "claude".
std::string toolOf(CodingAgent agent);
/// As people call it: "Claude Code".
std::string displayNameOf(CodingAgent agent);

/// How a program is made to believe that it has a terminal, by the `script` that is installed.
enum class TerminalForm { none, bsd, utilLinux };

/// The name that agents know the server by.
inline constexpr std::string_view agentServerName = "orvane";
/// Where a server answers agents, by its address without a slash at the end.
std::string agentEndpoint(const std::string &serverAddress);

/// An argument as any of the shells takes it for one word.
std::string quotedArgument(std::string_view argument);

// What people can type themselves.
std::string addCommand(CodingAgent agent, const std::string &endpoint);
std::string removeCommand(CodingAgent agent);

/// The agent's own sign-in, which opens the browser only where it sees a terminal.
std::string signInCommand(CodingAgent agent, TerminalForm form);
/// The text for a shell that ends with 127, saying nothing, where there is no such tool.
std::string guardedCommand(CodingAgent agent, const std::string &command);

} // namespace orvane
