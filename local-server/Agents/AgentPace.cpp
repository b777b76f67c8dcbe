// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentPace.h"

#include <algorithm>

namespace orvane::server {

namespace {

constexpr std::chrono::milliseconds perMessage{500};
constexpr std::chrono::milliseconds wholeBurst{perMessage * AgentPace::mostAtOnce};

} // namespace

std::optional<std::chrono::seconds> AgentPace::take(const std::string &grantId, int messages, Instant now)
{
    const std::lock_guard lock(m_lock);
    // Who asks for nothing is forgotten, so the map is as long as the list of agents at work.
    std::erase_if(m_full, [now](const auto &item) { return item.second <= now; });
    Instant &full = m_full.try_emplace(grantId, now).first->second;
    // A clock that was put back must not make anybody wait for longer than the burst lasts.
    full = std::min<Instant>(full, now + wholeBurst);
    const Instant after = full + perMessage * messages;
    if (after > now + wholeBurst)
        return std::chrono::ceil<std::chrono::seconds>(after - (now + wholeBurst));
    full = after;
    return std::nullopt;
}

} // namespace orvane::server
