// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/AuthMiddleware.h"

#include "Session/AuthSession.h"

namespace orvane {

namespace {

HttpRequest stamped(HttpRequest request, const std::string &token)
{
    request.headers.set("Authorization", "Bearer " + token);
    return request;
}

} // namespace

Task<HttpResult> AuthMiddleware::intercept(HttpRequest request, SendNext next) const
{
    const std::shared_ptr<AuthSession> session = m_session;
    auto token = co_await session->validAccessToken();
    if (!token)
        co_return failure(std::move(token.error()));
    auto answer = co_await next(stamped(request, *token));
    if (!answer || answer->status != 401)
        co_return std::move(answer);
    auto other = co_await session->accessTokenAfterRefusal(std::move(*token));
    if (!other)
        co_return failure(std::move(other.error()));
    co_return co_await next(stamped(std::move(request), *other));
}

} // namespace orvane
