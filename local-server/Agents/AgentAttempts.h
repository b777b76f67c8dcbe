// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Instant.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::server {

/// What stands open on pages that ask for leave for an agent. Each page's forms carry a text that is its
/// attempt's name and that nobody can guess, so what is sent with it was filled in on that page. Good for ten
/// minutes, kept in memory alone, and few are kept. Any thread.
class AgentAttempts {
public:
    struct Attempt {
        OAuthAuthorizationRequest request;
        /// Who signed in on the page; empty before that.
        std::string userId;
    };

    /// Answers the attempt's name.
    std::string open(Attempt attempt, Instant now);
    /// Nothing for one that is over, or never was.
    std::optional<Attempt> find(const std::string &name, Instant now);
    /// The same, and it is over: of two who close it one gets it.
    std::optional<Attempt> close(const std::string &name, Instant now);
    /// Whoever signed in as this user on such a page has to do it again.
    void closeAllOf(const std::string &userId);

private:
    struct Kept {
        Attempt attempt;
        Instant expiresAt;
    };
    std::mutex m_lock;
    std::map<std::string, Kept> m_attempts;
};

} // namespace orvane::server
