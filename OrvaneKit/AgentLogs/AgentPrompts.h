// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

/// Which texts in the agents' logs nobody typed, though they stand where prompts stand. What is not listed
/// here was typed: slash commands, shell lines ("<bash-input>") and an accepted plan among them.
///
// clang-format off
/// | agent       | told by                                             | what it is             | counts as |
/// |-------------|-----------------------------------------------------|------------------------|-----------|
/// | Claude Code | `isCompactSummary`                                  | summary of the session | nothing   |
/// | Claude Code | text: "[Request interrupted by user"                | the agent was stopped  | nothing   |
/// | Claude Code | text: "<local-command-stdout>", "<…-stderr>"        | a command's output     | nothing   |
/// | Claude Code | text: "<bash-stdout>"                               | a shell line's output  | nothing   |
/// | Claude Code | text: "<task-notification>"                         | a task in the back     | nothing   |
/// | Claude Code | `isMeta`, `promptSource` "system", `isSidechain`    | made by the agent      | no prompt |
/// | Codex       | any prompt in a sub-agent's file                    | its agent's order      | work      |
/// | Copilot     | `isAutopilotContinuation`, `agentId`                | the agent goes on      | work      |
/// | Copilot     | `source` "skill-…", "agent-…"                       | a skill's text         | work      |
/// | Copilot     | text: "<system_notification>"                       | a notice               | work      |
// clang-format on
namespace orvane::agentprompts {

/// Claude Code: a text that gives no fact at all.
bool isNothing(std::string_view text);

/// Copilot: by its `source` and its text.
bool isAgentsWork(std::string_view source, std::string_view text);

} // namespace orvane::agentprompts
