// SPDX-License-Identifier: GPL-3.0-or-later
#include "Activity/SessionGathering.h"

#include <algorithm>
#include <span>

namespace orvane {

namespace {

AgentSession merged(std::span<const AgentSession *const> parts)
{
    AgentSession whole = *parts.front();
    for (const AgentSession *part : parts.subspan(1)) {
        for (const auto text : {&AgentSession::parentID, &AgentSession::cwd, &AgentSession::title}) {
            if ((whole.*text).empty())
                whole.*text = part->*text;
        }
        for (const std::string &branch : part->branches) {
            if (std::ranges::find(whole.branches, branch) == whole.branches.end())
                whole.branches.push_back(branch);
        }
        whole.events.insert(whole.events.end(), part->events.begin(), part->events.end());
    }
    std::ranges::sort(whole.events);
    const auto twins = std::ranges::unique(whole.events);
    whole.events.erase(twins.begin(), twins.end());
    return whole;
}

} // namespace

std::vector<const AgentSession *> SessionGathering::sessions()
{
    std::vector<const AgentSession *> sessions;
    sessions.reserve(m_parts.size());
    for (const auto &[key, parts] : m_parts)
        sessions.push_back(parts.size() == 1 ? parts.front() : &m_merged.emplace_back(merged(parts)));
    return sessions;
}

} // namespace orvane
