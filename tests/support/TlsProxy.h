// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSslServer>
#include <memory>
#include <string>

class QSslSocket;
class QTcpSocket;

namespace orvane::testing {

/// A proxy with TLS in front of a server, as "https://localhost:PORT" with a certificate of its own, which
/// this process trusts from then on. It tells the server by which name it was asked.
///
/// Lives on the thread that made it, which runs an event loop.
class TlsProxy {
public:
    TlsProxy();

    std::string address() const;
    /// Where requests go on to: a port of 127.0.0.1.
    void setServerPort(std::uint16_t port) { m_serverPort = port; }

private:
    struct Passage;

    void serve(QSslSocket *client);
    void passRequests(Passage &passage) const;

    QSslServer m_listener;
    std::uint16_t m_serverPort = 0;
};

} // namespace orvane::testing
