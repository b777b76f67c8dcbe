// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentLogs/AgentSession.h"
#include "Repositories/ActivityRepository.h"
#include "Time/UserTime.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orvane {

/// A stretch in which the user attended to a repository: from a prompt up to the next, 15 minutes at most.
struct AttentionSegment {
    SharedRepository repository;
    InstantInterval range;
    std::vector<std::string> sessionIDs; ///< the sessions whose prompts fall in it
    std::vector<Instant> prompts;
    std::vector<std::string> branches;
};

/// A stretch in which a session's agent was busy. A single moment of work is a run without length.
struct AgentRun {
    std::string sessionID;
    AgentSource source = AgentSource::claude;
    SharedRepository repository;
    InstantInterval range;
};

/// The attention that one repository had in a focus block.
struct FocusShare {
    SharedRepository repository;
    double duration = 0; ///< seconds
    std::vector<std::string> sessionIDs;
};

/// Attention without a gap of more than 15 minutes, whatever it went to.
struct FocusBlock {
    InstantInterval range;
    std::vector<FocusShare> shares; ///< in the order in which the repositories were first attended to
    std::int64_t switches = 0;      ///< how often attention moved from one repository to another
};

/// Seconds by the repository's key. What has no length adds nothing, not even a key.
struct ActivityTotals {
    std::map<std::string, double> attention;
    std::map<std::string, double> agent;
};

/// A repository that the user does not want to see, and how many of its sessions touched the day.
struct IgnoredActivity {
    std::string key;
    std::string name;
    std::int64_t sessions = 0;
};

/// What the agents' logs tell of one day in the user's time zone. A value; any thread.
struct ActivityDay {
    DayKey day;
    std::vector<AttentionSegment> attention; ///< in time order
    std::vector<FocusBlock> blocks;          ///< in time order
    std::vector<AgentRun> runs;              ///< by start, then session
    std::vector<AgentSession> sessions; ///< those with something in this day, by their first event; whole
    ActivityTotals totals;
    std::vector<InstantInterval> parallel; ///< where agents of more than one session were busy at once
    std::vector<IgnoredActivity> ignored;  ///< by name
};

} // namespace orvane
