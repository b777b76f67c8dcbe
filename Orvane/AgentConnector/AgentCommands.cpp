// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/AgentCommands.h"

#include <algorithm>

namespace orvane {

namespace {

bool isPlain(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("-_./:@%+=,").contains(c);
}

} // namespace

std::string toolOf(CodingAgent agent)
{
    return agent == CodingAgent::claudeCode ? "claude" : "codex";
}

std::string displayNameOf(CodingAgent agent)
{
    return agent == CodingAgent::claudeCode ? "Claude Code" : "Codex";
}

std::string agentEndpoint(const std::string &serverAddress)
{
    return serverAddress + (serverAddress.ends_with('/') ? "mcp" : "/mcp");
}

std::string quotedArgument(std::string_view argument)
{
    if (!argument.empty() && std::ranges::all_of(argument, isPlain))
        return std::string(argument);
    std::string quoted = "'";
    for (const char c : argument)
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + "'";
}

std::string addCommand(CodingAgent agent, const std::string &endpoint)
{
    const std::string name = quotedArgument(agentServerName);
    const std::string address = quotedArgument(endpoint);
    return agent == CodingAgent::claudeCode
               ? "claude mcp add --transport http --scope user " + name + " " + address
               : "codex mcp add " + name + " --url " + address;
}

std::string removeCommand(CodingAgent agent)
{
    const std::string scope = agent == CodingAgent::claudeCode ? "--scope user " : "";
    return toolOf(agent) + " mcp remove " + scope + quotedArgument(agentServerName);
}

std::string signInCommand(CodingAgent agent, TerminalForm form)
{
    std::string command = toolOf(agent) + " mcp login " + quotedArgument(agentServerName);
    switch (form) {
    case TerminalForm::bsd:
        return "script -q /dev/null " + command;
    case TerminalForm::utilLinux:
        return "script -qec " + quotedArgument(command) + " /dev/null";
    case TerminalForm::none:
        break;
    }
    return command;
}

std::string guardedCommand(CodingAgent agent, const std::string &command)
{
    return "command -v " + toolOf(agent) + " >/dev/null 2>&1 || exit 127; exec " + command;
}

} // namespace orvane
