// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QNetworkProxy>

namespace orvane {

/// The proxies that the system names for an address; never any for loopback ones, whose tokens are not to
/// leave the machine. Any thread.
QList<QNetworkProxy> systemProxies(const QNetworkProxyQuery &query);

} // namespace orvane
