// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/SingleInstance.h"

#include "Support/FolderSafety.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QLocalSocket>
#include <QThread>
#include <algorithm>
#include <array>
#include <sys/stat.h>

namespace orvane {

namespace {

constexpr int answerPatience = 1000; // milliseconds
constexpr qint64 longestWish = 4200;
const QByteArray takenLine = QByteArrayLiteral("taken\n");

/// The wishes as they are on the wire, a line each: the word, and after a space what comes along.
const std::array<std::pair<SingleInstance::Wish, QByteArray>, 3> wishWords{
    {{SingleInstance::Wish::raise, QByteArrayLiteral("raise")},
     {SingleInstance::Wish::panel, QByteArrayLiteral("panel")},
     {SingleInstance::Wish::agent, QByteArrayLiteral("agent")}}};

std::string ownFolder(const std::string &folder)
{
    const std::string own = folder + "/window";
    ::mkdir(own.c_str(), S_IRWXU);
    return own;
}

} // namespace

SingleInstance::SingleInstance(const std::string &folder)
    : m_socketPath(QString::fromStdString(ownFolder(folder) + "/socket")), m_lock(folder + "/window/lock")
{
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::hear);
}

bool SingleInstance::takeOrHandOver(Wish wish, const QString &detail)
{
    const QDeadlineTimer end(patience);
    while (true) {
        if (m_lock.tryLock()) {
            // Who cannot be reached is still alone.
            listen();
            return true;
        }
        if (!m_lock.error().empty())
            return true;
        if (handOver(wish, detail) || end.hasExpired())
            return false;
        QThread::msleep(20);
    }
}

void SingleInstance::retire()
{
    m_server.close();
}

bool SingleInstance::listen()
{
    if (!folderFault(m_socketPath.left(m_socketPath.lastIndexOf(QLatin1Char('/'))).toStdString()).empty())
        return false;
    // Of one that was killed.
    QFile::remove(m_socketPath);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    return m_server.listen(m_socketPath);
}

/// Whether the first has said that it takes the wish.
bool SingleInstance::handOver(Wish wish, const QString &detail)
{
    const auto word = std::ranges::find(wishWords, wish, [](const auto &pair) { return pair.first; });
    QLocalSocket socket;
    socket.connectToServer(m_socketPath);
    if (!socket.waitForConnected(answerPatience))
        return false;
    socket.write(word->second + (detail.isEmpty() ? QByteArray() : ' ' + detail.toUtf8()) + '\n');
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(answerPatience))
            return false;
    }
    return socket.readLine(longestWish) == takenLine;
}

void SingleInstance::hear()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(*socket); });
        read(*socket);
    }
}

/// One line; what is none of ours, or goes on without an end, is passed over.
void SingleInstance::read(QLocalSocket &socket)
{
    if (!socket.canReadLine() && socket.bytesAvailable() < longestWish)
        return;
    const QByteArray line = socket.readLine(longestWish);
    const qsizetype space = line.indexOf(' ');
    const QByteArray word = space < 0 ? line.trimmed() : line.left(space);
    const auto wish = std::ranges::find(wishWords, word, [](const auto &pair) { return pair.second; });
    const bool hasDetail = space >= 0;
    if (wish == wishWords.end() || !line.endsWith('\n') || hasDetail != (wish->first == Wish::agent)) {
        socket.abort();
        return;
    }
    socket.write(takenLine);
    socket.disconnectFromServer();
    Q_EMIT wished(wish->first, hasDetail ? QString::fromUtf8(line.mid(space)).trimmed() : QString());
}

} // namespace orvane
