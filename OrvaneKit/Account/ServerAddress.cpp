// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/ServerAddress.h"

#include <QHostAddress>
#include <QUrl>

namespace orvane {

std::optional<std::string> serverAddress(const std::string &typed)
{
    const QUrl url(QString::fromStdString(typed), QUrl::StrictMode);
    const bool isHttp = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (!url.isValid() || !isHttp || url.host().isEmpty() || url.hasQuery() || url.hasFragment())
        return std::nullopt;
    std::string address = typed;
    while (address.ends_with('/'))
        address.pop_back();
    return address;
}

std::optional<std::string> serverAddressOf(const std::string &answer)
{
    const std::string typed = QString::fromStdString(answer).trimmed().toStdString();
    return serverAddress(typed.find("://") == std::string::npos ? "https://" + typed : typed);
}

bool isReadableOnTheWay(const std::string &server)
{
    const QUrl url(QString::fromStdString(server));
    const QString host = url.host();
    return url.scheme() == QLatin1String("http") && host != QLatin1String("localhost") &&
           !QHostAddress(host).isLoopback();
}

} // namespace orvane
