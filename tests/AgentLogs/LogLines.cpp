// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/LogLines.h"

#include "AgentLogs/AgentLogState.h"
#include "Support/DateText.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace orvane::testlogs {

Instant moment(int second)
{
    using namespace std::chrono;
    return sys_days{2026y / 4 / 30} + hours{10} + seconds{second};
}

namespace {

std::string joined(std::initializer_list<std::string_view> parts)
{
    std::string out;
    for (const std::string_view part : parts)
        out += part;
    return out;
}

} // namespace

std::string claude(std::string_view type, int second, std::string_view content, std::string_view more)
{
    return joined(
        {R"({"parentUuid":null,"isSidechain":false,"cwd":"/w","sessionId":"s","gitBranch":"main","type":")",
         type, R"(","message":{"role":"user","content":)", content, R"(},"uuid":"u","timestamp":")",
         iso8601Text(moment(second)), "\"", more, "}"});
}

std::string claudeCall(int second, std::string_view tool)
{
    return claude("assistant", second,
                  joined({R"([{"type":"tool_use","id":"t","name":")", tool, R"(","input":{}}])"}));
}

std::string codex(std::string_view type, int second, std::string_view payload)
{
    return joined({R"({"timestamp":")", iso8601Text(moment(second)), R"(","type":")", type,
                   R"(","payload":{)", payload, "}}"});
}

std::string codexStart(std::string_view id, std::string_view more, int second)
{
    return codex("session_meta", second, joined({R"("id":")", id, "\"", more}));
}

std::string copilot(std::string_view type, int second, std::string_view data, std::string_view more)
{
    return joined({R"({"type":")", type, R"(","data":{)", data, R"(},"id":"e","timestamp":")",
                   iso8601Text(moment(second)), R"(","parentId":null)", more, "}"});
}

std::string with(std::string line, std::string_view from, std::string_view to)
{
    const auto at = line.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return line.replace(at, from.size(), to);
}

std::string told(const std::vector<AgentSession> &sessions)
{
    std::string out;
    for (const AgentSession &session : sessions) {
        out += session.id;
        for (const std::string &part : {session.cwd, session.title, session.parentID})
            out += part.empty() ? "" : " | " + part;
        for (const std::string &branch : session.branches)
            out += " #" + branch;
        out += " |";
        for (const AgentEvent &event : session.events)
            out += (event.isTouch ? " W" : " P") +
                   std::to_string(std::chrono::round<std::chrono::seconds>(event.date - moment(0)).count());
        out += "\n";
    }
    return out;
}

std::string told(AgentSource source, const std::vector<std::string> &lines)
{
    AgentLogParser quick(source);
    AgentLogParser full(source, false);
    for (const std::string &line : lines) {
        quick.read(line);
        full.read(line);
    }
    EXPECT_EQ(encodedParserState(quick.state()), encodedParserState(full.state()));
    return told(quick.sessions());
}

std::string events(AgentSource source, const std::vector<std::string> &lines)
{
    std::string out;
    const std::string all = told(source, lines);
    for (std::size_t at = 0; at < all.size(); at = all.find('\n', at) + 1) {
        const auto from = all.rfind('|', all.find('\n', at)) + 1;
        out += all.substr(from, all.find('\n', at) - from);
    }
    return out;
}

std::string LineMaker::line(AgentSource source)
{
    m_second += below(40) - 4;
    switch (source) {
    case AgentSource::claude:
        return claudeLine();
    case AgentSource::codex:
        return codexLine();
    case AgentSource::copilot:
        return copilotLine();
    }
    return {};
}

std::string LineMaker::space()
{
    static constexpr std::array<std::string_view, 12> spaces{"", "", "",  "",   "",   "",
                                                             "", "", " ", "  ", "\t", "\r"};
    return std::string(spaces[static_cast<std::size_t>(below(spaces.size()))]);
}

std::string LineMaker::text(std::string_view plain)
{
    std::string out = "\"";
    const bool hasEscapes = isOneIn(20);
    for (const char c : plain) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            out += std::string("\\") + c;
        else if (c == '\n')
            out += "\\n";
        else if (hasEscapes && byte < 0x80 && isOneIn(4))
            out += std::string("\\u00") + "0123456789abcdef"[byte >> 4U] + "0123456789ABCDEF"[byte & 15U];
        else
            out += c;
    }
    return out + '"';
}

std::string LineMaker::anyText(const std::vector<std::string_view> &choices)
{
    return text(choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))]);
}

std::string LineMaker::timestamp()
{
    return isOneIn(30) ? anyText({"[trimmed]", "2026-04-30T10:00:07Z", "2026-04-30T12:00:09.5+02:00", ""})
                       : text(iso8601Text(moment(m_second)));
}

std::string LineMaker::wrongValue()
{
    static constexpr std::array<std::string_view, 9> values{"null",
                                                            "true",
                                                            "false",
                                                            "0",
                                                            "-1.5e300",
                                                            "[]",
                                                            "{}",
                                                            R"([{"type":"tool_use"},"]",[1]])",
                                                            R"({"type":"user"})"};
    return std::string(values[static_cast<std::size_t>(below(values.size()))]);
}

std::string LineMaker::object(Members members)
{
    if (isOneIn(3))
        std::ranges::shuffle(members, m_random);
    std::string out = "{" + space();
    bool isFirst = true;
    for (const auto &[name, value] : members) {
        if (isOneIn(25))
            continue;
        out += std::exchange(isFirst, false) ? "" : "," + space();
        out += "\"" + std::string(name) + "\"" + space() + ":" + space();
        out += (isOneIn(25) ? wrongValue() : value) + space();
    }
    return out + "}";
}

