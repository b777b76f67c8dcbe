// SPDX-License-Identifier: GPL-3.0-or-later
#include "Hub/HubTickets.h"

#include "Security/RandomText.h"

#include <algorithm>

namespace orvane::server {

namespace {

constexpr std::chrono::seconds ticketLifetime{30};
constexpr std::size_t mostTicketsOfAUser = 64;

} // namespace

HubTickets::Ticket HubTickets::issue(const std::string &userId, const std::string &sessionId, Instant now)
{
    Ticket ticket{newIdentifier(), randomText(32)};
    const std::lock_guard lock(m_lock);
    forgetOld(now);
    auto &issued = m_issued[userId];
    if (issued.size() >= mostTicketsOfAUser)
        issued.pop_front();
    issued.push_back({digestText(ticket.secret), ticket.connectionId, sessionId, now + ticketLifetime});
    return ticket;
}

std::optional<std::string> HubTickets::redeem(const std::string &secret, const std::string &userId,
                                              const std::string &sessionId, Instant now)
{
    const std::string digest = digestText(secret);
    const std::lock_guard lock(m_lock);
    forgetOld(now);
    const auto own = m_issued.find(userId);
    if (own == m_issued.end())
        return std::nullopt;
    const auto found = std::ranges::find_if(own->second, [&](const Issued &ticket) {
        return ticket.digest == digest && ticket.sessionId == sessionId;
    });
    if (found == own->second.end())
        return std::nullopt;
    std::string connectionId = std::move(found->connectionId);
    own->second.erase(found);
    return connectionId;
}

void HubTickets::forgetOld(Instant now)
{
    for (auto own = m_issued.begin(); own != m_issued.end();) {
        std::erase_if(own->second, [now](const Issued &ticket) { return ticket.expiresAt <= now; });
        own = own->second.empty() ? m_issued.erase(own) : std::next(own);
    }
}

} // namespace orvane::server
