// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/SingleInstance.h"

#include "Support/FolderSafety.h"

#include <QFile>
#include <QLocalSocket>
#include <QPointer>
#include <sys/stat.h>

namespace orvane {

namespace {

constexpr int patience = 1000; // milliseconds
constexpr qint64 longestWish = 16;
const QByteArray raiseLine = QByteArrayLiteral("raise\n");

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

bool SingleInstance::takeOrHandOver(Wish wish)
{
    if (m_lock.tryLock()) {
        // Who cannot be reached is still alone.
        listen();
        return true;
    }
    if (!m_lock.error().empty())
        return true;
    handOver(wish);
    return false;
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

void SingleInstance::handOver(Wish)
{
    QLocalSocket socket;
    socket.connectToServer(m_socketPath);
    if (!socket.waitForConnected(patience))
        return;
    socket.write(raiseLine);
    socket.waitForBytesWritten(patience);
    socket.disconnectFromServer();
}

void SingleInstance::hear()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        const auto read = [this, socket] {
            if (socket->canReadLine() && socket->readLine(longestWish) == raiseLine)
                Q_EMIT wished(Wish::raise);
            else if (socket->bytesAvailable() >= longestWish)
                socket->abort();
        };
        connect(socket, &QLocalSocket::readyRead, this, read);
        read();
    }
}

} // namespace orvane
