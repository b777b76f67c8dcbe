// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Session/Pkce.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <cstdio>
#include <cstdlib>
#include <memory>

/// What the bare programs that the command is measured beside have in common: the least that asks the server
/// on this computer for something.
namespace orvane::bare {

[[noreturn]] inline void giveUp(const QString &why)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(why));
    std::exit(1);
}

inline QJsonObject ask(QLocalSocket &socket, const QJsonObject &request)
{
    socket.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(5000))
            giveUp(QStringLiteral("the socket does not answer"));
    }
    return QJsonDocument::fromJson(socket.readLine()).object();
}

class Client {
public:
    explicit Client(QString address) : m_address(std::move(address)) {}

    void setToken(const QString &token) { m_authorization = "Bearer " + token.toUtf8(); }

    QNetworkReply *get(const QString &path) { return m_network->get(request(path)); }
    QNetworkReply *post(const QString &path, const QJsonObject &body)
    {
        QNetworkRequest posted = request(path);
        posted.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
        return m_network->post(posted, QJsonDocument(body).toJson(QJsonDocument::Compact));
    }

    /// The answer's body, once it is whole.
    static QByteArray body(QNetworkReply *reply)
    {
        if (!reply->isFinished()) {
            QEventLoop loop;
            QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
            loop.exec();
        }
        if (reply->error() != QNetworkReply::NoError)
            giveUp(reply->errorString());
        return reply->readAll();
    }
    static QJsonObject object(QNetworkReply *reply) { return QJsonDocument::fromJson(body(reply)).object(); }

private:
    QNetworkRequest request(const QString &path) const
    {
        QNetworkRequest made{QUrl(m_address + path)};
        if (!m_authorization.isEmpty())
            made.setRawHeader("Authorization", m_authorization);
        return made;
    }

    QString m_address;
    QByteArray m_authorization;
    std::unique_ptr<QNetworkAccessManager> m_network = std::make_unique<QNetworkAccessManager>();
};

inline QJsonObject codeRequest(const Pkce &pkce)
{
    return {{QStringLiteral("command"), QStringLiteral("code")},
            {QStringLiteral("codeChallenge"), QString::fromStdString(pkce.challenge)},
            {QStringLiteral("timeZone"), QStringLiteral("UTC")}};
}

/// Signed in to the account on this computer through the server's socket.
inline Client signedIn(const QString &path)
{
    QLocalSocket socket;
    // A name that is no absolute path would be looked for in the folder for temporary files.
    socket.connectToServer(QFileInfo(path).absoluteFilePath());
    if (!socket.waitForConnected(5000))
        giveUp(socket.errorString());
    const Pkce pkce = Pkce::make();
    const QJsonObject hello = ask(socket, {{QStringLiteral("command"), QStringLiteral("hello")}});
    const QString code = ask(socket, codeRequest(pkce)).value(QStringLiteral("code")).toString();
    Client client(hello.value(QStringLiteral("address")).toString());
    const QJsonObject exchanged = Client::object(
        client.post(QStringLiteral("/api/auth/external/exchange"),
                    {{QStringLiteral("code"), code},
                     {QStringLiteral("codeVerifier"), QString::fromStdString(pkce.verifier)}}));
    client.setToken(
        exchanged.value(QStringLiteral("tokens")).toObject().value(QStringLiteral("accessToken")).toString());
    return client;
}

/// The path of the account's usual workspace.
inline QString workspaceOf(Client &client)
{
    const QJsonObject me = Client::object(client.get(QStringLiteral("/api/me")));
    return QStringLiteral("/api/workspaces/") + me.value(QStringLiteral("defaultWorkspaceId")).toString();
}

} // namespace orvane::bare
