// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentUris.h"

#include "Agents/AgentSignIn.h"

#include <QHostAddress>
#include <QUrl>
#include <algorithm>
#include <string_view>

namespace orvane::server {

namespace {

constexpr std::size_t longestUri = 2000;

/// Nothing of what a header or a page would have to escape.
bool isPlainUriText(const std::string &text)
{
    constexpr std::string_view unfit = "\"'<>\\^`{|}";
    return !text.empty() && text.size() <= longestUri && std::ranges::all_of(text, [&](char c) {
        return c > ' ' && c < '\x7f' && unfit.find(c) == std::string_view::npos;
    });
}

/// Invalid for what is no absolute address of plain text.
QUrl urlOf(const std::string &text)
{
    return isPlainUriText(text) ? QUrl(QString::fromStdString(text), QUrl::StrictMode) : QUrl();
}

bool isLoopbackHost(const QString &host)
{
    return host == QLatin1String("localhost") || QHostAddress(host).isLoopback();
}

bool isLoopbackHttp(const QUrl &url)
{
    return url.scheme() == QLatin1String("http") && isLoopbackHost(url.host());
}

QString withoutPort(QUrl url)
{
    url.setPort(-1);
    return url.toString(QUrl::FullyEncoded);
}

} // namespace

bool isRedirectUri(const std::string &uri)
{
    const QUrl url = urlOf(uri);
    return url.isValid() && !url.host().isEmpty() && url.userInfo().isEmpty() && !url.hasFragment() &&
           (url.scheme() == QLatin1String("https") || isLoopbackHttp(url));
}

bool isRegisteredRedirect(const std::string &registered, const std::string &asked)
{
    if (registered == asked)
        return true;
    const QUrl url = urlOf(asked);
    return isRedirectUri(asked) && isLoopbackHttp(url) && withoutPort(urlOf(registered)) == withoutPort(url);
}

std::string withQueryItem(const std::string &uri, const std::string &item)
{
    return uri + (uri.find('?') == std::string::npos ? '?' : '&') + item;
}

std::string hostForPeople(const std::string &uri)
{
    return urlOf(uri).authority(QUrl::FullyEncoded).toStdString();
}

bool isOnThisComputer(const std::string &uri)
{
    return isLoopbackHost(urlOf(uri).host());
}

bool isOurResource(const std::string &address, const std::string &resource)
{
    const QUrl ours = urlOf(address);
    const QUrl asked = urlOf(resource);
    if (ours.host().isEmpty() || asked.host().isEmpty() || asked.hasQuery() || asked.hasFragment() ||
        !asked.userInfo().isEmpty())
        return false;
    const QString path = asked.path();
    const bool isPath = path.isEmpty() || path == QLatin1String("/") || path == QLatin1String(agentPath) ||
                        path == QLatin1String(agentPath) + QLatin1Char('/');
    const bool isHost =
        asked.host() == ours.host() || (isLoopbackHost(asked.host()) && isLoopbackHost(ours.host()));
    const int port = ours.scheme() == QLatin1String("https") ? 443 : 80;
    return isPath && isHost && asked.scheme() == ours.scheme() && asked.port(port) == ours.port(port);
}

} // namespace orvane::server
