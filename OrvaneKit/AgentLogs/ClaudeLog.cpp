// SPDX-License-Identifier: GPL-3.0-or-later
// The lines of Claude Code. Nearly all of them are an agent's work, of which a few short texts are wanted;
// those are found without reading the rest, and what stands behind the last of them is not looked at.
#include "AgentLogs/AgentLogParser.h"
#include "AgentLogs/AgentPrompts.h"
#include "AgentLogs/JsonBytes.h"
#include "AgentLogs/LogRecords.h"
#include "AgentLogs/SessionTitle.h"
#include "Support/DateText.h"

#include <algorithm>

namespace orvane {

namespace {

using jsonbytes::ListWalk;
using jsonbytes::ObjectWalk;

constexpr std::string_view claudeKeyPrefix = "claude:";

enum class LineKind { unknown, assistant, user, attachment, title, uninteresting };

LineKind lineKind(std::string_view type)
{
    if (type == "assistant")
        return LineKind::assistant;
    if (type == "user")
        return LineKind::user;
    if (type == "attachment")
        return LineKind::attachment;
    if (type == "custom-title" || type == "ai-title")
        return LineKind::title;
    return LineKind::uninteresting;
}

/// What the quick look finds.
struct ClaudeGlance {
    enum Seen : unsigned {
        typeSeen = 1,
        messageSeen = 2,
        dateSeen = 4,
        sessionSeen = 8,
        sidechainSeen = 16,
        folderSeen = 32,
        branchSeen = 64,
        attachmentSeen = 128
    };
    /// Of what tells of work.
    static constexpr unsigned everything = 127;

