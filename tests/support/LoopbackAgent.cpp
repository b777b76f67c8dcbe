// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/LoopbackAgent.h"

#include "Session/Pkce.h"
#include "support/Await.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QTcpSocket>
#include <QUrl>
#include <gtest/gtest.h>
#include <memory>

namespace orvane::testing {

namespace {

std::string encoded(const std::string &text)
{
    return QUrl::toPercentEncoding(QString::fromStdString(text)).toStdString();
}

} // namespace

LoopbackAgent::LoopbackAgent(std::string server, const std::string &name)
    : m_server(std::move(server)), m_verifier(Pkce::make().verifier)
{
    EXPECT_TRUE(m_listener.listen(QHostAddress::LocalHost));
    const QJsonObject described{
        {QStringLiteral("client_name"), QString::fromStdString(name)},
        {QStringLiteral("redirect_uris"), QJsonArray{QString::fromStdString(redirect())}}};
    const QByteArray body = QJsonDocument(described).toJson();
    m_clientId = post("/oauth/register", body, "application/json")[QLatin1String("client_id")]
                     .toString()
                     .toStdString();
    EXPECT_FALSE(m_clientId.empty());
}

std::string LoopbackAgent::redirect() const
{
    return "http://127.0.0.1:" + std::to_string(m_listener.serverPort()) + "/callback";
}

std::string LoopbackAgent::programLink() const
{
    return "orvane://agents/authorize?client_id=" + m_clientId + "&redirect_uri=" + encoded(redirect()) +
           "&response_type=code&code_challenge=" + pkceChallenge(m_verifier) +
           "&code_challenge_method=S256&state=s1&resource=" + encoded(m_server + "/mcp");
}

std::string LoopbackAgent::heard()
{
    if (!eventually([this] { return m_listener.hasPendingConnections(); }))
        return {};
    QTcpSocket *socket = m_listener.nextPendingConnection();
    QByteArray head;
    (void)eventually([&] {
        head += socket->readAll();
        return head.contains("\r\n\r\n");
    });
    socket->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\nConnection: close\r\n\r\nok");
    socket->flush();
    const QByteArray start = "GET /callback?";
    return head.startsWith(start) ? head.mid(start.size(), head.indexOf(' ', 4) - start.size()).toStdString()
                                  : std::string();
}

bool LoopbackAgent::getsTokensFor(const std::string &answer)
{
    const std::string before = "code=";
    if (!answer.starts_with(before) || !answer.ends_with("&state=s1"))
        return false;
    const std::string code = answer.substr(before.size(), answer.find('&') - before.size());
    const std::string body = "grant_type=authorization_code&client_id=" + m_clientId + "&code=" + code +
                             "&redirect_uri=" + encoded(redirect()) + "&code_verifier=" + m_verifier;
    const QJsonObject tokens =
        post("/oauth/token", QByteArray::fromStdString(body), "application/x-www-form-urlencoded");
    m_accessToken = tokens[QLatin1String("access_token")].toString().toStdString();
    return !m_accessToken.empty();
}

QJsonObject LoopbackAgent::post(const std::string &path, const QByteArray &body, const char *type)
{
    QNetworkRequest request(QUrl(QString::fromStdString(m_server + path)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QString::fromLatin1(type));
    const std::unique_ptr<QNetworkReply> reply(m_network.post(request, body));
    EXPECT_TRUE(eventually([&] { return reply->isFinished(); }));
    return QJsonDocument::fromJson(reply->readAll()).object();
}

} // namespace orvane::testing
