// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QTcpServer>
#include <string>

namespace orvane::testing {

/// A coding agent as far as it signs in: it registers at the server, and listens on this computer for the
/// answer that the browser brings.
class LoopbackAgent {
public:
    /// `server` is the server's address, without a slash at the end.
    explicit LoopbackAgent(std::string server, const std::string &name = "Claude Code");

    /// What the page in the browser hands on to the user's own program.
    std::string programLink() const;
    /// The query of the answer that came; waits for it. Empty when none does.
    std::string heard();
    /// Whether that brought a code that the server gives tokens for.
    bool getsTokensFor(const std::string &answer);
    /// What it may ask the server with then.
    const std::string &accessToken() const { return m_accessToken; }

private:
    QJsonObject post(const std::string &path, const QByteArray &body, const char *type);
    std::string redirect() const;

    const std::string m_server;
    const std::string m_verifier;
    std::string m_clientId;
    std::string m_accessToken;
    QTcpServer m_listener;
    QNetworkAccessManager m_network;
};

} // namespace orvane::testing
