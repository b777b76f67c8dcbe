// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::server {

/// Slows down whoever tries too often: after `freeTries` failures under a key each further one has to wait,
/// twice as long every time, up to a quarter of an hour. A key that has been quiet for an hour starts afresh.
/// Kept in memory: a restart forgets it, and how many keys are kept is bounded. Any thread.
class GuessGuard {
public:
    explicit GuessGuard(int freeTries) : m_freeTries(freeTries) {}

    /// How long this key has still to wait; nothing when it may try.
    std::optional<std::chrono::seconds> wait(const std::string &key, Instant now);
    /// The same for one who has tried; when there is nothing to wait for, a failure counts from now on and a
    /// success makes up for those before it.
    std::optional<std::chrono::seconds> settle(const std::string &key, bool succeeded, Instant now);

private:
    struct Tries {
        int count = 0;
        Instant last;
        Instant notBefore;
    };
    std::optional<std::chrono::seconds> waitHere(const std::string &key, Instant now) const;
    void count(const std::string &key, Instant now);
    void makeRoom(Instant now);

    std::mutex m_lock;
    int m_freeTries;
    std::map<std::string, Tries> m_tries;
};

} // namespace orvane::server
