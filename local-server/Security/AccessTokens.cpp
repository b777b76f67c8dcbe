// SPDX-License-Identifier: GPL-3.0-or-later
#include "Security/AccessTokens.h"

#include "Security/RandomText.h"

#include <charconv>
#include <sodium.h>
#include <vector>

namespace orvane::server {

namespace {

/// The form's version comes first, so that another form can tell its own apart.
constexpr std::string_view form = "1";

std::vector<std::string_view> parted(std::string_view text)
{
    std::vector<std::string_view> parts;
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find('.');
        parts.push_back(text.substr(0, end));
        if (end != std::string_view::npos)
            text.remove_prefix(end + 1);
    }
    return parts;
}

std::optional<std::int64_t> wholeNumber(std::string_view text)
{
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional{number} : std::nullopt;
}

} // namespace

std::string AccessTokens::signature(std::string_view claims) const
{
    crypto_auth_hmacsha256_state state;
    crypto_auth_hmacsha256_init(&state, reinterpret_cast<const unsigned char *>(m_key.data()), m_key.size());
    crypto_auth_hmacsha256_update(&state, reinterpret_cast<const unsigned char *>(claims.data()),
                                  claims.size());
    std::string code(crypto_auth_hmacsha256_BYTES, '\0');
    crypto_auth_hmacsha256_final(&state, reinterpret_cast<unsigned char *>(code.data()));
    return base64UrlText(code);
}

std::string AccessTokens::issue(const AccessClaims &claims) const
{
    std::string text(form);
    text += '.' + claims.sessionId + '.' + claims.userId + '.' +
            std::to_string(millisecondsSinceEpoch(claims.expiresAt));
    return text + '.' + signature(text);
}

std::optional<AccessClaims> AccessTokens::read(std::string_view token, Instant now) const
{
    const auto parts = parted(token);
    if (parts.size() != 5 || parts[0] != form)
        return std::nullopt;
    if (!sameSecret(parts[4], signature(token.substr(0, token.size() - parts[4].size() - 1))))
        return std::nullopt;
    const auto expiry = wholeNumber(parts[3]);
    if (!expiry || millisecondsSinceEpoch(now) >= *expiry)
        return std::nullopt;
    return AccessClaims{std::string(parts[1]), std::string(parts[2]), instantFromMilliseconds(*expiry)};
}

} // namespace orvane::server
