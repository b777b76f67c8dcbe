// SPDX-License-Identifier: GPL-3.0-or-later
#include "SignIn/CallbackSocket.h"

#include "Account/Installation.h"
#include "Support/FolderSafety.h"

#include <QFile>
#include <QLocalSocket>
#include <filesystem>
#include <sys/stat.h>

namespace orvane {

namespace {

constexpr int patience = 1000; // milliseconds
const QByteArray takenLine = QByteArrayLiteral("taken\n");

QString socketIn(const std::string &folder)
{
    return QString::fromStdString(folder + "/callback");
}

} // namespace

std::string CallbackSocket::usualFolder()
{
    return Installation().root() + "/sign-in";
}

bool CallbackSocket::deliver(const std::string &folder, const std::string &address)
{
    const bool isWhole = address.size() < longestAddress && !address.contains('\n');
    if (!isWhole || !folderFault(folder).empty())
        return false;
    QLocalSocket socket;
    socket.connectToServer(socketIn(folder));
    if (!socket.waitForConnected(patience))
        return false;
    socket.write(QByteArray::fromStdString(address + "\n"));
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(patience))
            return false;
    }
    return socket.readLine() == takenLine;
}

CallbackSocket::CallbackSocket(const std::string &folder)
{
    connect(&m_server, &QLocalServer::newConnection, this, &CallbackSocket::hear);
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(folder).parent_path(), error);
    ::mkdir(folder.c_str(), S_IRWXU);
    if (!folderFault(folder).empty())
        return;
    // Of one that was killed, or of an attempt that this one takes the place of.
    QFile::remove(socketIn(folder));
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    m_server.listen(socketIn(folder));
}

void CallbackSocket::hear()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(*socket); });
        read(*socket);
    }
}

/// One line; what goes on without an end is passed over.
void CallbackSocket::read(QLocalSocket &socket)
{
    if (!socket.canReadLine()) {
        if (socket.bytesAvailable() >= longestAddress)
            socket.abort();
        return;
    }
    const QByteArray line = socket.readLine(longestAddress + 1);
    socket.write(takenLine);
    // Whoever hears of the address may end this, and the connection with it.
    socket.flush();
    socket.disconnectFromServer();
    Q_EMIT arrived(QString::fromUtf8(line).trimmed());
}

} // namespace orvane
