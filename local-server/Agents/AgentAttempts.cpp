// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentAttempts.h"

#include "Security/RandomText.h"

#include <algorithm>

namespace orvane::server {

namespace {

constexpr std::size_t mostOpenPages = 256;
constexpr std::chrono::minutes pageLifetime{10};

} // namespace

std::string AgentAttempts::open(Attempt attempt, Instant now)
{
    const std::lock_guard lock(m_lock);
    std::erase_if(m_attempts, [&](const auto &item) { return item.second.expiresAt <= now; });
    // Anybody can open pages; those of people who have signed in go last.
    if (m_attempts.size() >= mostOpenPages)
        m_attempts.erase(std::ranges::min_element(m_attempts, {}, [](const auto &item) {
            return std::pair(!item.second.attempt.userId.empty(), item.second.expiresAt);
        }));
    std::string name = randomText(32);
    m_attempts[digestText(name)] = {std::move(attempt), now + pageLifetime};
    return name;
}

std::optional<AgentAttempts::Attempt> AgentAttempts::find(const std::string &name, Instant now)
{
    const std::lock_guard lock(m_lock);
    const auto found = m_attempts.find(digestText(name));
    if (found == m_attempts.end() || found->second.expiresAt <= now)
        return std::nullopt;
    return found->second.attempt;
}

std::optional<AgentAttempts::Attempt> AgentAttempts::close(const std::string &name, Instant now)
{
    const std::lock_guard lock(m_lock);
    auto found = m_attempts.extract(digestText(name));
    if (!found || found.mapped().expiresAt <= now)
        return std::nullopt;
    return std::move(found.mapped().attempt);
}

void AgentAttempts::closeAllOf(const std::string &userId)
{
    const std::lock_guard lock(m_lock);
    std::erase_if(m_attempts, [&](const auto &item) { return item.second.attempt.userId == userId; });
}

} // namespace orvane::server
