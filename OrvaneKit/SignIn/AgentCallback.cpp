// SPDX-License-Identifier: GPL-3.0-or-later
#include "SignIn/AgentCallback.h"

#include <QHostAddress>
#include <QUrl>
#include <QUrlQuery>

namespace orvane::AgentCallback {

namespace {

/// Its value, or nothing where it is empty or missing.
std::optional<std::string> valueOf(const QUrlQuery &query, const char *name)
{
    const QString value = query.queryItemValue(QLatin1String(name), QUrl::FullyDecoded);
    return value.isEmpty() ? std::nullopt : std::optional(value.toStdString());
}

bool saysTwice(const QUrlQuery &query)
{
    QStringList names;
    for (const auto &[name, value] : query.queryItems(QUrl::FullyDecoded))
        names << name;
    return names.removeDuplicates() > 0;
}

} // namespace

std::optional<OAuthAuthorizationRequest> read(const std::string &text)
{
    const QUrl url(QString::fromStdString(text), QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != QLatin1String("orvane") || url.host() != QLatin1String("agents") ||
        url.path() != QLatin1String("/authorize") || url.port() != -1 || !url.userInfo().isEmpty())
        return std::nullopt;
    const QUrlQuery query(url);
    const auto clientId = valueOf(query, "client_id");
    const auto redirectUri = valueOf(query, "redirect_uri");
    if (!clientId || !redirectUri || saysTwice(query))
        return std::nullopt;
    OAuthAuthorizationRequest request;
    request.clientId = *clientId;
    request.redirectUri = *redirectUri;
    request.responseType = valueOf(query, "response_type").value_or("");
    request.codeChallenge = valueOf(query, "code_challenge").value_or("");
    request.codeChallengeMethod = valueOf(query, "code_challenge_method").value_or("");
    request.state = valueOf(query, "state");
    request.scope = valueOf(query, "scope");
    request.resource = valueOf(query, "resource");
    return request;
}

bool leadsBack(const OAuthAuthorizationRequest &request, const std::string &answer)
{
    const char next = request.redirectUri.find('?') == std::string::npos ? '?' : '&';
    return answer.starts_with(request.redirectUri + next);
}

bool isOnThisComputer(const std::string &answer)
{
    const QUrl url(QString::fromStdString(answer), QUrl::StrictMode);
    return url.isValid() && url.scheme() == QLatin1String("http") &&
           (url.host() == QLatin1String("localhost") || QHostAddress(url.host()).isLoopback());
}

} // namespace orvane::AgentCallback
