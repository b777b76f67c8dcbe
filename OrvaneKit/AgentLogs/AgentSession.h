// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentLogs/AgentEvent.h"
#include "AgentLogs/AgentSource.h"

#include <string>
#include <vector>

namespace orvane {

/// What is known of one session with an agent, without a word of what was said in it.
///
/// As JSON the events are two lists of dates: `dates` (the prompts) and `touches` (the moments of work).
struct AgentSession {
    std::string id; ///< the agent's own session id behind the agent's name: "codex:019d7e30-…"
    AgentSource source = AgentSource::claude;
    std::string parentID; ///< the id of the session that this one works for; empty for a session of its own
    std::string cwd;      ///< the working folder; empty when the log names none
    std::string title;
    std::vector<std::string> branches; ///< git branches in the order first seen
    std::vector<AgentEvent> events;    ///< in time order, each once

    bool operator==(const AgentSession &) const = default;
};

} // namespace orvane
