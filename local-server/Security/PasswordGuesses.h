// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Security/GuessGuard.h"

#include <chrono>
#include <optional>
#include <string>

namespace orvane::server {

/// Slows down who guesses at passwords: an e-mail address from one peer, so that strangers can keep nobody
/// else from signing in; and a peer that tries a password on many addresses, after many more tries. The
/// peers of this computer, and those of a proxy that does not say for whom it speaks, cannot be told apart,
/// so a loopback peer counts for each address alone.
class PasswordGuesses {
public:
    /// How long the next guess has still to wait; nothing when it may be made.
    std::optional<std::chrono::seconds> wait(const std::string &email, const std::string &peer,
                                             Instant now) const;
    void failed(const std::string &email, const std::string &peer, Instant now);
    void succeeded(const std::string &email, const std::string &peer);

private:
    GuessGuard m_byAddress{5};
    GuessGuard m_byPeer{100};
};

} // namespace orvane::server
