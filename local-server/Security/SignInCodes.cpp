// SPDX-License-Identifier: GPL-3.0-or-later
#include "Security/SignInCodes.h"

#include "Security/RandomText.h"

#include <algorithm>

namespace orvane::server {

namespace {

constexpr std::chrono::seconds lifetime{60};
constexpr std::size_t mostCodes = 256;

} // namespace

std::string SignInCodes::issue(Grant grant, std::string challenge, Instant now)
{
    const std::lock_guard lock(m_lock);
    std::erase_if(m_issued, [&](const auto &item) { return item.second.expiresAt <= now; });
    if (m_issued.size() >= mostCodes)
        m_issued.erase(
            std::ranges::min_element(m_issued, {}, [](const auto &item) { return item.second.expiresAt; }));
    std::string code = randomText(32);
    m_issued[digestText(code)] = {std::move(grant), std::move(challenge), now + lifetime};
    return code;
}

std::optional<SignInCodes::Grant> SignInCodes::redeem(const std::string &code, const std::string &verifier,
                                                      Instant now)
{
    auto found = [&] {
        const std::lock_guard lock(m_lock);
        return m_issued.extract(digestText(code));
    }();
    if (!found || found.mapped().expiresAt <= now ||
        !sameSecret(digestText(verifier), found.mapped().challenge))
        return std::nullopt;
    return std::move(found.mapped().grant);
}

bool isCodeChallenge(const std::string &text)
{
    return text.size() == 43 && std::ranges::all_of(text, [](char c) {
               return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                      c == '-' || c == '_';
           });
}

} // namespace orvane::server
