// SPDX-License-Identifier: GPL-3.0-or-later
// The lines of Codex: a date, a type and a payload. A file is one session's, which its first line names.
#include "AgentLogs/AgentLogParser.h"
#include "AgentLogs/JsonBytes.h"
#include "AgentLogs/LogRecords.h"
#include "Support/DateText.h"

namespace orvane {

namespace {

using jsonbytes::ObjectWalk;

constexpr std::string_view codexKeyPrefix = "codex:";

/// All lines that repeat the parent's are stamped with the moment of the fork.
constexpr std::chrono::seconds forkLength{1};

struct CodexGlance {
    std::string_view timestamp, type, payloadType, role, tool, space;
    bool hasPayload = false;
    /// Where a text that matters has escapes, nothing here counts.
    bool hasEscapes = false;
};

/// What comes back from a tool is nothing that the agent does; nor is what it only thinks.
bool isSilent(std::string_view payloadType)
{
    return payloadType.ends_with("_output") || payloadType == "reasoning";
}

void glanceAtPayload(ObjectWalk &line, CodexGlance &glance)
{
    ObjectWalk payload(line.value(), line.limit());
    while (payload.next()) {
        const std::string_view name = payload.name();
        if (name == "type")
            glance.payloadType = payload.plainText(glance.hasEscapes);
        else if (name == "role")
            glance.role = payload.plainText(glance.hasEscapes);
        else if (name == "name")
            glance.tool = payload.plainText(glance.hasEscapes);
        else if (name == "namespace")
            glance.space = payload.plainText(glance.hasEscapes);
        // Of a message only the role matters.
        if (isSilent(glance.payloadType) || (glance.payloadType == "message" && !glance.role.empty()))
            break;
    }
    glance.hasPayload = true;
    line.taken(payload.finish());
}

bool isInteresting(std::string_view type)
{
    return type == "session_meta" || type == "event_msg" || type == "response_item";
}

bool isSubagent(const logrecords::Field &source)
{
    using namespace logrecords;
    if (const auto plain = text(source))
        return *plain == "subagent" || *plain == "review";
    return inside<Source>(source).subagent.has_value();
}

std::string parentOf(const logrecords::Payload &payload)
{
    using namespace logrecords;
    const auto source = inside<Source>(payload.source);
    const auto spawn = inside<Spawn>(inside<Subagent>(source.subagent).thread_spawn);
    std::string parent = textOr(spawn.parent_thread_id);
    if (parent.empty() && isSubagent(payload.source))
        parent = textOr(payload.parent_thread_id);
    return parent.empty() ? parent : std::string(codexKeyPrefix) + parent;
}

ToolCalls callsOf(const logrecords::Payload &payload, const std::string &kind)
{
    using namespace logrecords;
    const std::string name = textOr(payload.name);
    ToolCalls calls;
    if (name == "exec")
        calls.addCode(textOr(payload.input));
    else
        calls.add(toolCall(name.empty() ? kind : name, textOr(payload.namespace_)));
    return calls;
}

} // namespace

void AgentLogParser::readCodex(std::string_view line)
{
    if (!m_readsQuickly || !readCodexQuickly(line))
        readCodexFully(line);
}

/// Whether the line still belongs to the history of the session that this one was forked from. A task whose
/// id is no older than the session's own ends it: such ids begin with the time at which they were made.
bool AgentLogParser::isPassingOver(Instant date, std::string_view taskStarted)
{
    if (!m_state.forkedAt)
        return false;
    const std::string_view own = std::string_view(m_state.currentID).substr(codexKeyPrefix.size());
    // An id of another form says nothing of its time.
    const bool isOwnTask = taskStarted.size() == own.size() && taskStarted >= own;
    if (date > *m_state.forkedAt + forkLength || isOwnTask)
        m_state.forkedAt.reset();
    return m_state.forkedAt.has_value();
}

bool AgentLogParser::readCodexQuickly(std::string_view line)
{
    ObjectWalk walk(line);
    CodexGlance glance;
    while (walk.next()) {
        const std::string_view name = walk.name();
        if (name == "timestamp") {
            glance.timestamp = walk.plainText(glance.hasEscapes);
        } else if (name == "type") {
            glance.type = walk.plainText(glance.hasEscapes);
            if (!isInteresting(glance.type))
                return !glance.hasEscapes;
            if (glance.type == "session_meta")
                return false;
        } else if (name == "payload" && walk.first() == '{') {
            glanceAtPayload(walk, glance);
        }
        if (glance.hasPayload && !glance.type.empty() && !glance.timestamp.empty())
            break;
    }
    if (walk.isBroken() || glance.hasEscapes)
        return false;
    if (glance.type != "response_item")
        return glance.payloadType != "user_message" && glance.payloadType != "task_started";
    const bool isCall = glance.payloadType.ends_with("_call");
    if (isCall && glance.tool == "exec")
        return false;
    if (!isCall && (glance.role != "assistant" || isSilent(glance.payloadType)))
        return true;
    const auto date = instantFromIso8601(glance.timestamp);
    AgentSession *session = current();
    if (!date || session == nullptr || isPassingOver(*date))
        return true;
    ToolCalls calls;
    if (isCall)
        calls.add(toolCall(glance.tool.empty() ? glance.payloadType : glance.tool, glance.space));
    work(*session, *date, calls);
    return true;
}

void AgentLogParser::readCodexFully(std::string_view line)
{
    using namespace logrecords;
    const auto record = logrecords::read<Record>(line);
    if (!record)
        return;
    const std::string type = textOr(record->type);
    if (!isInteresting(type))
        return;
    const auto payload = inside<Payload>(record->payload);
    const auto date = instantFromIso8601(textOr(record->timestamp));
    if (type == "session_meta") {
        const std::string id = textOr(payload.id);
        const std::string key = std::string(codexKeyPrefix) + id;
        const bool isFirst = m_state.currentID.empty();
        if (id.empty() || (!isFirst && key != m_state.currentID)) {
            const bool hasBegun = m_state.turns.contains(m_state.currentID);
            if (!id.empty() && date && !hasBegun && !m_state.forkedAt)
                m_state.forkedAt = date;
            return;
        }
        AgentSession &session = this->session(codexKeyPrefix, id);
        placeSession(session, textOr(payload.cwd), textOr(inside<Git>(payload.git).branch));
        if (isFirst) {
            session.parentID = parentOf(payload);
            m_state.isSubagent = isSubagent(payload.source);
        }
        return;
    }
    AgentSession *session = current();
    const std::string kind = textOr(payload.type);
    const bool isEvent = type == "event_msg";
    const bool isTask = isEvent && kind == "task_started";
    const bool isPrompt = isEvent && kind == "user_message";
    const bool isCall = !isEvent && kind.ends_with("_call");
    const bool isAnswer = !isEvent && text(payload.role) == "assistant" && !isSilent(kind);
    if (!date || session == nullptr || !(isTask || isPrompt || isCall || isAnswer) ||
        isPassingOver(*date, isTask ? textOr(payload.turn_id) : std::string{}))
        return;
    if (isTask)
        beginTask(*session, *date);
    else if (isPrompt && !m_state.isSubagent)
        prompt(*session, *date, textOr(payload.message));
    else
        work(*session, *date, isCall ? callsOf(payload, kind) : ToolCalls{});
}

} // namespace orvane
