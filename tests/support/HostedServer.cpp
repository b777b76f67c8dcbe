// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/HostedServer.h"

#include "Support/Require.h"
#include "support/CommandRun.h"

#include <QUrl>

namespace orvane::testing {

HostedServer::HostedServer()
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QString::fromStdString(builtProgram("orvane-server")),
                    {QStringLiteral("--data-dir"), m_folder.filePath(QStringLiteral("server")),
                     QStringLiteral("--trusted-proxy"), QStringLiteral("127.0.0.1"),
                     QStringLiteral("--public-address"), QString::fromStdString(m_proxy.address()),
                     QStringLiteral("--hosted")});
    constexpr int patience = 30'000;
    while (!m_process.canReadLine() && m_process.waitForReadyRead(patience))
        ;
    const QUrl address(QString::fromUtf8(m_process.readLine().trimmed()));
    ORVANE_REQUIRE(address.port() > 0, "the server did not start");
    m_proxy.setServerPort(static_cast<std::uint16_t>(address.port()));
}

HostedServer::~HostedServer()
{
    m_process.terminate();
    m_process.waitForFinished();
}

} // namespace orvane::testing
