// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace orvane::testing {

/// A request as it came over the wire. `number` counts from 0 over all connections.
struct SeenRequest {
    int number = 0;
    std::string method;
    std::string path;
    HttpHeaders headers;
    std::string body;
};

/// A plain HTTP/1.1 server on 127.0.0.1 whose handler writes raw bytes, so that a test decides about every
/// one of them. Blocking sockets, a thread for each connection; the destructor closes everything and joins.
class LoopbackServer {
public:
    /// One connection, as a handler sees it; used on the connection's own thread.
    class Connection {
    public:
        Connection(LoopbackServer &server, int descriptor) : m_server(server), m_descriptor(descriptor) {}
        void send(std::string_view bytes);
        /// A whole answer with its Content-Length; the connection stays open.
        void answer(int status, std::string_view body, std::string_view contentType = "application/json",
                    const std::vector<HttpHeader> &extra = {});
        /// Waits; false when the server is being closed meanwhile.
        bool wait(std::chrono::milliseconds time);
        /// Says nothing until the other side hangs up or the server is closed.
        void hang();
        void close();
        /// Ends the connection as a crash of the other side does, without a proper end.
        void reset();

    private:
        friend class LoopbackServer;
        bool readRequest(SeenRequest &request);

        LoopbackServer &m_server;
        std::string m_buffer;
        int m_descriptor;
        std::atomic<bool> m_open = true;
    };

    using Handler = std::function<void(const SeenRequest &, Connection &)>;

    explicit LoopbackServer(Handler handler);
    LoopbackServer(const LoopbackServer &) = delete;
    LoopbackServer &operator=(const LoopbackServer &) = delete;
    ~LoopbackServer();

    std::uint16_t port() const { return m_port; }
    std::string url() const { return "http://127.0.0.1:" + std::to_string(m_port); }
    /// What has been asked so far.
    std::vector<SeenRequest> requests() const;
    /// Waits until so many requests have come; false when they did not within 10 s.
    bool waitForRequests(std::size_t count) const;
    /// While down, connections are closed as soon as they come, and those that are open end.
    void setDown(bool down);

protected:
    /// For a derived class that handles requests by itself: call in its destructor, before its members go.
    void stop();

private:
    void acceptConnections();
    void serve(Connection &connection);
    void closeConnections();

    Handler m_handler;
    int m_listener = -1;
    std::uint16_t m_port = 0;
    std::atomic<bool> m_stopping = false;
    std::atomic<bool> m_down = false;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<SeenRequest> m_requests;
    std::list<Connection> m_connections;
    std::vector<std::thread> m_threads;
    std::thread m_acceptor;
};

/// Whether nothing more of an HTTP answer can follow: by its Content-Length or chunks, or since its status
/// has no body.
bool isWholeAnswer(const std::string &answer);

/// One request over a fresh connection to 127.0.0.1: the raw answer, as far as it came.
std::string exchangeRaw(std::uint16_t port, std::string_view request);

} // namespace orvane::testing
