// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Connectivity.h"

#include <QNetworkInformation>
#include <QTimer>

namespace orvane {

namespace {

// Only a plain "no": a network that reaches no further than the office may still hold the server.
bool looksUsable(QNetworkInformation::Reachability reachability)
{
    return reachability != QNetworkInformation::Reachability::Disconnected;
}

} // namespace

Connectivity::Connectivity(QObject *parent) : QObject(parent)
{
    QTimer::singleShot(std::chrono::seconds(1), this, &Connectivity::watch);
}

void Connectivity::watch()
{
    QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability);
    const QNetworkInformation *monitor = QNetworkInformation::instance();
    if (!monitor)
        return;
    setOnline(looksUsable(monitor->reachability()));
    connect(monitor, &QNetworkInformation::reachabilityChanged, this,
            [this](QNetworkInformation::Reachability now) { setOnline(looksUsable(now)); });
}

void Connectivity::setOnline(bool online)
{
    if (m_isOnline == online)
        return;
    m_isOnline = online;
    Q_EMIT isOnlineChanged();
    if (online && onOnline)
        onOnline();
}

} // namespace orvane
