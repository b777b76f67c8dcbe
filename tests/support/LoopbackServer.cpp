// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/LoopbackServer.h"

#include "Support/Require.h"

#include <arpa/inet.h>
#include <charconv>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvane::testing {

namespace {

sockaddr_in loopback(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

bool sendAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t sent = ::send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

/// Appends what comes next; false at the end of the connection.
bool receiveMore(int descriptor, std::string &buffer)
{
    char bytes[65536];
    const ssize_t count = ::recv(descriptor, bytes, sizeof bytes, 0);
    if (count <= 0)
        return false;
    buffer.append(bytes, static_cast<std::size_t>(count));
    return true;
}

void readHead(std::string_view head, SeenRequest &request)
{
    const auto lineEnd = head.find("\r\n");
    const std::string_view line = head.substr(0, lineEnd);
    const auto first = line.find(' ');
    const auto second = line.find(' ', first + 1);
    request.method = line.substr(0, first);
    request.path = line.substr(first + 1, second - first - 1);
    request.headers = {};
    std::size_t at = lineEnd == std::string_view::npos ? head.size() : lineEnd + 2;
    while (at < head.size()) {
        const auto end = std::min(head.find("\r\n", at), head.size());
        const std::string_view field = head.substr(at, end - at);
        const auto colon = field.find(':');
        if (colon != std::string_view::npos) {
            const auto value = field.find_first_not_of(' ', colon + 1);
            request.headers.set(field.substr(0, colon),
                                std::string(value == std::string_view::npos ? "" : field.substr(value)));
        }
        at = end + 2;
    }
}

std::size_t contentLength(const HttpHeaders &headers)
{
    std::size_t length = 0;
    if (const auto text = headers.find("content-length"))
        std::from_chars(text->data(), text->data() + text->size(), length);
    return length;
}

} // namespace

void LoopbackServer::Connection::send(std::string_view bytes)
{
    if (m_open && !sendAll(m_descriptor, bytes))
        close();
}

void LoopbackServer::Connection::answer(int status, std::string_view body, std::string_view contentType,
                                        const std::vector<HttpHeader> &extra)
{
    std::string message = "HTTP/1.1 " + std::to_string(status) + " Answer\r\n";
    if (!contentType.empty())
        message.append("Content-Type: ").append(contentType).append("\r\n");
    for (const auto &[name, value] : extra)
        message.append(name).append(": ").append(value).append("\r\n");
    if (status != 204)
        message.append("Content-Length: ").append(std::to_string(body.size())).append("\r\n");
    message.append("\r\n").append(body);
    send(message);
}

bool LoopbackServer::Connection::wait(std::chrono::milliseconds time)
{
    std::unique_lock lock(m_server.m_mutex);
    return !m_server.m_changed.wait_for(lock, time, [this] { return m_server.m_stopping.load(); });
}

void LoopbackServer::Connection::hang()
{
    while (m_open && receiveMore(m_descriptor, m_buffer)) {
    }
    close();
}

void LoopbackServer::Connection::close()
{
    if (m_open.exchange(false))
        ::shutdown(m_descriptor, SHUT_RDWR);
}

void LoopbackServer::Connection::reset()
{
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(m_descriptor, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    m_open = false;
}

bool LoopbackServer::Connection::readRequest(SeenRequest &request)
{
    std::size_t headEnd = 0;
    while ((headEnd = m_buffer.find("\r\n\r\n")) == std::string::npos) {
        if (!receiveMore(m_descriptor, m_buffer))
            return false;
    }
    readHead(std::string_view(m_buffer).substr(0, headEnd), request);
    const std::size_t size = headEnd + 4 + contentLength(request.headers);
    while (m_buffer.size() < size) {
        if (!receiveMore(m_descriptor, m_buffer))
            return false;
    }
    request.body = m_buffer.substr(headEnd + 4, size - headEnd - 4);
    m_buffer.erase(0, size);
    return true;
}

LoopbackServer::LoopbackServer(Handler handler) : m_handler(std::move(handler))
{
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    const bool ready = m_listener >= 0 &&
                       ::bind(m_listener, reinterpret_cast<sockaddr *>(&address), size) == 0 &&
                       ::listen(m_listener, 64) == 0 &&
                       ::getsockname(m_listener, reinterpret_cast<sockaddr *>(&address), &size) == 0;
    ORVANE_REQUIRE(ready, "a test's server could not listen on the loopback interface");
    m_port = ntohs(address.sin_port);
    m_acceptor = std::thread([this] { acceptConnections(); });
}

LoopbackServer::~LoopbackServer()
{
    stop();
}

void LoopbackServer::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_stopping.exchange(true))
            return;
    }
    m_changed.notify_all();
    ::shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    ::close(m_listener);
    closeConnections();
    for (std::thread &thread : m_threads)
        thread.join();
}

void LoopbackServer::closeConnections()
{
    const std::lock_guard lock(m_mutex);
    for (Connection &connection : m_connections)
        connection.close();
}

void LoopbackServer::setDown(bool down)
{
    m_down = down;
    if (down)
        closeConnections();
}

std::vector<SeenRequest> LoopbackServer::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

bool LoopbackServer::waitForRequests(std::size_t count) const
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::seconds{10}, [&] { return m_requests.size() >= count; });
}

void LoopbackServer::acceptConnections()
{
    while (!m_stopping) {
        const int descriptor = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0)
            continue;
        const std::lock_guard lock(m_mutex);
        if (m_stopping || m_down) {
            ::close(descriptor);
            continue;
        }
        const int on = 1;
        ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        m_connections.emplace_back(*this, descriptor);
        m_threads.emplace_back([this, connection = std::prev(m_connections.end())] {
            serve(*connection);
            connection->close();
            const std::lock_guard done(m_mutex);
            ::close(connection->m_descriptor);
            m_connections.erase(connection);
        });
    }
}

void LoopbackServer::serve(Connection &connection)
{
    SeenRequest request;
    while (connection.m_open && connection.readRequest(request)) {
        {
            const std::lock_guard lock(m_mutex);
            request.number = static_cast<int>(m_requests.size());
            m_requests.push_back(request);
        }
        m_changed.notify_all();
        m_handler(request, connection);
    }
}

bool isWholeAnswer(const std::string &answer)
{
    const auto headEnd = answer.find("\r\n\r\n");
    if (headEnd == std::string::npos)
        return false;
    SeenRequest head;
    readHead(std::string_view(answer).substr(0, headEnd), head);
    if (head.path == "204" || head.path == "304")
        return true;
    if (head.headers.find("transfer-encoding"))
        return answer.ends_with("0\r\n\r\n");
    const auto length = head.headers.find("content-length");
    return length && answer.size() >= headEnd + 4 + std::stoul(*length);
}

std::string exchangeRaw(std::uint16_t port, std::string_view request)
{
    std::string answer;
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = loopback(port);
    if (::connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 &&
        sendAll(descriptor, request)) {
        while (!isWholeAnswer(answer) && receiveMore(descriptor, answer)) {
        }
    }
    ::close(descriptor);
    return answer;
}

} // namespace orvane::testing
