// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::server {

/// How fast an agent may ask: 120 messages at once, and two more each second. A turn that reads some days and
/// proposes a hundred entries takes about ten, so this is far above what work needs; it is there for the
/// agent that has gone astray and asks in a circle, which would keep the user's own requests waiting.
/// Kept in memory, by grant; any thread.
class AgentPace {
public:
    static constexpr int mostAtOnce = 120;

    /// Counts so many messages. How long to wait when they are too many; then nothing is counted.
    std::optional<std::chrono::seconds> take(const std::string &grantId, int messages, Instant now);

private:
    /// When all that was used will have come back.
    std::map<std::string, Instant> m_full;
    std::mutex m_lock;
};

} // namespace orvane::server
