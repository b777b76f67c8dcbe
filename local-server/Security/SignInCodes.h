// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::server {

/// The one-time codes with which a process of the same user signs in to the account on this computer, and
/// with which who signed in through the browser goes on. A code is good once, for a minute, and only together
/// with the verifier whose digest came with its request. Kept in memory alone. Any thread.
class SignInCodes {
public:
    struct Grant {
        std::string userId;
        bool isNewAccount = false;
        /// To the account on this computer, whose sessions are short.
        bool isLocal = false;
    };

    /// `challenge` is the base64url SHA-256 of the verifier that the exchange will bring.
    std::string issue(Grant grant, std::string challenge, Instant now);
    /// Nothing for a code that is unknown, spent or too old, or a verifier that does not fit; a code is spent
    /// by any attempt on it.
    std::optional<Grant> redeem(const std::string &code, const std::string &verifier, Instant now);

private:
    struct Issued {
        Grant grant;
        std::string challenge;
        Instant expiresAt;
    };
    std::mutex m_lock;
    std::map<std::string, Issued> m_issued;
};

/// Whether a text can be a code challenge: a SHA-256 digest as base64url without padding.
bool isCodeChallenge(const std::string &text);

} // namespace orvane::server
