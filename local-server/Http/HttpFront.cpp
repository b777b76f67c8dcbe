// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/HttpFront.h"

#include "Http/ConnectionGuard.h"
#include "Http/Problems.h"

#include <QAbstractHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <optional>

namespace orvane::server {

namespace {

std::optional<HttpMethod> methodOf(const QHttpServerRequest &request)
{
    switch (request.method()) {
    case QHttpServerRequest::Method::Get:
        return HttpMethod::Get;
    case QHttpServerRequest::Method::Post:
        return HttpMethod::Post;
    case QHttpServerRequest::Method::Put:
        return HttpMethod::Put;
    case QHttpServerRequest::Method::Delete:
        return HttpMethod::Delete;
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

void send(QHttpServerResponder &responder, const HttpResponse &response)
{
    const auto status = static_cast<QHttpServerResponder::StatusCode>(response.status);
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QHttpHeaders headers;
    for (const auto &[name, value] : response.headers.all())
        headers.append(name, value);
    responder.write(QByteArray::fromStdString(response.body), headers, status);
#else
    responder.writeStatusLine(status);
    for (const auto &[name, value] : response.headers.all())
        responder.writeHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
    if (response.status != 204)
        responder.writeHeader("Content-Length", QByteArray::number(response.body.size()));
    responder.writeBody(QByteArray::fromStdString(response.body));
#endif
}

} // namespace

class HttpFront::Bridge : public QAbstractHttpServer {
public:
    explicit Bridge(Handle handle) : m_handle(std::move(handle)) {}

#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    bool handleRequest(const QHttpServerRequest &request, QHttpServerResponder &responder) override
    {
        answer(request, responder);
        for (auto *server : servers()) {
            for (auto *socket : server->findChildren<GuardedSocket *>()) {
                if (socket->peerPort() == request.remotePort())
                    socket->requestAnswered();
            }
        }
        return true;
    }
    void missingHandler(const QHttpServerRequest &, QHttpServerResponder &) override {}
#else
    bool handleRequest(const QHttpServerRequest &request, QTcpSocket *socket) override
    {
        QHttpServerResponder responder = makeResponder(request, socket);
        answer(request, responder);
        if (auto *guarded = qobject_cast<GuardedSocket *>(socket))
            guarded->requestAnswered();
        if (request.value("Connection").toLower() == "close")
            socket->disconnectFromHost();
        return true;
    }
    void missingHandler(const QHttpServerRequest &, QTcpSocket *) override {}
#endif

private:
    void answer(const QHttpServerRequest &request, QHttpServerResponder &responder)
    {
        const auto method = methodOf(request);
        if (!method) {
            send(responder, problem(405, "This address does not take that method.", {}));
            return;
        }
        send(responder,
             m_handle(requestFrom(request, *method), request.remoteAddress().toString().toStdString()));
    }

    Handle m_handle;
};

HttpFront::HttpFront(Handle handle) : m_bridge(std::make_unique<Bridge>(std::move(handle))) {}

HttpFront::~HttpFront() = default;

Result<std::uint16_t, std::string> HttpFront::listen(const ListenPoint &point)
{
    auto listener = std::make_unique<ConnectionGuard>();
    if (!listener->listen(QHostAddress(QString::fromStdString(point.address)), point.port))
        return failure(listener->errorString().toStdString());
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
