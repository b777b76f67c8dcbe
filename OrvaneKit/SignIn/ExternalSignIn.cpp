// SPDX-License-Identifier: GPL-3.0-or-later
#include "SignIn/ExternalSignIn.h"

#include <QUrl>
#include <QUrlQuery>

namespace orvane {

std::string describe(ExternalSignInError)
{
    return "Signing in didn't finish. Please try again, or sign in with your email.";
}

namespace ExternalSignIn {

namespace {

QString encoded(std::string_view text)
{
    return QString::fromLatin1(
        QUrl::toPercentEncoding(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))));
}

} // namespace

std::string startAddress(const std::string &server, const std::string &provider, const PKCE &pkce,
                         const std::string &timeZone, const std::string &invitation)
{
    QString address = QString::fromStdString(server);
    if (!address.endsWith(u'/'))
        address += u'/';
    address += QStringLiteral("api/auth/external/") + encoded(provider) + QStringLiteral("/start");
    QChar before = u'?';
    const auto add = [&](const char *name, std::string_view value) {
        address += before + QLatin1String(name) + u'=' + encoded(value);
        before = u'&';
    };
    add("redirectUri", callbackAddress);
    add("codeChallenge", pkce.challenge);
    if (!timeZone.empty())
        add("timeZone", timeZone);
    add("acceptTerms", "true");
    if (!invitation.empty())
        add("invitation", invitation);
    return address.toStdString();
}

std::optional<Callback> readCallback(const std::string &address)
{
    const QUrl url(QString::fromStdString(address));
    if (!url.isValid() || url.scheme() != QLatin1String("orvane") || url.host() != QLatin1String("auth") ||
        url.path() != QLatin1String("/callback"))
        return std::nullopt;
    const QUrlQuery query(url);
    const auto value = [&](QLatin1String name) {
        return query.queryItemValue(name, QUrl::FullyDecoded).toStdString();
    };
    if (query.hasQueryItem(QStringLiteral("code")))
        return Code{value(QLatin1String("code"))};
    const std::string error = value(QLatin1String("error"));
    if (error == "cancelled")
        return Cancelled{};
    return Failed{error};
}

} // namespace ExternalSignIn

} // namespace orvane
