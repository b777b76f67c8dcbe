// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/PasskeyChallenges.h"

#include "Security/RandomText.h"

#include <algorithm>

namespace orvane::server {

namespace {

/// Whoever asks for more makes the oldest go, and those whose it was ask again; what somebody who is signed
/// in asked for goes last, since anybody can ask to sign in.
constexpr std::size_t mostOpen = 4096;

} // namespace

PasskeyChallenges::Issued PasskeyChallenges::issue(const std::string &userId, Instant now)
{
    Issued issued{.token = randomText(32), .challenge = randomText(32), .expiresAt = now + lifetime};
    const std::lock_guard lock(m_lock);
    std::erase_if(m_open, [&](const auto &item) { return item.second.expiresAt <= now; });
    if (m_open.size() >= mostOpen)
        m_open.erase(std::ranges::min_element(m_open, {}, [](const auto &item) {
            return std::pair(!item.second.userId.empty(), item.second.expiresAt);
        }));
    m_open[digestText(issued.token)] = {userId, issued.challenge, issued.expiresAt};
    return issued;
}

std::optional<std::string> PasskeyChallenges::redeem(const std::string &token, const std::string &userId,
                                                     Instant now)
{
    auto found = [&] {
        const std::lock_guard lock(m_lock);
        return m_open.extract(digestText(token));
    }();
    if (!found || found.mapped().expiresAt <= now || found.mapped().userId != userId)
        return std::nullopt;
    return std::move(found.mapped().challenge);
}

} // namespace orvane::server
