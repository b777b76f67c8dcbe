// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/PasskeySite.h"

#include <QHostAddress>
#include <QUrl>

namespace orvane::server {

std::optional<PasskeySite> PasskeySite::at(const std::string &publicAddress)
{
    const QUrl url(QString::fromStdString(publicAddress));
    const QString host = url.host(QUrl::FullyEncoded);
    if (!url.isValid() || url.scheme() != QLatin1String("https") || host.isEmpty() ||
        !QHostAddress(host).isNull())
        return std::nullopt;
    constexpr int usualPort = 443;
    const int port = url.port(usualPort);
    PasskeySite site{.origin = "https://" + host.toStdString(), .rpId = host.toStdString()};
    if (port != usualPort)
        site.origin += ':' + std::to_string(port);
    return site;
}

} // namespace orvane::server
