// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/AgentLogFormat.h"

namespace orvane {

namespace {

constexpr std::array formats{
    AgentLogFormat{.source = AgentSource::claude,
                   .label = "Claude Code",
                   .shortLabel = "Claude",
                   .folder = ".claude",
                   .fixtureFolder = "claude",
                   .logs = "projects",
                   .prefix = {},
                   .name = {},
                   .levels = {},
                   .grouping = AgentLogFormat::Grouping::projectSession,
                   .titleIndex = {}},
    AgentLogFormat{.source = AgentSource::codex,
                   .label = "Codex",
                   .shortLabel = "Codex",
                   .folder = ".codex",
                   .fixtureFolder = "codex",
                   .logs = "sessions",
                   .prefix = "rollout-",
                   .name = {},
                   .levels = {},
                   .titleIndex = "session_index.jsonl"},
    AgentLogFormat{.source = AgentSource::copilot,
                   .label = "GitHub Copilot CLI",
                   .shortLabel = "Copilot",
                   .folder = ".copilot",
                   .fixtureFolder = "copilot",
                   .logs = "session-state",
                   .prefix = {},
                   .name = "events.jsonl",
                   .levels = {1, 1},
                   .titleIndex = {}},
};

} // namespace

const AgentLogFormat &AgentLogFormat::of(AgentSource source)
{
    return formats[static_cast<std::size_t>(source)];
}

bool AgentLogFormat::isLog(std::string_view fileName) const
{
    if (!name.empty())
        return fileName == name;
    return fileName.starts_with(prefix) && fileName.ends_with(".jsonl");
}

} // namespace orvane
