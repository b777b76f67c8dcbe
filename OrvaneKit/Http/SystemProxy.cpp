// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/SystemProxy.h"

#include <QHostAddress>

namespace orvane {

QList<QNetworkProxy> systemProxies(const QNetworkProxyQuery &query)
{
    const QString host = query.peerHostName();
    if (host == QLatin1String("localhost") || QHostAddress(host).isLoopback())
        return {QNetworkProxy(QNetworkProxy::NoProxy)};
    return QNetworkProxyFactory::systemProxyForQuery(query);
}

} // namespace orvane
