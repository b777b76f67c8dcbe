// SPDX-License-Identifier: GPL-3.0-or-later
// The lines of GitHub Copilot CLI: events of one session, which the first of them names.
#include "AgentLogs/AgentLogParser.h"
#include "AgentLogs/AgentPrompts.h"
#include "AgentLogs/JsonBytes.h"
#include "AgentLogs/LogRecords.h"
#include "Support/DateText.h"

namespace orvane {

namespace {

using jsonbytes::ObjectWalk;

constexpr std::string_view copilotKeyPrefix = "copilot:";
constexpr std::string_view callType = "tool.execution_start";

bool isWork(std::string_view type)
{
    return type.starts_with("assistant.") || type.starts_with("tool.") || type.starts_with("subagent.");
}

bool isPlace(std::string_view type)
{
    return type == "session.start" || type == "session.resume" || type == "session.context_changed";
}

} // namespace

void AgentLogParser::readCopilot(std::string_view line)
{
    if (!m_readsQuickly || !readCopilotQuickly(line))
        readCopilotFully(line);
}

bool AgentLogParser::readCopilotQuickly(std::string_view line)
{
    ObjectWalk walk(line);
    std::string_view type;
    std::string_view timestamp;
    bool hasEscapes = false;
    while (walk.next()) {
        if (walk.name() == "type") {
            type = walk.plainText(hasEscapes);
            if (hasEscapes || isPlace(type) || type == "user.message" || type == callType)
                return false;
            if (!isWork(type))
                return true;
        } else if (walk.name() == "timestamp") {
            timestamp = walk.plainText(hasEscapes);
        }
        if (!type.empty() && !timestamp.empty())
            break;
    }
    if (walk.isBroken() || hasEscapes)
        return false;
    const auto date = instantFromIso8601(timestamp);
    AgentSession *session = current();
    if (!type.empty() && date && session != nullptr)
        work(*session, *date);
    return true;
}

void AgentLogParser::readCopilotFully(std::string_view line)
{
    using namespace logrecords;
    const auto event = logrecords::read<CopilotEvent>(line);
    if (!event)
        return;
    const std::string type = textOr(event->type);
    const auto data = inside<CopilotData>(event->data);
    if (isPlace(type)) {
        const std::string id = textOr(data.sessionId);
        AgentSession *session = id.empty() ? current() : &this->session(copilotKeyPrefix, id);
        const auto context = inside<CopilotContext>(data.context);
        if (session != nullptr)
            placeSession(*session, textOr(context.cwd, textOr(data.directory)),
                         textOr(context.branch, textOr(data.branch)));
        return;
    }
    const auto date = instantFromIso8601(textOr(event->timestamp));
    AgentSession *session = current();
    if (!date || session == nullptr)
        return;
    if (type == "user.message") {
        const std::string content = textOr(data.content);
        const bool isAgents = isTrue(data.isAutopilotContinuation) || !textOr(event->agentId).empty() ||
                              agentprompts::isAgentsWork(textOr(data.source), content);
        if (isAgents)
            work(*session, *date);
        else
            prompt(*session, *date, content);
    } else if (isWork(type)) {
        ToolCalls calls;
        if (type == callType)
            calls.add(toolCall(textOr(data.toolName), textOr(data.mcpServerName)));
        work(*session, *date, calls);
    }
}

} // namespace orvane
