// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/NetworkTransport.h"

#include "Http/SystemProxy.h"
#include "Support/Eventual.h"

#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTcpSocket>
#include <QTimer>

namespace orvane {

namespace {

using Answer = Result<HttpResponse, ConnectionError>;

class ProxyFactory final : public QNetworkProxyFactory {
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override { return systemProxies(query); }
};

QNetworkRequest networkRequest(const HttpRequest &request, const QUrl &url, std::size_t answerLimit)
{
    QNetworkRequest result(url);
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    result.setAttribute(QNetworkRequest::Http2AllowedAttribute, url.scheme() == QLatin1String("https"));
    result.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    result.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    result.setDecompressedSafetyCheckThreshold(static_cast<qint64>(answerLimit));
    result.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Orvane/" ORVANE_VERSION));
    // Otherwise a POST without a body would claim to be a form.
    if (request.method == HttpMethod::post || request.method == HttpMethod::put)
        result.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    for (const auto &[name, value] : request.headers.all())
        result.setRawHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
    return result;
}

} // namespace

/// One request under way: collects its answer and watches over its time.
class NetworkCall final : public QObject {
public:
    NetworkCall(NetworkTransport &transport, HttpRequest request, QUrl url)
        : m_transport(transport), m_request(std::move(request)), m_url(std::move(url))
    {
        m_timer.setSingleShot(true);
        connect(&m_timer, &QTimer::timeout, this, [this] { end("the connection timed out"); });
    }

    const Eventual<Answer> &answer() const { return m_answer; }

    void start(QNetworkAccessManager &manager)
    {
        const QNetworkRequest request = networkRequest(m_request, m_url, m_transport.m_limits.answer);
        const auto verb = text(m_request.method);
        m_reply =
            manager.sendCustomRequest(request, QByteArray(verb.data(), static_cast<qsizetype>(verb.size())),
                                      QByteArray::fromStdString(std::exchange(m_request.body, {})));
        m_reply->setParent(this);
        m_timer.start(m_transport.m_limits.connect);
        watchConnecting(*manager.proxyFactory());
        const auto moved = [this] { onMoved(); };
        connect(m_reply, &QNetworkReply::requestSent, this, moved);
        connect(m_reply, &QNetworkReply::uploadProgress, this, [moved](qint64 sent, qint64) {
            if (sent > 0)
                moved();
        });
        connect(m_reply, &QNetworkReply::metaDataChanged, this, moved);
        connect(m_reply, &QNetworkReply::downloadProgress, this, moved);
        connect(m_reply, &QNetworkReply::readyRead, this, &NetworkCall::collect);
        connect(m_reply, &QNetworkReply::finished, this, &NetworkCall::complete);
    }

    /// Ends with a ConnectionError. Deletes itself.
    void end(const char *reason) { finish(failure(ConnectionError{reason})); }

private:
    /// The connection is there, or bytes have come or gone.
    void onMoved()
    {
        m_watch.reset();
        m_timer.start(m_transport.m_limits.idle);
    }

    /// QtNetwork does not say when a request without a body is on its way. So, when nothing has been heard
    /// for a while, a connection of our own shows whether the other side takes any.
    void watchConnecting(QNetworkProxyFactory &proxies)
    {
        m_watch = std::make_unique<QTcpSocket>();
        m_watch->setProxy(QNetworkProxy::NoProxy);
        connect(m_watch.get(), &QTcpSocket::connected, this, [this] {
            m_watch.release()->deleteLater();
            onMoved();
        });
        QTimer::singleShot(m_transport.m_limits.connect / 10, m_watch.get(), [this, &proxies] {
            const QNetworkProxy proxy = proxies.queryProxy(QNetworkProxyQuery(m_url)).value(0);
            if (proxy.hostName().isEmpty()) {
                const bool secure = m_url.scheme() == QLatin1String("https");
                m_watch->connectToHost(m_url.host(), static_cast<quint16>(m_url.port(secure ? 443 : 80)));
            } else {
                m_watch->connectToHost(proxy.hostName(), proxy.port());
            }
        });
    }

    int status() const { return m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); }

    void collect()
    {
        const bool refusal = status() >= 400;
        const std::size_t limit = refusal ? m_transport.m_limits.refusal : m_transport.m_limits.answer;
        const QByteArray bytes = m_reply->readAll();
        m_body.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        if (m_body.size() < limit)
            return;
        if (!refusal)
            return end("the answer is too long");
        m_body.resize(limit);
        finish(response());
    }

