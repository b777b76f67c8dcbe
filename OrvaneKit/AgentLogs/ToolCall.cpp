// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/ToolCall.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

/// The names under which agents know our connector; the second is its old one.
constexpr std::array<std::string_view, 2> ownServers{"orvane", "clock"};

bool isOwnServer(std::string_view server)
{
    return std::ranges::find(ownServers, server) != ownServers.end();
}

bool isNameByte(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

std::string_view nameAt(std::string_view text, std::size_t at)
{
    std::size_t end = at;
    while (end < text.size() && isNameByte(text[end]))
        ++end;
    return text.substr(at, end - at);
}

/// The server in "mcp__server__tool", or in "mcp__server" as a namespace; empty when the name has another
/// form.
std::string_view serverOf(std::string_view name)
{
    constexpr std::string_view mark = "mcp__";
    const auto found = name.find(mark);
    if (found == std::string_view::npos)
        return {};
    const std::string_view rest = nameAt(name, found + mark.size());
    return rest.substr(0, rest.find("__", 1));
}

std::size_t pastSpaces(std::string_view text, std::size_t at)
{
    while (at < text.size() && (text[at] == ' ' || (text[at] >= '\t' && text[at] <= '\r')))
        ++at;
    return at;
}

/// The tool named behind "tools" in code: tools.name or tools["name"]; empty when it is something else.
std::string_view calledTool(std::string_view code, std::size_t behindTools)
{
    std::size_t at = pastSpaces(code, behindTools);
    if (at >= code.size() || (code[at] != '.' && code[at] != '['))
        return {};
    const bool isIndexed = code[at] == '[';
    at = pastSpaces(code, at + 1);
    if (isIndexed) {
        if (at >= code.size() || std::string_view("\"'`").find(code[at]) == std::string_view::npos)
            return {};
        ++at;
    }
    return nameAt(code, at);
}

} // namespace

ToolCall toolCall(std::string_view name, std::string_view server)
{
    if (name == "ToolSearch" || name == "tool_search_call" || name == "report_intent")
        return ToolCall::neutral;
    const std::string_view named = serverOf(server);
    // Some agents write "server__tool".
    const std::string_view before = name.substr(0, name.find("__"));
    if (isOwnServer(server) || isOwnServer(named) || isOwnServer(serverOf(name)) ||
        (before.size() < name.size() && isOwnServer(before)))
        return ToolCall::own;
    return ToolCall::other;
}

void ToolCalls::addCode(std::string_view code)
{
    constexpr std::string_view tools = "tools";
    bool isAny = false;
    for (auto at = code.find(tools); at != std::string_view::npos; at = code.find(tools, at + tools.size())) {
        const std::string_view tool = calledTool(code, at + tools.size());
        if (tool.empty())
            continue;
        isAny = true;
        add(toolCall(tool));
    }
    if (!isAny)
        add(ToolCall::other);
}

} // namespace orvane
