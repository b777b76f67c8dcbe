// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/Middleware.h"

namespace orvane {

class AuthSession;

/// Stamps each request with the session's access token. A 401 gets one more try, with a token that was
/// renewed meanwhile or is renewed now; the second answer stands, whatever it is.
///
/// When no token can be had, the request was never sent. It fails with a 401 when the session is over, and
/// otherwise with something that passes: a ConnectionError, or the server's own word to try later.
class AuthMiddleware final : public Middleware {
public:
    explicit AuthMiddleware(std::shared_ptr<AuthSession> session) : m_session(std::move(session)) {}

    Task<HttpResult> intercept(HttpRequest request, SendNext next) const override;

private:
    std::shared_ptr<AuthSession> m_session;
};

} // namespace orvane
