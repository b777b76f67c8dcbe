// SPDX-License-Identifier: GPL-3.0-or-later
#include "Security/GuessGuard.h"

#include <algorithm>

namespace orvane::server {

namespace {

constexpr std::chrono::minutes longestWait{15};
constexpr std::chrono::hours remembered{1};
constexpr std::size_t mostKeys = 4096;

std::chrono::seconds waitAfter(int failuresTooMany)
{
    return std::min<std::chrono::seconds>(std::chrono::seconds{1 << std::min(failuresTooMany, 12)},
                                          longestWait);
}

} // namespace

std::optional<std::chrono::seconds> GuessGuard::wait(const std::string &key, Instant now)
{
    const std::lock_guard lock(m_lock);
    return waitHere(key, now);
}

std::optional<std::chrono::seconds> GuessGuard::settle(const std::string &key, bool succeeded, Instant now)
{
    const std::lock_guard lock(m_lock);
    if (const auto wait = waitHere(key, now))
        return wait;
    if (succeeded)
        m_tries.erase(key);
    else
        count(key, now);
    return std::nullopt;
}

std::optional<std::chrono::seconds> GuessGuard::waitHere(const std::string &key, Instant now) const
{
    const auto found = m_tries.find(key);
    if (found == m_tries.end() || now >= found->second.notBefore)
        return std::nullopt;
    return std::chrono::ceil<std::chrono::seconds>(found->second.notBefore - now);
}

void GuessGuard::count(const std::string &key, Instant now)
{
    if (m_tries.size() >= mostKeys)
        makeRoom(now);
    Tries &tries = m_tries[key];
    if (now - tries.last > remembered)
        tries.count = 0;
    ++tries.count;
    tries.last = now;
    tries.notBefore = tries.count < m_freeTries ? now : now + waitAfter(tries.count - m_freeTries);
}

void GuessGuard::makeRoom(Instant now)
{
    std::erase_if(m_tries, [&](const auto &item) { return now - item.second.last > remembered; });
    // Still full: the longest quiet one goes, so that a flood of made-up names cannot grow the table.
    if (m_tries.size() >= mostKeys)
        m_tries.erase(
            std::ranges::min_element(m_tries, {}, [](const auto &item) { return item.second.last; }));
}

} // namespace orvane::server
