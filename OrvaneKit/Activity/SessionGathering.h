// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentLogs/AgentSession.h"

#include <deque>
#include <map>
#include <string_view>
#include <vector>

namespace orvane {

/// Puts the sessions of many files together: one that several files tell of becomes one. What it was given is
/// borrowed and must outlive it.
class SessionGathering {
public:
    /// In the order of the files, since the first one's folder and title win.
    void add(const AgentSession &session) { m_parts[session.id].push_back(&session); }
    /// Every session once, by key; an event that two files tell of counts once. Valid as long as this is.
    std::vector<const AgentSession *> sessions();

private:
    std::map<std::string_view, std::vector<const AgentSession *>> m_parts;
    std::deque<AgentSession> m_merged;
};

} // namespace orvane
