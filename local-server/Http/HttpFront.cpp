// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/HttpFront.h"

#include "Http/ConnectionGuard.h"
#include "Http/Forwarding.h"
#include "Http/Problems.h"
#include "Support/Require.h"

#include <QAbstractHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QPointer>
#include <optional>

namespace orvane::server {

namespace {

std::optional<HttpMethod> methodOf(const QHttpServerRequest &request)
{
    switch (request.method()) {
    case QHttpServerRequest::Method::Get:
    case QHttpServerRequest::Method::Head:
        return HttpMethod::get;
    case QHttpServerRequest::Method::Post:
        return HttpMethod::post;
    case QHttpServerRequest::Method::Put:
        return HttpMethod::put;
    case QHttpServerRequest::Method::Delete:
        return HttpMethod::delete_;
    default:
        return std::nullopt;
    }
}

std::string pathOf(const QHttpServerRequest &request)
{
    return request.url()
        .toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::RemoveFragment)
        .toStdString();
}

HttpRequest requestFrom(const QHttpServerRequest &request, HttpMethod method)
{
    HttpRequest out;
    out.method = method;
    out.path = pathOf(request);
    const auto headers = request.headers();
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    for (qsizetype i = 0; i < headers.size(); ++i)
        out.headers.set({headers.nameAt(i).data(), static_cast<std::size_t>(headers.nameAt(i).size())},
                        headers.valueAt(i).toByteArray().toStdString());
#else
    for (const auto &[name, value] : headers)
        out.headers.set(name.toStdString(), value.toStdString());
#endif
    out.body = request.body().toStdString();
    return out;
}

bool asksForUpgrade(const QHttpServerRequest &request)
{
    return request.value("Upgrade").compare("websocket", Qt::CaseInsensitive) == 0;
}

/// The answer to a request for an upgrade that is none of the door's, or came behind one that was not
/// answered yet.
HttpResponse noWebSocketHere()
{
    return problem(400, "There is no WebSocket here.", {});
}

/// `isHead` asks for what a GET is answered, without its body.
void send(QHttpServerResponder &responder, const HttpResponse &response, bool isHead)
{
    const auto status = static_cast<QHttpServerResponder::StatusCode>(response.status);
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QHttpHeaders headers;
    for (const auto &[name, value] : response.headers.all())
        headers.append(name, value);
    // To this library a HEAD's Content-Length is that of what it writes, so it is left out.
    responder.write(isHead ? QByteArray() : QByteArray::fromStdString(response.body), headers, status);
#else
    responder.writeStatusLine(status);
    for (const auto &[name, value] : response.headers.all())
        responder.writeHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
    if (response.status != 204)
        responder.writeHeader("Content-Length", QByteArray::number(response.body.size()));
    responder.writeBody(isHead ? QByteArray() : QByteArray::fromStdString(response.body));
#endif
}

} // namespace

class HttpFront::Bridge : public QAbstractHttpServer {
public:
    explicit Bridge(Handle handle) : m_handle(std::move(handle)) {}

#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    bool handleRequest(const QHttpServerRequest &request, QHttpServerResponder &responder) override
    {
        if (asksForUpgrade(request))
            return false;
        for (auto *server : servers()) {
            for (auto *socket : server->findChildren<GuardedSocket *>()) {
                if (socket->peerPort() == request.remotePort()) {
                    take(request, std::move(responder), *socket);
                    return true;
                }
            }
        }
        return false;
    }
    void missingHandler(const QHttpServerRequest &, QHttpServerResponder &responder) override
    {
        send(responder, noWebSocketHere(), false);
    }
#else
    bool handleRequest(const QHttpServerRequest &request, QTcpSocket *socket) override
    {
        if (asksForUpgrade(request))
            return false;
        auto *guarded = qobject_cast<GuardedSocket *>(socket);
        ORVANE_REQUIRE(guarded, "a connection came past the guard");
        take(request, makeResponder(request, socket), *guarded);
        return true;
    }
    void missingHandler(const QHttpServerRequest &request, QTcpSocket *socket) override
    {
        auto responder = makeResponder(request, socket);
        send(responder, noWebSocketHere(), false);
    }
#endif

private:
    /// A request between its arrival and its answer.
    struct Exchange {
        QPointer<GuardedSocket> socket;
        QHttpServerResponder responder;
        std::optional<HttpMethod> method;
        HttpRequest request;
        bool isHead = false;
        bool closes = false;
    };

    void take(const QHttpServerRequest &request, QHttpServerResponder &&responder, GuardedSocket &socket)
    {
        const auto method = methodOf(request);
        const auto exchange = std::make_shared<Exchange>(Exchange{
            &socket, std::move(responder), method, method ? requestFrom(request, *method) : HttpRequest(),
            request.method() == QHttpServerRequest::Method::Head,
            request.value("Connection").toLower() == "close"});
        socket.takeTurn([this, exchange] { begin(exchange); });
    }

    void begin(const std::shared_ptr<Exchange> &exchange)
    {
        if (!exchange->method)
            return answer(*exchange, problem(405, "This address does not take that method.", {}), false);
        m_handle(exchange->request, addressText(exchange->socket->peerAddress()),
                 [exchange](const HttpResponse &response, bool isSignedIn) {
                     answer(*exchange, response, isSignedIn);
                 });
    }

    static void answer(Exchange &exchange, const HttpResponse &response, bool isSignedIn)
    {
        GuardedSocket *socket = exchange.socket;
        if (!socket || socket->state() != QAbstractSocket::ConnectedState)
            return;
        send(exchange.responder, response, exchange.isHead);
        if (isSignedIn)
            socket->setSignedIn();
        if (exchange.closes)
            socket->disconnectFromHost();
        socket->requestAnswered();
    }

    Handle m_handle;
};

HttpFront::HttpFront(Handle handle, std::optional<std::string> trustedProxy, std::optional<Upgrades> upgrades)
    : m_trustedProxy(std::move(trustedProxy))
    , m_upgradePath(upgrades ? upgrades->path : std::string())
    , m_door(upgrades ? std::make_unique<UpgradeDoor>(std::move(*upgrades)) : nullptr)
    , m_bridge(std::make_unique<Bridge>(std::move(handle)))
{
}

HttpFront::~HttpFront() = default;

Result<std::uint16_t, std::string> HttpFront::listen(const ListenPoint &point)
{
    auto listener = std::make_unique<ConnectionGuard>(
        ConnectionGuard::Options{.trustedProxy = m_trustedProxy, .upgradePath = m_upgradePath});
    if (!listener->listen(QHostAddress(QString::fromStdString(point.address)), point.port))
        return failure(listener->errorString().toStdString());
    if (m_door)
        connect(listener.get(), &ConnectionGuard::upgradeAsked, m_door.get(), &UpgradeDoor::take);
    const std::uint16_t port = listener->serverPort();
    m_bridge->bind(listener.release());
    return port;
}

void HttpFront::close()
{
    for (QTcpServer *server : m_bridge->servers())
        server->close();
}

} // namespace orvane::server
