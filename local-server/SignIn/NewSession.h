// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Requests/Call.h"

namespace orvane::server {

/// An access token for a session whose refresh token was just issued.
AuthTokensResponse tokensFor(Call &call, const IssuedRefresh &refresh);

/// The first tokens of who has just shown to be that user.
AuthTokensResponse newSession(Call &call, const std::string &userId,
                              const std::optional<std::string> &deviceName, Sessions::Kind kind);

} // namespace orvane::server
