// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvane::server {

/// What an access token says: who, through which session, until when.
struct AccessClaims {
    std::string sessionId;
    std::string userId;
    Instant expiresAt;

    bool operator==(const AccessClaims &) const = default;
};

/// Makes and reads access tokens. They are not stored: a token is its claims with an HMAC-SHA256 under a key
/// that only the server has. Whether the session still exists is for the caller to see.
class AccessTokens {
public:
    explicit AccessTokens(std::string key) : m_key(std::move(key)) {}

    std::string issue(const AccessClaims &claims) const;
    /// Nothing for a text that this server did not make, and for one that is no longer good at `now`.
    std::optional<AccessClaims> read(std::string_view token, Instant now) const;

private:
    std::string signature(std::string_view claims) const;

    std::string m_key;
};

} // namespace orvane::server
