// SPDX-License-Identifier: GPL-3.0-or-later
// The measure for `orvane status`: asks the server on this computer for the same things, and does nothing
// with the answers. BareStatus SOCKET FROM TO, the range as ISO 8601.
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
#include <vector>

namespace {

[[noreturn]] void giveUp(const QString &why)
{
    std::fprintf(stderr, "BareStatus: %s\n", qUtf8Printable(why));
    std::exit(1);
}

QJsonObject ask(QLocalSocket &socket, const QJsonObject &request)
{
    socket.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(5000))
            giveUp(QStringLiteral("the socket does not answer"));
    }
    return QJsonDocument::fromJson(socket.readLine()).object();
}

class Bare {
public:
    explicit Bare(QString address) : m_address(std::move(address)) {}

    void setToken(const QString &token) { m_authorization = "Bearer " + token.toUtf8(); }

    QNetworkReply *get(const QString &path) { return m_network.get(request(path)); }
    QNetworkReply *post(const QString &path, const QJsonObject &body)
    {
        QNetworkRequest posted = request(path);
        posted.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
        return m_network.post(posted, QJsonDocument(body).toJson(QJsonDocument::Compact));
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
    QNetworkAccessManager m_network;
};

QJsonObject codeRequest(const orvane::Pkce &pkce)
{
    return {{QStringLiteral("command"), QStringLiteral("code")},
            {QStringLiteral("codeChallenge"), QString::fromStdString(pkce.challenge)},
            {QStringLiteral("timeZone"), QStringLiteral("UTC")}};
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        giveUp(QStringLiteral("SOCKET FROM TO are needed"));
    QLocalSocket socket;
    // A name that is no absolute path would be looked for in the folder for temporary files.
    socket.connectToServer(QFileInfo(arguments[1]).absoluteFilePath());
    if (!socket.waitForConnected(5000))
        giveUp(socket.errorString());
    const orvane::Pkce pkce = orvane::Pkce::make();
    const QJsonObject hello = ask(socket, {{QStringLiteral("command"), QStringLiteral("hello")}});
    const QString code = ask(socket, codeRequest(pkce)).value(QStringLiteral("code")).toString();

    Bare bare(hello.value(QStringLiteral("address")).toString());
    const QJsonObject exchanged =
        Bare::object(bare.post(QStringLiteral("/api/auth/external/exchange"),
                               {{QStringLiteral("code"), code},
                                {QStringLiteral("codeVerifier"), QString::fromStdString(pkce.verifier)}}));
    bare.setToken(
        exchanged.value(QStringLiteral("tokens")).toObject().value(QStringLiteral("accessToken")).toString());
    const QJsonObject me = Bare::object(bare.get(QStringLiteral("/api/me")));
    const QString workspace =
        QStringLiteral("/api/workspaces/") + me.value(QStringLiteral("defaultWorkspaceId")).toString();
    const std::vector<QNetworkReply *> replies{
        bare.get(workspace + QStringLiteral("/time-entries?from=%1&to=%2").arg(arguments[2], arguments[3])),
        bare.get(QStringLiteral("/api/me/time-entries/current")),
        bare.get(workspace + QStringLiteral("/settings")),
        bare.get(workspace + QStringLiteral("/projects?includeArchived=true")),
        bare.get(workspace + QStringLiteral("/clients?includeArchived=true")),
        bare.get(workspace + QStringLiteral("/tags")),
    };
    qsizetype received = 0;
    for (QNetworkReply *reply : replies)
        received += Bare::body(reply).size();
    std::printf("%lld bytes\n", static_cast<long long>(received));
    return 0;
}
