// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::server {

/// What passkeys are asked to sign: each challenge is good once, for five minutes, and for who it was given
/// to. Kept in memory alone. Any thread.
class PasskeyChallenges {
public:
    static constexpr std::chrono::minutes lifetime{5};

    struct Issued {
        /// Goes back with the answer.
        std::string token;
        /// 32 random bytes as base64url.
        std::string challenge;
        Instant expiresAt;
    };
    /// `userId` is empty for who wants to sign in.
    Issued issue(const std::string &userId, Instant now);
    /// The challenge; nothing for a token that is unknown, spent, too old or somebody else's. It is spent by
    /// any attempt on it.
    std::optional<std::string> redeem(const std::string &token, const std::string &userId, Instant now);

private:
    struct Open {
        std::string userId;
        std::string challenge;
        Instant expiresAt;
    };
    std::mutex m_lock;
    std::map<std::string, Open> m_open;
};

} // namespace orvane::server
