// SPDX-License-Identifier: GPL-3.0-or-later
#include "LiveSync/ScriptedHub.h"

#include "OrvaneAPI/Schemas.h"
#include "Support/Json.h"

#include <QTcpSocket>
#include <QWebSocket>
#include <algorithm>

namespace orvane::testing {

namespace {

constexpr char separator = '\x1e';

/// Nothing while it has not come whole.
std::optional<SeenRequest> requestIn(const QByteArray &bytes)
{
    const qsizetype headEnd = bytes.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return std::nullopt;
    const QList<QByteArray> lines = bytes.left(headEnd).split('\n');
    const QList<QByteArray> first = lines.front().split(' ');
    SeenRequest request;
    request.method = first.value(0).toStdString();
    request.path = first.value(1).toStdString();
    for (const QByteArray &line : lines.mid(1)) {
        const qsizetype colon = line.indexOf(':');
        request.headers.set(line.left(colon).toStdString(), line.mid(colon + 1).trimmed().toStdString());
    }
    const auto length = std::stoul(request.headers.find("Content-Length").value_or("0"));
    request.body = bytes.mid(headEnd + 4).toStdString();
    if (request.body.size() < length)
        return std::nullopt;
    return request;
}

AuthTokensResponse tokens(int number)
{
    const Instant now = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    return {.accessToken = "a" + std::to_string(number) + "+/=",
            .accessTokenExpiresAt = now + std::chrono::minutes{15},
            .refreshToken = "r" + std::to_string(number),
            .refreshTokenExpiresAt = now + std::chrono::days{30}};
}

std::string memberIn(const std::string &message, const std::string &name)
{
    const std::string mark = "\"" + name + "\":\"";
    const std::size_t begin = message.find(mark);
    if (begin == std::string::npos)
        return {};
    return message.substr(begin + mark.size(), message.find('"', begin + mark.size()) - begin - mark.size());
}

template <class T>
std::optional<T> next(std::deque<T> &script)
{
    if (script.empty())
        return std::nullopt;
    T first = std::move(script.front());
    script.pop_front();
    return first;
}

} // namespace

ScriptedHub::ScriptedHub() : m_upgrader(QStringLiteral("hub"), QWebSocketServer::NonSecureMode)
{
    connect(&m_listener, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_listener.nextPendingConnection())
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
    });
    connect(&m_upgrader, &QWebSocketServer::newConnection, this, &ScriptedHub::welcome);
    setDown(false);
}

ScriptedHub::~ScriptedHub()
{
    delete m_socket;
}

std::string ScriptedHub::url() const
{
    return "http://127.0.0.1:" + std::to_string(m_port);
}

void ScriptedHub::setDown(bool isDown)
{
    if (isDown) {
        m_listener.close();
        for (QTcpSocket *socket : m_listener.findChildren<QTcpSocket *>())
            socket->abort();
    } else if (m_listener.listen(QHostAddress::LocalHost, m_port)) {
        m_port = m_listener.serverPort();
    }
}

int ScriptedHub::count(const std::string &path) const
{
    return static_cast<int>(requestsFor(path).size());
}

std::vector<SeenRequest> ScriptedHub::requestsFor(const std::string &path) const
{
    std::vector<SeenRequest> found;
    std::ranges::copy_if(requests, std::back_inserter(found),
                         [&](const SeenRequest &request) { return request.path.starts_with(path); });
    return found;
}

void ScriptedHub::serve(QTcpSocket *socket)
{
    const auto request = requestIn(socket->peek(1 << 20));
    if (!request)
        return;
    requests.push_back(*request);
    const bool isUpgrade = request->headers.find("Upgrade").has_value();
    if (isUpgrade && refusals.empty()) {
        socket->disconnect(this);
        m_raw = socket;
        m_upgrader.handleConnection(socket);
        return;
    }
    socket->readAll();
    answer(socket, *request);
}

void ScriptedHub::answer(QTcpSocket *socket, const SeenRequest &request)
{
    const HttpResponse response = answerTo(request);
    if (response.status == 0)
        return;
    socket->write(QByteArray::fromStdString("HTTP/1.1 " + std::to_string(response.status) +
                                            " Answer\r\nContent-Type: application/json\r\nContent-Length: " +
                                            std::to_string(response.body.size()) + "\r\n\r\n" +
                                            response.body));
}

HttpResponse ScriptedHub::answerTo(const SeenRequest &request)
{
    if (request.headers.find("Upgrade"))
        return *next(refusals);
    const auto done = [](std::string body) { return HttpResponse{200, {}, std::move(body)}; };
    if (request.path == "/api/auth/external/exchange" || request.path == "/api/auth/refresh") {
        if (const auto told = next(tokenAnswers))
            return *told;
        const AuthTokensResponse issued = tokens(++m_tokens);
        return done(request.path == "/api/auth/refresh"
                        ? encodeJson(issued)
                        : encodeJson(ExternalSignInResponse{.tokens = issued, .isNewAccount = false}));
    }
    if (!request.path.starts_with("/api/hubs/sync/negotiate"))
        return done("[]");
    if (const auto told = next(negotiations))
        return *told;
    const std::string number = std::to_string(++m_negotiated);
    return done(R"({"negotiateVersion":1,"connectionId":"id-)" + number + R"(","connectionToken":"token )" +
                number + R"(&=+","availableTransports":[]})");
}

void ScriptedHub::welcome()
{
    QWebSocket *socket = m_upgrader.nextPendingConnection();
    m_socket = socket;
    m_isGreeted = false;
    connect(socket, &QWebSocket::textMessageReceived, this, [this](const QString &text) {
        for (const QString &message : text.split(QLatin1Char(separator), Qt::SkipEmptyParts))
            take(message.toStdString());
    });
    connect(socket, &QWebSocket::disconnected, this, [this, socket] {
        closeCodes.push_back(socket->closeCode());
        socket->deleteLater();
    });
}

void ScriptedHub::take(const std::string &message)
{
    messages.push_back(message);
    if (!std::exchange(m_isGreeted, true)) {
        const std::string words = next(firstWords).value_or(std::string("{}") + separator);
        if (!words.empty()) {
            ++connections;
            say(words);
        }
        return;
    }
    if (memberIn(message, "target") == "Watch" && watchAnswer)
        say(R"({"type":3,"invocationId":")" + memberIn(message, "invocationId") + R"(",)" + *watchAnswer +
            "}" + separator);
}

void ScriptedHub::say(const std::string &text)
{
    m_socket->sendTextMessage(QString::fromStdString(text));
}

std::string ScriptedHub::change(const std::string &topic, const std::string &workspaceId,
                                const std::string &userId)
{
    return R"({"type":1,"target":"Changed","arguments":[{"topic":")" + topic + R"(","workspaceId":")" +
           workspaceId + R"(","userId":")" + userId + R"("}]})" + separator;
}

void ScriptedHub::sayRaw(const QByteArray &bytes)
{
    m_raw->write(bytes);
}

void ScriptedHub::sayBinary(const QByteArray &bytes)
{
    m_socket->sendBinaryMessage(bytes);
}

void ScriptedHub::drop()
{
    m_raw->abort();
}

} // namespace orvane::testing
