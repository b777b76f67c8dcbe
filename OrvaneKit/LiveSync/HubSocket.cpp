// SPDX-License-Identifier: GPL-3.0-or-later
#include "LiveSync/HubSocket.h"

#include "Http/SystemProxy.h"

#include <QCoreApplication>
#include <QNetworkRequest>
#include <QPointer>
#include <QUrl>

namespace orvane {

namespace {

/// The system names proxies for the schemes of HTTP; a WebSocket needs one that passes a connection through.
QNetworkProxy proxyFor(const QUrl &httpUrl)
{
    QNetworkProxy proxy = systemProxies(QNetworkProxyQuery(httpUrl)).value(0, QNetworkProxy::NoProxy);
    if (proxy.type() == QNetworkProxy::HttpCachingProxy)
        proxy.setType(QNetworkProxy::HttpProxy);
    return proxy;
}

QNetworkRequest handshakeRequest(const QUrl &url, const HttpRequest &request)
{
    QNetworkRequest result(url);
    result.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Orvane/" ORVANE_VERSION));
    for (const auto &[name, value] : request.headers.all())
        result.setRawHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
    return result;
}

} // namespace

HubSocket::HubSocket(QObject *parent) : QObject(parent)
{
    m_socket.setMaxAllowedIncomingFrameSize(longestHubFrame);
    m_socket.setMaxAllowedIncomingMessageSize(longestHubFrame);
    // What Qt says of an end may quote the address, which holds a token.
    const auto lost = [this] {
        m_isBroken = true;
        end({m_isAccepted ? "The connection to the server was lost."
                          : "The server wouldn't open live sync."});
    };
    connect(&m_socket, &QWebSocket::connected, this, [this] { send(hubHandshake()); });
    connect(&m_socket, &QWebSocket::textMessageReceived, this, &HubSocket::takeFrame);
    connect(&m_socket, &QWebSocket::binaryMessageReceived, this,
            [this] { end({"The server said something that makes no sense."}); });
    connect(&m_socket, &QWebSocket::disconnected, this, lost);
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
    connect(&m_socket, qOverload<QAbstractSocket::SocketError>(&QWebSocket::error), this, lost);
#else
    connect(&m_socket, &QWebSocket::errorOccurred, this, lost);
#endif
}

HubSocket::~HubSocket()
{
    m_socket.disconnect(this);
}

void HubSocket::open(const std::string &address, const HttpRequest &request)
{
    QUrl url(QString::fromStdString(address + request.path), QUrl::StrictMode);
    m_socket.setProxy(proxyFor(url));
    url.setScheme(url.scheme() == QLatin1String("https") ? QStringLiteral("wss") : QStringLiteral("ws"));
    m_socket.open(handshakeRequest(url, request));
}

void HubSocket::send(const std::string &message)
{
    m_socket.sendTextMessage(QString::fromStdString(message));
}

void HubSocket::leave(HubFarewell farewell)
{
    m_hasEnded = true;
    disconnect();
    m_socket.disconnect(this);
    if (m_socket.state() == QAbstractSocket::ConnectedState && !m_isBroken)
        m_socket.close(farewell == HubFarewell::done ? QWebSocketProtocol::CloseCodeNormal
                                                     : QWebSocketProtocol::CloseCodeGoingAway);
    else
        m_socket.abort();
    // Where no event loop comes any more, it goes with the application.
    setParent(QCoreApplication::instance());
    deleteLater();
}

void HubSocket::takeFrame(const QString &text)
{
    const QPointer<HubSocket> self(this);
    Q_EMIT heard();
    if (!self || m_hasEnded)
        return;
    const auto messages = m_records.take(text.toStdString());
    if (!messages)
        return end({"The server sent a message that is too long."});
    for (const std::string &message : *messages) {
        if (message.empty())
            continue;
        if (!take(message) || !self || m_hasEnded)
            return;
    }
}

/// False once there is nothing more to take.
bool HubSocket::take(const std::string &message)
{
    if (!m_isAccepted) {
        if (const auto accepted = readHubHandshake(message); !accepted) {
            end(accepted.error());
            return false;
        }
        m_isAccepted = true;
        Q_EMIT opened();
        return true;
    }
    const auto read = readHubMessage(message);
    if (!read) {
        end(read.error());
        return false;
    }
    if (const auto *close = std::get_if<HubClose>(&*read)) {
        end(close->error);
        return false;
    }
    Q_EMIT received(*read);
    return true;
}

void HubSocket::end(LiveSyncError error)
{
    if (!std::exchange(m_hasEnded, true))
        Q_EMIT ended(error);
}

} // namespace orvane
