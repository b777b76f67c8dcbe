// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "support/LoopbackServer.h"

#include <set>

namespace orvane::testing {

/// The credentials' side of a server, with the rotation of refresh tokens in its strictest form: each is good
/// once, a second use is a 401. Access tokens are "a1", "a2", ... and refresh tokens "r1", "r2", ...; every
/// other request needs a good access token and is answered by `answer`, or with an empty list.
class TokenServer : public LoopbackServer {
public:
    TokenServer();
    ~TokenServer();

    /// Issues tokens as a sign-in would.
    AuthTokensResponse issue();
    /// How long access tokens last from now on.
    void setLifetime(std::chrono::seconds lifetime);
    /// A good access token is refused from now on; its refresh token is not.
    void revokeAccessTokens();
    void revokeRefreshTokens();
    /// Each refresh takes that long.
    void setRefreshDelay(std::chrono::milliseconds delay);
    /// Sign-outs get this status; the token stays good.
    void refuseLogout(int status);
    void setAnswer(Handler answer);

    /// Requests for that path so far.
    int count(std::string_view path) const;
    int refreshes() const { return count("/api/auth/refresh"); }

private:
    void handle(const SeenRequest &request, Connection &connection);
    void handleRefresh(const SeenRequest &request, Connection &connection);
    void handleLogout(const SeenRequest &request, Connection &connection);

    mutable std::mutex m_stateMutex;
    std::set<std::string> m_access;
    std::set<std::string> m_refresh;
    int m_issued = 0;
    std::chrono::seconds m_lifetime{900};
    std::chrono::milliseconds m_refreshDelay{0};
    int m_logoutStatus = 202;
    Handler m_answer;
};

} // namespace orvane::testing