    LineKind kind = LineKind::unknown;
    std::string_view timestamp, sessionId, folder, branch;
    bool isSidechain = false;
    bool isQueuedCommand = false;
    bool hasText = false;
    bool hasToolResults = false;
    /// Where a text that matters has escapes, nothing here counts.
    bool hasEscapes = false;
    ToolCalls calls;
    unsigned seen = 0;
};

void glanceAtText(ObjectWalk &walk, std::string_view &into, ClaudeGlance &glance, ClaudeGlance::Seen seen)
{
    into = walk.plainText(glance.hasEscapes);
    glance.seen |= seen;
}

/// A block of a message's content; gives its end.
const char *glanceAtBlock(const char *at, const char *end, ClaudeGlance &glance)
{
    ObjectWalk block(at, end);
    std::string_view type;
    std::string_view name;
    bool hasText = false;
    while (block.next()) {
        if (block.name() == "type")
            type = block.plainText(glance.hasEscapes);
        else if (block.name() == "name")
            name = block.plainText(glance.hasEscapes);
        else if (block.name() == "text")
            hasText = !block.text().value_or(std::string_view{}).empty();
        const bool isCall = type == "tool_use" || type == "server_tool_use";
        if (isCall && name.data() != nullptr) {
            glance.calls.add(toolCall(name));
            return block.finish();
        }
        if (type == "tool_result" || type == "thinking")
            break;
    }
    glance.hasText |= hasText && type == "text";
    glance.hasToolResults |= type == "tool_result";
    if (type == "tool_use" || type == "server_tool_use")
        glance.calls.add(toolCall(name));
    return block.finish();
}

void glanceAtMessage(ObjectWalk &line, ClaudeGlance &glance)
{
    ObjectWalk message(line.value(), line.limit());
    while (message.next()) {
        if (message.name() != "content")
            continue;
        if (message.first() == '[') {
            ListWalk blocks(message.value(), message.limit());
            while (blocks.next())
                blocks.taken(glanceAtBlock(blocks.object(), message.limit(), glance));
            message.taken(blocks.end());
        } else {
            glance.hasText = !message.text().value_or(std::string_view{}).empty();
        }
        break;
    }
    glance.seen |= ClaudeGlance::messageSeen;
    line.taken(message.finish());
}

void glanceAtAttachment(ObjectWalk &line, ClaudeGlance &glance)
{
    ObjectWalk attachment(line.value(), line.limit());
    while (attachment.next()) {
        if (attachment.name() == "type") {
            glance.isQueuedCommand = attachment.plainText(glance.hasEscapes) == "queued_command";
            break;
        }
    }
    glance.seen |= ClaudeGlance::attachmentSeen;
    line.taken(attachment.finish());
}

void glanceAtMember(ObjectWalk &line, ClaudeGlance &glance)
{
    const std::string_view name = line.name();
    switch (name.size()) {
    case 3:
        if (name == "cwd") {
            // Some systems' paths have escapes throughout.
            glance.folder = line.text().value_or(std::string_view{});
            glance.seen |= ClaudeGlance::folderSeen;
        }
        break;
    case 4:
        if (name == "type") {
            glance.kind = lineKind(line.plainText(glance.hasEscapes));
            glance.seen |= ClaudeGlance::typeSeen;
        }
        break;
    case 7:
        if (name == "message" && line.first() == '{')
            glanceAtMessage(line, glance);
        break;
    case 9:
        if (name == "timestamp")
            glanceAtText(line, glance.timestamp, glance, ClaudeGlance::dateSeen);
        else if (name == "sessionId")
            glanceAtText(line, glance.sessionId, glance, ClaudeGlance::sessionSeen);
        else if (name == "gitBranch")
            glanceAtText(line, glance.branch, glance, ClaudeGlance::branchSeen);
        break;
    case 10:
        if (name == "attachment" && line.first() == '{')
            glanceAtAttachment(line, glance);
        break;
    case 11:
        if (name == "isSidechain") {
            glance.isSidechain = line.isTrue();
            glance.seen |= ClaudeGlance::sidechainSeen;
        }
        break;
    default:
        break;
    }
}

/// Whether nothing that may still come can change what the line means.
bool isEnough(const ClaudeGlance &glance)
{
    const auto hasSeen = [&](unsigned what) { return (glance.seen & what) == what; };
    if (glance.hasEscapes)
        return true;
    switch (glance.kind) {
    case LineKind::assistant:
        return hasSeen(ClaudeGlance::everything);
    case LineKind::user:
        return hasSeen(ClaudeGlance::everything) || (hasSeen(ClaudeGlance::messageSeen) && glance.hasText);
    case LineKind::attachment:
        return hasSeen(ClaudeGlance::attachmentSeen);
    case LineKind::unknown:
        return false;
    case LineKind::title:
    case LineKind::uninteresting:
        return true;
    }
    return true;
}

/// Whether a text can be kept as it stands there. What it is made of otherwise the full look sees, and
/// refuses what is no UTF-8.
bool isPlain(std::string_view raw)
{
    return std::ranges::all_of(raw, [](char c) { return c >= ' ' && c <= '~' && c != '\\'; });
}

/// Whether a line tells nothing new of the session's place.
bool isPlaced(const AgentSession &session, const ClaudeGlance &glance)
{
    return session.id.size() == claudeKeyPrefix.size() + glance.sessionId.size() &&
           session.id.ends_with(glance.sessionId) && session.cwd == glance.folder &&
           !session.branches.empty() && session.branches.back() == glance.branch;
}

} // namespace

void AgentLogParser::readClaude(std::string_view line)
{
    if (!m_readsQuickly || !readClaudeQuickly(line))
        readClaudeFully(line);
}

/// Whether the quick look was enough.
bool AgentLogParser::readClaudeQuickly(std::string_view line)
{
    ObjectWalk walk(line);
    ClaudeGlance glance;
    while (!isEnough(glance)) {
        if (!walk.next()) {
            // Broken lines and glued ones are for the full look, which refuses them.
            const char *end = walk.isBroken() ? nullptr : walk.finish();
            if (end == nullptr ||
                line.find_first_not_of(" \t\r", static_cast<std::size_t>(end - line.data())) !=
                    std::string_view::npos)
                return false;
            break;
        }
        glanceAtMember(walk, glance);
    }
    if (glance.hasEscapes || walk.isBroken())
        return false;
    const bool isResult = glance.kind == LineKind::user && glance.hasToolResults && !glance.hasText;
    if (glance.kind != LineKind::assistant && !isResult)
        return glance.kind == LineKind::uninteresting || glance.kind == LineKind::unknown ||
               (glance.kind == LineKind::attachment && !glance.isQueuedCommand);
    std::string folder;
    if (glance.folder.contains('\\')) {
        auto unescaped = jsonbytes::unescaped(glance.folder);
        if (!unescaped)
            return false;
        folder = std::move(*unescaped);
        glance.folder = folder;
    }
    const bool isKnown = m_last != nullptr && isPlaced(*m_last, glance);
    if (!isKnown && !(isPlain(glance.sessionId) && isPlain(glance.folder) && isPlain(glance.branch)))
        return false;
    const auto date = instantFromIso8601(glance.timestamp);
    if (!date)
        return true;
    AgentSession *session =
        glance.sessionId.empty() ? current() : &this->session(claudeKeyPrefix, glance.sessionId);
    if (session == nullptr)
        return true;
    if (!glance.isSidechain)
        placeSession(*session, glance.folder, glance.branch);
    work(*session, *date, glance.calls);
    return true;
}

namespace {

ToolCalls callsOf(const logrecords::Content &content)
{
    ToolCalls calls;
    for (const std::string &name : content.calls)
        calls.add(toolCall(name));
    return calls;
}

std::string queuedText(const logrecords::Record &record)
{
    const auto attachment = logrecords::inside<logrecords::Attachment>(record.attachment);
    if (logrecords::text(attachment.type) != "queued_command" ||
        logrecords::text(attachment.commandMode) != "prompt")
        return {};
    return logrecords::content(attachment.prompt).text;
}

} // namespace

void AgentLogParser::readClaudeFully(std::string_view line)
{
    using namespace logrecords;
    const auto record = logrecords::read<Record>(line);
    if (!record)
        return;
    const LineKind kind = lineKind(textOr(record->type));
    const std::string id = textOr(record->sessionId);
    if (kind == LineKind::title) {
        const auto custom = text(record->customTitle);
        const std::string title = sessiontitle::of(custom ? *custom : textOr(record->aiTitle));
        if (id.empty() || title.empty())
            return;
        AgentSession &titled = session(claudeKeyPrefix, id);
        if (custom)
            m_state.customTitles[titled.id] = title;
        else
            titled.title = title;
        m_state.titleFinished = true;
        return;
    }
    const auto date = instantFromIso8601(textOr(record->timestamp));
    if (!date || (kind != LineKind::user && kind != LineKind::assistant && kind != LineKind::attachment))
        return;
    const bool isQueued = kind == LineKind::attachment;
    Content said = isQueued ? Content{.text = queuedText(*record), .calls = {}}
                            : content(inside<Message>(record->message).content);
    if ((isQueued && said.text.empty()) ||
        (kind != LineKind::assistant && !said.text.empty() &&
         (isTrue(record->isCompactSummary) || agentprompts::isNothing(said.text))))
        return;
    AgentSession *session = id.empty() ? current() : &this->session(claudeKeyPrefix, id);
    if (session == nullptr)
        return;
    const bool isSidechain = isTrue(record->isSidechain);
    if (!isSidechain)
        placeSession(*session, textOr(record->cwd), textOr(record->gitBranch));
    const bool isTyped = !isSidechain && !isTrue(record->isMeta) && text(record->promptSource) != "system";
    if (kind == LineKind::assistant || (kind == LineKind::user && said.hasToolResults && said.text.empty()))
        work(*session, *date, callsOf(said));
    else if (isTyped && isQueued)
        queuedPrompt(*session, *date, said.text);
    else if (isTyped && !said.text.empty() && !wasQueued(said.text))
        prompt(*session, *date, said.text);
}

} // namespace orvane
