// SPDX-License-Identifier: GPL-3.0-or-later
#include "SignIn/NewSession.h"

namespace orvane::server {

namespace {

constexpr std::chrono::minutes accessLifetime{15};

} // namespace

AuthTokensResponse tokensFor(Call &call, const IssuedRefresh &refresh)
{
    const Instant expiresAt = call.now + accessLifetime;
    return {.accessToken = call.services.tokens.issue({refresh.sessionId, refresh.userId, expiresAt}),
            .accessTokenExpiresAt = expiresAt,
            .refreshToken = refresh.token,
            .refreshTokenExpiresAt = refresh.expiresAt};
}

AuthTokensResponse newSession(Call &call, const std::string &userId,
                              const std::optional<std::string> &deviceName, Sessions::Kind kind)
{
    // What began with a proof is never to be used without one: its tokens are worth nothing to whoever else
    // sees them.
    return tokensFor(call, call.sessions.start(userId, deviceName, kind, call.isProved, call.now));
}

} // namespace orvane::server
