// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/HttpTransport.h"

#include <QObject>
#include <QString>
#include <memory>
#include <string>

namespace orvane {

/// Tells of each request whether the server answered it. From any thread; listeners hear it on theirs.
class ServerEcho final : public QObject {
    Q_OBJECT

public:
    void hear(const Result<HttpResponse, ConnectionError> &answer);

Q_SIGNALS:
    void answered();
    void silent(const QString &reason);
    /// It answered that one should try again later.
    void turnedAway(const QString &reason);
};

/// A transport that is listened to: every request of a server's client and session passes it. Used on the
/// network thread.
class ObservedTransport final : public HttpTransport {
public:
    ObservedTransport(std::shared_ptr<HttpTransport> transport, std::shared_ptr<ServerEcho> echo);

    Task<Result<HttpResponse, ConnectionError>> send(HttpRequest request, std::string baseUrl,
                                                     std::shared_ptr<CallAbort> abort) override;

private:
    std::shared_ptr<HttpTransport> m_transport;
    std::shared_ptr<ServerEcho> m_echo;
};

} // namespace orvane
