// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TlsProxy.h"

#include <QProcess>
#include <QTemporaryDir>
#include <string>

namespace orvane::testing {

/// The real server behind a proxy with TLS, as the service that Orvane's makers run: it takes new accounts,
/// and has passkeys for them.
///
/// The thread that made it runs an event loop while it is asked.
class HostedServer {
public:
    /// Ends the test when the server does not start.
    HostedServer();
    ~HostedServer();

    std::string address() const { return m_proxy.address(); }

private:
    TlsProxy m_proxy;
    QTemporaryDir m_folder;
    QProcess m_process;
};

} // namespace orvane::testing