    /// QtNetwork calls a refusal an error too; to us it is an answer, once it is all there. One that was cut
    /// may come from anywhere on the way, and whoever takes it for the server's word drops a change for it.
    bool isWhole() const
    {
        const QNetworkReply::NetworkError error = m_reply->error();
        if (status() < 400)
            return status() != 0 && error == QNetworkReply::NoError;
        // What it makes of a status; all else is a fault of the connection, or of the text that came over it.
        return error == QNetworkReply::ProxyAuthenticationRequiredError ||
               (error >= QNetworkReply::ContentAccessDenied && error != QNetworkReply::ProtocolFailure);
    }

    /// QtNetwork often takes the connection's end for the body's, whatever the head announced. (It drops the
    /// length of a body that it unpacks.) Without a length only a refusal's JSON shows that it is all there;
    /// other answers have readers that notice.
    bool isCut() const
    {
        constexpr int notModified = 304;
        const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
        if (length.isValid())
            return status() != notModified && m_body.size() < length.toULongLong();
        const QString type = m_reply->header(QNetworkRequest::ContentTypeHeader).toString();
        return status() >= 400 && type.contains(QLatin1String("json")) &&
               QJsonDocument::fromJson(QByteArray::fromStdString(m_body)).isNull();
    }

    void complete()
    {
        if (!isWhole())
            return finish(failure(ConnectionError{m_reply->errorString().toStdString()}));
        collect();
        if (m_answer.isFinished())
            return;
        if (isCut())
            return end("the answer was cut short");
        finish(response());
    }

    HttpResponse response()
    {
        HttpResponse result{.status = status(), .headers = {}, .body = std::move(m_body)};
        for (const auto &[name, value] : m_reply->rawHeaderPairs())
            result.headers.set(name.toStdString(), value.toStdString());
        return result;
    }

    void finish(Answer answer)
    {
        if (m_answer.isFinished())
            return;
        m_timer.stop();
        m_watch.reset();
        if (m_reply) {
            m_reply->disconnect(this);
            m_reply->abort();
        }
        m_transport.ended(this);
        deleteLater();
        m_answer.finish(std::move(answer));
    }

    NetworkTransport &m_transport;
    HttpRequest m_request;
    QUrl m_url;
    QNetworkReply *m_reply = nullptr;
    QTimer m_timer;
    std::unique_ptr<QTcpSocket> m_watch;
    std::string m_body;
    Eventual<Answer> m_answer;
};

NetworkTransport::NetworkTransport(NetworkLimits limits) : m_limits(limits) {}

NetworkTransport::~NetworkTransport() = default;

Task<Answer> NetworkTransport::send(HttpRequest request, std::string baseUrl,
                                    std::shared_ptr<CallAbort> abort)
{
    const QUrl url(QString::fromStdString(baseUrl + request.path), QUrl::StrictMode);
    if (m_closed)
        co_return failure(ConnectionError{"the connection is being closed"});
    if (abort && abort->isAborted())
        co_return failure(ConnectionError{"the call was given up"});
    if (!url.isValid() || url.host().isEmpty())
        co_return failure(ConnectionError{"the server's address cannot be used"});
    auto *call = new NetworkCall(*this, std::move(request), url);
    Eventual<Answer> eventual = call->answer();
    if (abort)
        abort->whileUnderWay([call] { call->end("the call was given up"); });
    m_waiting.push_back(call);
    startWaiting();
    Answer answer = co_await std::move(eventual);
    if (abort)
        abort->done();
    co_return std::move(answer);
}

void NetworkTransport::startWaiting()
{
    while (!m_closed && !m_waiting.empty() && m_running.size() < m_limits.atOnce) {
        if (!m_manager) {
            m_manager = std::make_unique<QNetworkAccessManager>();
            m_manager->setProxyFactory(new ProxyFactory);
        }
        NetworkCall *call = m_waiting.front();
        m_waiting.pop_front();
        m_running.insert(call);
        call->start(*m_manager);
    }
}

void NetworkTransport::ended(NetworkCall *call)
{
    std::erase(m_waiting, call);
    m_running.erase(call);
    // Not from inside the reply's own signal.
    if (m_manager && !m_waiting.empty())
        QMetaObject::invokeMethod(m_manager.get(), [this] { startWaiting(); }, Qt::QueuedConnection);
}

void NetworkTransport::close()
{
    m_closed = true;
    while (!m_waiting.empty())
        m_waiting.front()->end("the connection is being closed");
    while (!m_running.empty())
        (*m_running.begin())->end("the connection is being closed");
    // The replies go by deleteLater too, and one that was only just begun still asks for its manager until
    // then.
    if (m_manager)
        m_manager.release()->deleteLater();
}

} // namespace orvane
