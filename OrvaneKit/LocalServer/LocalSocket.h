// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LinkWire/LinkMessages.h"
#include "LocalServer/LocalServerLink.h"
#include "Support/Eventual.h"

#include <QLocalSocket>
#include <QTimer>
#include <memory>

namespace orvane {

/// A connection to the socket of the server in a folder: checked before anything is sent, one line out and
/// one line back at a time. Lives on the thread that made it; held by shared pointers, the last of which goes
/// on that thread.
class LocalSocket : public QObject {
public:
    using Connected = Result<std::shared_ptr<LocalSocket>, LinkError>;
    using Answered = Result<LinkAnswer, LinkError>;

    /// `folder` is the one that holds run/.
    static Task<Connected> connectTo(std::string folder, std::chrono::milliseconds limit);
    ~LocalSocket() override;

    /// Looks at the connection itself: the event loop may not have heard of its end yet.
    bool isOpen() const;
    static Task<Answered> ask(std::shared_ptr<LocalSocket> socket, LinkRequest request,
                              std::chrono::milliseconds limit);

private:
    LocalSocket();
    void connectSignals();
    void failWith(LinkError error);
    void readLine();

    QLocalSocket m_socket;
    QTimer m_timer;
    int m_folderDescriptor = -1;
    std::optional<Eventual<std::optional<LinkError>>> m_connecting;
    std::optional<Eventual<Answered>> m_asking;
};

} // namespace orvane
