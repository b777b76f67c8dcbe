// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The lines of the agents' logs, as far as they are read in full. All members are optional: a line that
/// lacks one does not contribute it. Any thread.
namespace orvane::logrecords {

/// A value whose shape is not checked, so that one of an unexpected shape does not spoil its line.
struct Loose {
    RawJson value;

    /// What it says when it is a text.
    std::optional<std::string> text() const;
    bool isTrue() const { return value.text == "true"; }
};
using Field = std::optional<Loose>;

inline std::optional<std::string> text(const Field &field)
{
    return field ? field->text() : std::nullopt;
}
inline std::string textOr(const Field &field, std::string_view otherwise = {})
{
    return text(field).value_or(std::string(otherwise));
}
inline bool isTrue(const Field &field)
{
    return field && field->isTrue();
}

/// A line of Claude Code or Codex.
struct Record {
    Field type, timestamp, sessionId, cwd, gitBranch, isSidechain, isMeta, isCompactSummary, promptSource,
        customTitle, aiTitle, message, attachment, payload;
};

/// Claude Code: a part of a message's content.
struct Block {
    Field type, text, name;
};

/// Claude Code: `content` is a text or a list of Block.
struct Message {
    Field content;
};

/// Claude Code: what was queued while the agent worked.
struct Attachment {
    Field type, prompt, commandMode;
};

/// Codex. `source` is a text or an object with `subagent`.
struct Payload {
    Field id, cwd, parent_thread_id, type, role, message, git, source, name, namespace_, input, turn_id;
};
struct Git {
    Field branch;
};
struct Source {
    Field subagent;
};
struct Subagent {
    Field thread_spawn;
};
struct Spawn {
    Field parent_thread_id;
};

/// Codex: a row of the index of titles.
struct CodexIndexRow {
    Field id, thread_name;
};

struct CopilotContext {
    Field cwd, branch;
};
struct CopilotData {
    Field sessionId, context, content, source, isAutopilotContinuation, toolName, mcpServerName, directory,
        branch;
};
struct CopilotEvent {
    Field type, timestamp, agentId, data;
};

/// Reads a whole line. Nothing when it is not JSON or no object.
template <class T>
std::optional<T> read(std::string_view line);

/// Reads a member that holds an object; all of its members are absent when it does not.
template <class T>
T inside(const Field &field);

/// The texts that a content holds: itself, or those of its text blocks, a line feed between them.
struct Content {
    std::string text;
    bool hasToolResults = false;
    std::vector<std::string> calls; ///< names of the tools called
};
Content content(const Field &content);

} // namespace orvane::logrecords
