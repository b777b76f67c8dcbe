// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

namespace orvane::server {

/// Whose a connection to the hub is.
struct HubGuest {
    /// What the client calls its connection by in its requests; no secret.
    std::string connectionId;
    std::string userId;
    std::string sessionId;
    /// Whether the session was shown with a proof, which some are worth nothing without; see ProofGate.
    bool isProved = false;

    bool operator==(const HubGuest &) const = default;
};

/// The connections that were negotiated and not opened yet. Each has a secret of its own, the ticket: good
/// once, for thirty seconds, for the session that it was given to. Kept in memory alone. Any thread.
class HubTickets {
public:
    struct Ticket {
        std::string connectionId;
        std::string secret;
    };

    /// A user who has many unused tickets already loses the oldest.
    Ticket issue(const std::string &userId, const std::string &sessionId, Instant now);
    /// The identifier of the connection that the ticket is for. Nothing for one that is unknown, used, too
    /// old or another session's.
    std::optional<std::string> redeem(const std::string &secret, const std::string &userId,
                                      const std::string &sessionId, Instant now);

private:
    struct Issued {
        std::string digest;
        std::string connectionId;
        std::string sessionId;
        Instant expiresAt;
    };
    void forgetOld(Instant now);

    std::mutex m_lock;
    /// By user, the oldest first.
    std::unordered_map<std::string, std::deque<Issued>> m_issued;
};

} // namespace orvane::server
