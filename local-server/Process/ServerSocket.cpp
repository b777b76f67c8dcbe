// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/ServerSocket.h"

#include "LinkWire/LinkSocket.h"
#include "Support/FileDescriptor.h"

#include <QPointer>
#include <QTimer>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace orvane::server {

namespace {

constexpr std::chrono::milliseconds longestQuiet{10'000};
constexpr qsizetype mostConnections = 32;

std::string systemError()
{
    return std::strerror(errno);
}

/// Goes to a folder and comes back. A socket's path has to fit some hundred bytes, and a data folder may lie
/// deeper; from inside the folder the name is short.
class FolderVisit {
public:
    explicit FolderVisit(const std::string &folder)
        : m_before(::open(".", O_RDONLY | O_CLOEXEC | O_DIRECTORY)), m_there(::chdir(folder.c_str()) == 0)
    {
    }
    FolderVisit(const FolderVisit &) = delete;
    FolderVisit &operator=(const FolderVisit &) = delete;
    ~FolderVisit()
    {
        // Without a way back the root does: all paths of the server are absolute.
        if (m_there && (m_before < 0 || ::fchdir(m_before) != 0)) [[maybe_unused]]
            const int moved = ::chdir("/");
        if (m_before >= 0)
            ::close(m_before);
    }
    bool isThere() const { return m_there; }

private:
    int m_before;
    bool m_there;
};

sockaddr_un socketAddress()
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    static_assert(sizeof linkSocketName <= sizeof address.sun_path);
    std::memcpy(address.sun_path, linkSocketName, sizeof linkSocketName);
    return address;
}

int newSocket()
{
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (descriptor >= 0)
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    return descriptor;
}

std::string makeSocketFolder(const std::string &folder)
{
    struct stat info{};
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        return systemError();
    if (::lstat(folder.c_str(), &info) != 0)
        return systemError();
    if (!S_ISDIR(info.st_mode) || info.st_uid != ::geteuid())
        return "it is not a folder of this user";
    return (info.st_mode & 0777U) == 0700U || ::chmod(folder.c_str(), 0700) == 0 ? "" : systemError();
}

} // namespace

ServerSocket::ServerSocket(Answer answer) : m_answer(std::move(answer))
{
    connect(&m_server, &QLocalServer::newConnection, this, &ServerSocket::accept);
}

ServerSocket::~ServerSocket()
{
    close();
}

std::string ServerSocket::listen(const std::string &folder)
{
    if (auto fault = makeSocketFolder(folder); !fault.empty())
        return fault;
    const FolderVisit visit(folder);
    const int descriptor = newSocket();
    const sockaddr_un address = socketAddress();
    // Whoever held the old one is gone: the data folder's lock is ours.
    ::unlink(linkSocketName);
    if (!visit.isThere() || descriptor < 0 ||
        ::bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        ::chmod(linkSocketName, 0600) != 0 || ::listen(descriptor, SOMAXCONN) != 0 ||
        !m_server.listen(descriptor)) {
        auto fault = systemError();
        if (descriptor >= 0)
            ::close(descriptor);
        return fault;
    }
    m_path = folder + "/" + linkSocketName;
    return {};
}

void ServerSocket::close()
{
    if (m_path.empty())
        return;
    m_server.close();
    ::unlink(m_path.c_str());
    m_path.clear();
}

void ServerSocket::accept()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        if (!isOwnUsersSocket(socket->socketDescriptor()) ||
            m_server.findChildren<QLocalSocket *>().size() > mostConnections) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
        auto *quiet = new QTimer(socket);
        quiet->setSingleShot(true);
        connect(quiet, &QTimer::timeout, socket, &QLocalSocket::abort);
        quiet->start(longestQuiet);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket, quiet] {
            quiet->start(longestQuiet);
            read(socket);
        });
        read(socket);
    }
}

void ServerSocket::read(QLocalSocket *socket)
{
    while (socket->canReadLine())
        answer(socket, socket->readLine(longestLinkLine));
    if (socket->bytesAvailable() >= longestLinkLine)
        socket->abort();
}

void ServerSocket::answer(QLocalSocket *socket, const QByteArray &line)
{
    const Reply reply = [socket = QPointer(socket)](const LinkAnswer &answer) {
        if (!socket)
            return;
        socket->write(QByteArray::fromStdString(encodeJson(answer) + "\n"));
        socket->flush();
    };
    const auto request = decodeJson<LinkRequest>(line.toStdString());
    if (request)
        m_answer(*request, reply);
    else
        reply(LinkAnswer::refusal("the request is not understood"));
}

bool serverAnswersIn(const std::string &folder)
{
    const FolderVisit visit(folder);
    const FileDescriptor client(visit.isThere() ? newSocket() : -1);
    const sockaddr_un address = socketAddress();
    return client &&
           ::connect(client.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
}

} // namespace orvane::server
