// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HubWire/HubFrames.h"
#include "LiveSync/HubMessages.h"
#include "OrvaneAPI/HttpMessage.h"

#include <QObject>
#include <QWebSocket>
#include <string>

namespace orvane {

/// One connection to the hub, from opening the WebSocket to its end: what comes is the hub's messages.
///
/// Owner: live sync, which lets go of it with `leave`. Thread: the main thread.
class HubSocket final : public QObject {
    Q_OBJECT

public:
    explicit HubSocket(QObject *parent = nullptr);
    ~HubSocket() override;

    /// The handshake follows by itself. `address` is the server's; the request goes out as it is.
    void open(const std::string &address, const HttpRequest &request);
    /// A message with its separator.
    void send(const std::string &message);
    /// Ends the connection without another signal and goes, from the event loop: it may be told of inside one
    /// of its own signals.
    void leave(HubFarewell farewell);

Q_SIGNALS:
    /// The hub has accepted the handshake.
    void opened();
    /// Something came, whatever it was.
    void heard();
    void received(const orvane::HubMessage &message);
    /// Nothing more comes. Once.
    void ended(const orvane::LiveSyncError &error);

private:
    void takeFrame(const QString &text);
    bool take(const std::string &message);
    void end(LiveSyncError error);

    QWebSocket m_socket;
    hub::Records m_records{longestHubMessage};
    bool m_isAccepted = false;
    /// Nothing can be sent any more.
    bool m_isBroken = false;
    bool m_hasEnded = false;
};

} // namespace orvane
