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

bool saysToTryLater(std::int64_t status)
{
    return status >= 500 || status == 408 || status == 429;
}

/// What a request fails with when no token could be had for it. The server has not judged the request then,
/// so a refusal of the renewal (a one-time code used twice, a gateway's 403) must not look like a refusal of
/// the request, which callers take for its end. Nor may it look like the end of the session, which only a 401
/// is.
CallError unsent(CallError error)
{
    const auto *refusal = std::get_if<APIError>(&error);
    if (refusal == nullptr || refusal->status == 401 || saysToTryLater(refusal->status))
        return error;
    return ConnectionError{"the renewal was refused with status " + std::to_string(refusal->status)};
}

} // namespace

Task<HttpResult> AuthMiddleware::intercept(HttpRequest request, SendNext next) const
{
    const std::shared_ptr<AuthSession> session = m_session;
    auto token = co_await session->validAccessToken();
    if (!token)
        co_return failure(unsent(std::move(token.error())));
    auto answer = co_await next(stamped(request, *token));
    if (!answer || answer->status != 401)
        co_return std::move(answer);
    auto other = co_await session->accessTokenAfterRefusal(std::move(*token));
    if (!other)
        co_return failure(unsent(std::move(other.error())));
    co_return co_await next(stamped(std::move(request), *other));
}

} // namespace orvane