std::string LineMaker::list(const std::vector<std::string> &items)
{
    std::string out = "[";
    for (const std::string &item : items)
        out += (out.size() > 1 ? "," : "") + space() + item + space();
    return out + "]";
}

std::string LineMaker::block()
{
    switch (below(6)) {
    case 0:
        return object(
            {{"type", text("text")}, {"text", anyText({"Mend the roof", "", "<bash-stdout>x", "/help"})}});
    case 1:
        return object(
            {{"type", text("thinking")}, {"thinking", text("} ] \" \\")}, {"signature", text("x")}});
    case 2:
        return object({{"type", anyText({"tool_use", "server_tool_use"})},
                       {"id", text("toolu_1")},
                       {"name", anyText({"Bash", "ToolSearch", "mcp__orvane__list", "mcp__orvane__add"})},
                       {"input", object({{"name", text("mcp__orvane__x")}, {"type", text("text")}})}});
    case 3:
        return isOneIn(6) ? wrongValue() : object({{"type", text("image")}, {"text", text("no text")}});
    default:
        return object({{"tool_use_id", text("toolu_1")},
                       {"type", text("tool_result")},
                       {"content", list({block(), text("\"type\":\"text\"")})}});
    }
}

std::string LineMaker::claudeLine()
{
    const bool isList = !isOneIn(4);
    std::vector<std::string> blocks;
    for (int count = below(4); count > 0; --count)
        blocks.push_back(block());
    const std::string content =
        isList ? list(blocks)
               : anyText({"Mend the roof", "Yes", "", "[Request interrupted by user]", "<bash-input>ls",
                          "<local-command-stdout>x", "\xE2\x80\xA8 and \xF0\x9F\x8F\xA0", "try again"});
    Members members{
        {"parentUuid", text("p")},
        {"isSidechain", isOneIn(10) ? "true" : "false"},
        {"cwd", anyText({"/w", "/w", "/w/sub", "C:\\w", "C:\\\\w"})},
        {"sessionId", anyText({"s", "s", "s", "s", "t"})},
        {"gitBranch", anyText({"main", "main", "fix", "HEAD"})},
        {"type", anyText({"assistant", "assistant", "user", "user", "attachment", "system", "ai-title"})},
        {"message", object({{"role", text("user")}, {"content", content}, {"usage", wrongValue()}})},
        {"timestamp", timestamp()},
        {"toolUseResult", wrongValue()}};
    if (isOneIn(4))
        members.insert(members.begin() + 2,
                       {"attachment", object({{"type", anyText({"queued_command", "hook_success"})},
                                              {"prompt", anyText({"try again", "Yes"})},
                                              {"commandMode", text("prompt")}})});
    if (isOneIn(4))
        members.push_back({isOneIn(2) ? "isMeta" : "isCompactSummary", "true"});
    if (isOneIn(8))
        members.push_back({"promptSource", anyText({"system", "typed"})});
    if (isOneIn(8))
        members.push_back({isOneIn(2) ? "aiTitle" : "customTitle", anyText({"Roof", "House", " "})});
    return object(std::move(members));
}

std::string LineMaker::source()
{
    return isOneIn(2) ? anyText({"cli", "vscode", "review"})
                      : object({{"subagent",
                                 object({{"thread_spawn", object({{"parent_thread_id", text("0a")}})}})}});
}

std::string LineMaker::codexLine()
{
    const std::string type = anyText(
        {"response_item", "response_item", "response_item", "event_msg", "turn_context", "session_meta"});
    std::string payload = object({{"type", anyText({"message", "message", "function_call", "custom_tool_call",
                                                    "function_call_output", "web_search_call", "reasoning"})},
                                  {"role", anyText({"assistant", "assistant", "user", "developer"})},
                                  {"name", anyText({"exec", "shell", "mcp__orvane__add", "_list", ""})},
                                  {"namespace", anyText({"mcp__orvane", "collaboration", ""})},
                                  {"input", anyText({"tools.mcp__orvane__add({})", "tools['shell']", "1"})},
                                  {"content", list({block()})}});
    if (isOneIn(3))
        payload = object({{"type", anyText({"user_message", "task_started", "token_count"})},
                          {"message", anyText({"Mend the roof", "", "go on"})},
                          {"turn_id", anyText({"0a", "0c"})}});
    if (isOneIn(6) || m_second < 40)
        payload = object({{"id", anyText({"0b", "0b", "0b", "0a"})},
                          {"cwd", anyText({"/w", "/x"})},
                          {"source", source()},
                          {"git", object({{"branch", anyText({"main", "fix"})}})}});
    return object({{"timestamp", timestamp()}, {"type", type}, {"payload", payload}});
}

std::string LineMaker::copilotLine()
{
    return object(
        {{"type", anyText({"session.start", "session.resume", "session.context_changed", "user.message",
                           "assistant.message", "assistant.turn_end", "tool.execution_start",
                           "tool.execution_complete", "subagent.started", "system.message"})},
         {"data", object({{"sessionId", anyText({"a", "a", "a", "b"})},
                          {"context", object({{"cwd", text("/w")}, {"branch", anyText({"main", "fix"})}})},
                          {"content", anyText({"Mend the roof", "", "<system_notification>x"})},
                          {"source", anyText({"user", "user", "skill-roof", "agent-1"})},
                          {"isAutopilotContinuation", isOneIn(4) ? "true" : "false"},
                          {"toolName", anyText({"bash", "report_intent", "add"})},
                          {"mcpServerName", anyText({"orvane", "github", ""})}})},
         {"agentId", isOneIn(5) ? text("sub") : "null"},
         {"timestamp", timestamp()},
         {"parentId", "null"}});
}

} // namespace orvane::testlogs
