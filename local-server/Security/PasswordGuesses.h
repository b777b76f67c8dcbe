// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Security/GuessGuard.h"

#include <chrono>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::server {

/// Slows down who guesses at passwords: an e-mail address from one peer, so that strangers can keep nobody
/// else from signing in; and a peer that tries a password on many addresses, after many more tries. The
/// peers of this computer, and those of a proxy that does not say for whom it speaks, cannot be told apart,
/// so a loopback peer counts for each address alone. Any thread.
class PasswordGuesses {
public:
    /// How long the next guess has still to wait; nothing when it may be made.
    std::optional<std::chrono::seconds> wait(const std::string &email, const std::string &peer, Instant now);
    /// Counts a guess that was checked, unless it has to wait after all: of many guesses that were checked at
    /// one time no more may be answered than of as many in a row.
    std::optional<std::chrono::seconds> settle(const std::string &email, const std::string &peer,
                                               bool isRight, Instant now);

private:
    std::optional<std::chrono::seconds> waitHere(const std::string &key, const std::string &peer,
                                                 Instant now);

    std::mutex m_lock;
    GuessGuard m_byAddress{5};
    GuessGuard m_byPeer{100};
};

} // namespace orvane::server
