// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LinkWire/LinkMessages.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <functional>
#include <string>

namespace orvane::server {

/// The Unix socket where the server proves that it is the one of this data folder, and where processes of the
/// same user get the key of proofs and their sign-in codes, and send what no port may see. It lies in a
/// folder that only its owner can enter, and whoever connects must be that user too.
class ServerSocket : public QObject {
    Q_OBJECT

public:
    using Reply = std::function<void(const LinkAnswer &)>;
    /// Calls `reply` once, at once or later, on the same thread; the connection may be gone by then. A
    /// caller that asks twice without waiting may hear the answers in the other order.
    using Answer = std::function<void(const LinkRequest &, Reply reply)>;

    /// Used on the thread that made it.
    explicit ServerSocket(Answer answer);
    ~ServerSocket() override;

    /// Makes `folder` (or makes it private) and the socket "server.sock" in it; an old one is replaced. The
    /// error says what is wrong.
    std::string listen(const std::string &folder);
    void close();

private:
    void accept();
    void read(QLocalSocket *socket);
    void answer(QLocalSocket *socket, const QByteArray &line);

    Answer m_answer;
    QLocalServer m_server;
    std::string m_path;
};

/// Whether a server answers at the socket in that folder.
bool serverAnswersIn(const std::string &folder);

} // namespace orvane::server
