// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"
#include "support/LoopbackServer.h"

#include <QObject>
#include <QPointer>
#include <QTcpServer>
#include <QWebSocketServer>
#include <deque>
#include <optional>
#include <string>
#include <vector>

class QTcpSocket;
class QWebSocket;

namespace orvane::testing {

/// A server with nothing but tokens and a hub, which does what the test says: for faults and for time that a
/// real one does not have. It lives on the test's thread, and answers while that handles events.
class ScriptedHub : public QObject {
public:
    ScriptedHub();
    ~ScriptedHub() override;

    std::string url() const;
    /// Down, it refuses connections; up again, it has the same port.
    void setDown(bool isDown);

    // The script: the first answers in order, and good ones once they are used up.

    /// A status of 0 is no answer at all.
    std::deque<HttpResponse> negotiations;
    /// To requests for the WebSocket, which are taken otherwise.
    std::deque<HttpResponse> refusals;
    /// The hub's first words, as they are; an empty one is none.
    std::deque<std::string> firstWords;
    /// To requests for tokens.
    std::deque<HttpResponse> tokenAnswers;
    /// What it says to Watch; nothing for no answer.
    std::optional<std::string> watchAnswer = R"("result":true)";

    // What came

    std::vector<SeenRequest> requests;
    /// Of all connections, without separators.
    std::vector<std::string> messages;
    /// Accepted handshakes.
    int connections = 0;
    /// Of connections that ended.
    std::vector<int> closeCodes;
    int count(const std::string &path) const;
    /// Those that begin with the path.
    std::vector<SeenRequest> requestsFor(const std::string &path) const;

    // To the connection in use

    /// One text frame.
    void say(const std::string &text);
    /// "Changed" as the hub says it, with its separator.
    static std::string change(const std::string &topic, const std::string &workspaceId = "w1",
                              const std::string &userId = "");
    /// Bytes as they are, past the framing.
    void sayRaw(const QByteArray &bytes);
    void sayBinary(const QByteArray &bytes);
    /// The end without a word.
    void drop();

private:
    void serve(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const SeenRequest &request);
    HttpResponse answerTo(const SeenRequest &request);
    void welcome();
    void take(const std::string &message);

    QTcpServer m_listener;
    QWebSocketServer m_upgrader;
    quint16 m_port = 0;
    QPointer<QTcpSocket> m_raw;
    QPointer<QWebSocket> m_socket;
    bool m_isGreeted = false;
    int m_negotiated = 0;
    int m_tokens = 0;
};

} // namespace orvane::testing
