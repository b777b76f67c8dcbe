// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TokenServer.h"

#include "Support/Json.h"

#include <algorithm>

namespace orvane::testing {

namespace {

using Connection = LoopbackServer::Connection;

void refuse(Connection &connection, std::string_view title)
{
    connection.answer(401, R"({"title":")" + std::string(title) + R"(","status":401})",
                      "application/problem+json");
}

} // namespace

TokenServer::TokenServer()
    : LoopbackServer(
          [this](const SeenRequest &request, Connection &connection) { handle(request, connection); })
    , m_answer([](const SeenRequest &, Connection &connection) { connection.answer(200, "[]"); })
{
}

TokenServer::~TokenServer()
{
    stop();
}

AuthTokensResponse TokenServer::issue()
{
    const std::lock_guard lock(m_stateMutex);
    const std::string number = std::to_string(++m_issued);
    const Instant now = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    m_access.insert("a" + number);
    m_refresh.insert("r" + number);
    return {.accessToken = "a" + number,
            .accessTokenExpiresAt = now + m_lifetime,
            .refreshToken = "r" + number,
            .refreshTokenExpiresAt = now + std::chrono::days{30}};
}

void TokenServer::setLifetime(std::chrono::seconds lifetime)
{
    const std::lock_guard lock(m_stateMutex);
    m_lifetime = lifetime;
}

void TokenServer::revokeAccessTokens()
{
    const std::lock_guard lock(m_stateMutex);
    m_access.clear();
}

void TokenServer::revokeRefreshTokens()
{
    const std::lock_guard lock(m_stateMutex);
    m_refresh.clear();
}

void TokenServer::setRefreshDelay(std::chrono::milliseconds delay)
{
    const std::lock_guard lock(m_stateMutex);
    m_refreshDelay = delay;
}

void TokenServer::refuseLogout(int status)
{
    const std::lock_guard lock(m_stateMutex);
    m_logoutStatus = status;
}

void TokenServer::setAnswer(Handler answer)
{
    const std::lock_guard lock(m_stateMutex);
    m_answer = std::move(answer);
}

int TokenServer::count(std::string_view path) const
{
    const auto all = requests();
    return static_cast<int>(
        std::ranges::count_if(all, [&](const SeenRequest &request) { return request.path == path; }));
}

void TokenServer::handleRefresh(const SeenRequest &request, Connection &connection)
{
    std::chrono::milliseconds delay;
    bool known = false;
    {
        const auto body = decodeJson<RefreshRequest>(request.body);
        const std::lock_guard lock(m_stateMutex);
        known = body && m_refresh.erase(body->refreshToken) > 0;
        delay = m_refreshDelay;
    }
    if (delay.count() > 0 && !connection.wait(delay))
        return connection.close();
    if (known)
        connection.answer(200, encodeJson(issue()));
    else
        refuse(connection, "This session is over");
}

void TokenServer::handleLogout(const SeenRequest &request, Connection &connection)
{
    const auto body = decodeJson<LogoutRequest>(request.body);
    const std::lock_guard lock(m_stateMutex);
    if (body && m_logoutStatus == 202)
        m_refresh.erase(body->refreshToken);
    connection.answer(m_logoutStatus, "");
}

void TokenServer::handle(const SeenRequest &request, Connection &connection)
{
    if (request.path == "/api/auth/refresh")
        return handleRefresh(request, connection);
    if (request.path == "/api/auth/logout")
        return handleLogout(request, connection);
    if (request.path == "/api/auth/login")
        return request.body.find("wrong") == std::string::npos ? connection.answer(200, encodeJson(issue()))
                                                               : refuse(connection, "Wrong password");
    if (request.path == "/api/auth/register")
        return connection.answer(201, encodeJson(issue()));
    if (request.path == "/api/auth/external/exchange")
        return connection.answer(200,
                                 encodeJson(ExternalSignInResponse{.tokens = issue(), .isNewAccount = true}));
    Handler answer;
    bool known = false;
    {
        const std::lock_guard lock(m_stateMutex);
        const std::string sent = request.headers.find("authorization").value_or("");
        known = sent.starts_with("Bearer ") && m_access.contains(sent.substr(7));
        answer = m_answer;
    }
    if (known)
        answer(request, connection);
    else
        refuse(connection, "Sign in first");
}

} // namespace orvane::testing
