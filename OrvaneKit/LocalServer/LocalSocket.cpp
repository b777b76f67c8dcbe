// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalServer/LocalSocket.h"

#include "LinkWire/LinkSocket.h"

#include <QThread>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace orvane {

namespace {

/// What fits a socket's address everywhere.
constexpr std::size_t shortPath = 100;

/// An open descriptor of the folder of the socket, once it is sure that nobody else can put one there.
Result<int, LinkError> openOwnFolder(const std::string &path)
{
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) {
        if (errno == ENOENT)
            return failure(LinkError{LinkError::Kind::notRunning});
        return failure(LinkError{LinkError::Kind::untrusted,
                                 std::string("The folder of the server's socket: ") + std::strerror(errno)});
    }
    struct stat info{};
    if (::fstat(descriptor, &info) == 0 && info.st_uid == ::geteuid() && (info.st_mode & 0077) == 0)
        return descriptor;
    ::close(descriptor);
    return failure(LinkError{LinkError::Kind::untrusted,
                             "The folder of the server's socket is open to other users of this computer."});
}

/// A name of the socket that is short enough, where there is one.
std::optional<std::string> socketPath(const std::string &folder, [[maybe_unused]] int folderDescriptor)
{
    std::string path = folder + "/" + linkSocketName;
    if (path.size() <= shortPath)
        return path;
#ifdef __linux__
    return "/proc/self/fd/" + std::to_string(folderDescriptor) + "/" + linkSocketName;
#else
    return std::nullopt;
#endif
}

/// Through the event loop, since it may be let go of inside one of its own signals; a loop that has ended
/// deletes nothing more.
void letGo(LocalSocket *socket)
{
    const QThread *thread = socket->thread();
    if (thread == nullptr || thread->isFinished())
        delete socket;
    else
        socket->deleteLater();
}

LinkError connectError(QLocalSocket::LocalSocketError error, const QString &text)
{
    if (error == QLocalSocket::ServerNotFoundError || error == QLocalSocket::ConnectionRefusedError)
        return {LinkError::Kind::notRunning};
    return LinkError::failed("The server's socket: " + text.toStdString());
}

} // namespace

LocalSocket::LocalSocket()
{
    m_timer.setSingleShot(true);
    connectSignals();
}

LocalSocket::~LocalSocket()
{
    m_socket.disconnect(this);
    if (m_folderDescriptor >= 0)
        ::close(m_folderDescriptor);
}

bool LocalSocket::isOpen() const
{
    if (m_socket.state() != QLocalSocket::ConnectedState)
        return false;
    char byte = 0;
    const int descriptor = static_cast<int>(m_socket.socketDescriptor());
    const auto count = ::recv(descriptor, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return count > 0 || (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK));
}

void LocalSocket::connectSignals()
{
    connect(&m_timer, &QTimer::timeout, this,
            [this] { failWith(LinkError::failed("The server on this computer does not answer.")); });
    connect(&m_socket, &QLocalSocket::connected, this, [this] {
        if (m_connecting)
            m_connecting->finish(std::nullopt);
    });
    connect(&m_socket, &QLocalSocket::errorOccurred, this, [this](QLocalSocket::LocalSocketError error) {
        failWith(connectError(error, m_socket.errorString()));
    });
    connect(&m_socket, &QLocalSocket::disconnected, this,
            [this] { failWith(LinkError::failed("The server on this computer hung up.")); });
    connect(&m_socket, &QLocalSocket::readyRead, this, &LocalSocket::readLine);
}

void LocalSocket::failWith(LinkError error)
{
    m_timer.stop();
    // What waits may let go of this object.
    const auto connecting = std::exchange(m_connecting, std::nullopt);
    const auto asking = std::exchange(m_asking, std::nullopt);
    if (connecting)
        auto(*connecting).finish(error);
    if (asking)
        auto(*asking).finish(failure(error));
}

Task<LocalSocket::Connected> LocalSocket::connectTo(std::string folder, std::chrono::milliseconds limit)
{
    if (limit <= std::chrono::milliseconds::zero())
        co_return failure(LinkError::failed("There is no time left to ask the server on this computer."));
    const std::string runFolder = folder + "/" + linkFolderName;
    const auto descriptor = openOwnFolder(runFolder);
    if (!descriptor)
        co_return failure(descriptor.error());
    std::shared_ptr<LocalSocket> self(new LocalSocket, letGo);
    self->m_folderDescriptor = *descriptor;
    const auto path = socketPath(runFolder, *descriptor);
    if (!path)
        co_return failure(LinkError::failed("The path of the server's socket is too long."));

    const Eventual<std::optional<LinkError>> connecting;
    self->m_connecting = connecting;
    self->m_timer.start(limit);
    self->m_socket.connectToServer(QString::fromStdString(*path));
    const auto error = co_await connecting;
    self->m_timer.stop();
    self->m_connecting.reset();
    if (error)
        co_return failure(LinkError(*error));
    if (!isOwnUsersSocket(self->m_socket.socketDescriptor())) {
        self->m_socket.abort();
        co_return failure(LinkError{LinkError::Kind::untrusted,
                                    "The server's socket belongs to another user of this computer."});
    }
    co_return std::move(self);
}

Task<LocalSocket::Answered> LocalSocket::ask(std::shared_ptr<LocalSocket> socket, LinkRequest request,
                                             std::chrono::milliseconds limit)
{
    if (!socket->isOpen())
        co_return failure(LinkError::failed("The server on this computer hung up."));
    const Eventual<Answered> asking;
    socket->m_asking = asking;
    socket->m_timer.start(limit);
    socket->m_socket.write(QByteArray::fromStdString(encodeJson(request) + "\n"));
    socket->m_socket.flush();
    co_return co_await asking;
}

void LocalSocket::readLine()
{
    if (!m_asking)
        return;
    if (!m_socket.canReadLine()) {
        if (m_socket.bytesAvailable() >= longestLinkLine)
            failWith(LinkError::failed("The server's socket answers without end."));
        return;
    }
    m_timer.stop();
    auto asking = *std::exchange(m_asking, std::nullopt);
    auto answer = decodeJson<LinkAnswer>(m_socket.readLine(longestLinkLine).toStdString());
    if (!answer)
        asking.finish(
            failure(LinkError::failed("The server's socket gave an answer that could not be read.")));
    else if (answer->error)
        asking.finish(failure(LinkError::failed(std::move(*answer->error))));
    else
        asking.finish(std::move(*answer));
}

} // namespace orvane
