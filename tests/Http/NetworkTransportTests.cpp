// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/NetworkTransport.h"

#include "Http/NetworkThread.h"
#include "support/Await.h"
#include "support/FaultProxy.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using testing::await;
using testing::LoopbackServer;
using testing::SeenRequest;
using Answer = Result<HttpResponse, ConnectionError>;

Task<Answer> send(NetworkThread &thread, HttpRequest request, std::string url)
{
    return thread.run([transport = thread.transport(), request = std::move(request), url = std::move(url)] {
        return transport->send(request, url, nullptr);
    });
}

HttpRequest get(std::string path)
{
    return {.method = HttpMethod::get, .path = std::move(path), .headers = {}, .body = {}};
}

/// Answers every request with these bytes and hangs up.
LoopbackServer::Handler raw(std::string bytes)
{
    return [bytes = std::move(bytes)](const SeenRequest &, LoopbackServer::Connection &connection) {
        connection.send(bytes);
        connection.close();
    };
}

TEST(NetworkTransport, BringsAnswersOfEveryStatusWithTheirBodies)
{
    LoopbackServer server([](const SeenRequest &request, LoopbackServer::Connection &connection) {
        const int status = std::stoi(request.path.substr(1));
        connection.answer(status, status == 204 ? "" : request.method + ":" + request.body, "text/plain",
                          {{"X-Note", "n"}});
    });
    NetworkThread thread;
    for (const int status : {200, 201, 204, 301, 399, 400, 401, 404, 407, 412, 500, 503}) {
        HttpRequest request{
            .method = HttpMethod::put, .path = "/" + std::to_string(status), .headers = {}, .body = "{}"};
        const Answer answer = await(send(thread, request, server.url()));
        ASSERT_TRUE(answer) << status << answer.error().underlying;
        EXPECT_EQ(answer->status, status);
        EXPECT_EQ(answer->body, status == 204 ? "" : "PUT:{}");
        EXPECT_EQ(answer->headers.find("x-note"), "n");
    }
    EXPECT_EQ(server.requests().front().headers.find("content-type"), "application/json");
}

TEST(NetworkTransport, LeavesARedirectToItsCaller)
{
    LoopbackServer elsewhere([](const SeenRequest &, LoopbackServer::Connection &connection) {
        connection.answer(200, "stolen");
    });
    LoopbackServer server([&](const SeenRequest &, LoopbackServer::Connection &connection) {
        connection.answer(301, "", "", {{"Location", elsewhere.url() + "/"}});
    });
    NetworkThread thread;
    HttpRequest request = get("/");
    request.headers.set("Authorization", "Bearer secret");
    const Answer answer = await(send(thread, request, server.url()));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 301);
    EXPECT_TRUE(elsewhere.requests().empty());
}

TEST(NetworkTransport, TellsABrokenConnectionFromAnAnswer)
{
    const std::string broken[] = {
        "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nonly this",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n20\r\nonly this",
        "HTTP/1.1 200 OK\r\nContent-Length: 10",
        "\x16\x03\x01 this is no HTTP\r\n\r\n",
        "",
    };
    NetworkThread thread;
    for (const std::string &bytes : broken) {
        LoopbackServer server(raw(bytes));
        const Answer answer = await(send(thread, get("/"), server.url()));
        ASSERT_FALSE(answer) << bytes << " -> " << answer->status << answer->body;
        EXPECT_FALSE(answer.error().underlying.empty());
    }
    EXPECT_FALSE(await(send(thread, get("/"), "http://127.0.0.1:1")));
    EXPECT_FALSE(await(send(thread, get("/"), "not an address")));
    EXPECT_FALSE(await(send(thread, get("/"), "")));
}

/// Whoever took a cut refusal for the server's word would drop a change for it.
TEST(NetworkTransport, DoesNotTakeARefusalThatWasCutForAnAnswer)
{
    NetworkThread thread;
    for (const char *status : {"400 Bad Request", "401 Unauthorized", "404 Not Found", "409 Conflict",
                               "412 Precondition Failed", "422 Unprocessable", "503 Unavailable"}) {
        const std::string head = std::string("HTTP/1.1 ") + status + "\r\nContent-Type: application/json\r\n";
        for (const std::string rest :
             {"Content-Length: 100\r\n\r\n{\"title\":", "Content-Length: 100\r\n\r\n",
              "Transfer-Encoding: chunked\r\n\r\n9\r\n{\"title\":\r\n",
              "Transfer-Encoding: chunked\r\n\r\n20\r\n{\"title\":", "Content-Length: 10"}) {
            LoopbackServer cut(raw(head + rest));
            const Answer closed = await(send(thread, get("/"), cut.url()));
            EXPECT_FALSE(closed) << status << " " << rest << " -> " << closed->body;

            LoopbackServer crashing([&](const SeenRequest &, LoopbackServer::Connection &connection) {
                connection.send(head + rest);
                connection.reset();
            });
            EXPECT_FALSE(await(send(thread, get("/"), crashing.url()))) << status << " " << rest;
        }
        LoopbackServer whole(raw(head + "Transfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n"));
        const Answer answer = await(send(thread, get("/"), whole.url()));
        ASSERT_TRUE(answer) << status << answer.error().underlying;
        EXPECT_EQ(answer->body, "{}");
    }
}

TEST(NetworkTransport, KeepsTheStatusOfARefusalThatIsHuge)
{
    NetworkThread thread;
    LoopbackServer huge([](const SeenRequest &, LoopbackServer::Connection &connection) {
        connection.answer(500, std::string(std::size_t{2} << 20, 'x'));
    });
    const Answer much = await(send(thread, get("/"), huge.url()));
    ASSERT_TRUE(much);
    EXPECT_EQ(much->status, 500);
    EXPECT_EQ(much->body.size(), (std::size_t{1} << 20) + 1);
}

TEST(NetworkTransport, RefusesAnAnswerBeyondItsLimit)
{
    LoopbackServer server([](const SeenRequest &request, LoopbackServer::Connection &connection) {
        connection.answer(200, std::string(request.path == "/small" ? 999 : 1000, 'x'));
    });
    NetworkThread thread({.answer = 1000});
    EXPECT_TRUE(await(send(thread, get("/small"), server.url())));
    EXPECT_FALSE(await(send(thread, get("/large"), server.url())));
}

TEST(NetworkTransport, GivesUpOnAServerThatSaysNothing)
{
    LoopbackServer server([](const SeenRequest &request, LoopbackServer::Connection &connection) {
        if (request.path == "/half")
            connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf");
        connection.hang();
    });
    // Taken connections are past the first limit, whether or not there is a body that shows it.
    NetworkThread thread({.connect = 1s, .idle = 100ms});
    for (const char *path : {"/", "/half", "/body"}) {
        HttpRequest request = get(path);
        if (request.path == "/body") {
            request.method = HttpMethod::put;
            request.body = "{}";
        }
        const Answer answer = await(send(thread, request, server.url()));
        ASSERT_FALSE(answer);
        EXPECT_EQ(answer.error().underlying, "the connection timed out");
    }
}

TEST(NetworkTransport, BearsASlowAnswerThatKeepsComing)
{
    LoopbackServer server([](const SeenRequest &, LoopbackServer::Connection &connection) {
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\n");
        for (int i = 0; i < 8 && connection.wait(200ms); ++i)
            connection.send("x");
    });
    NetworkThread thread({.idle = 1200ms});
    const Answer answer = await(send(thread, get("/"), server.url()));
    ASSERT_TRUE(answer) << answer.error().underlying;
    EXPECT_EQ(answer->body, "xxxxxxxx");
}

TEST(NetworkTransport, WaitsLongerForAnAnswerThanForAConnection)
{
    LoopbackServer server([](const SeenRequest &, LoopbackServer::Connection &connection) {
        if (connection.wait(600ms))
            connection.answer(200, "at last");
    });
    NetworkThread thread({.connect = 300ms, .idle = 30s});
    const Answer answer = await(send(thread, get("/"), server.url()));
    ASSERT_TRUE(answer) << answer.error().underlying;
    EXPECT_EQ(answer->body, "at last");
}

TEST(NetworkTransport, GivesUpOnAConnectionThatIsNotTaken)
{
    // A full backlog: the system answers no further connection, as a host that drops packets does not.
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr *>(&address), size), 0);
    ASSERT_EQ(::listen(listener, 0), 0);
    ASSERT_EQ(::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size), 0);
    std::vector<int> fillers;
    for (int i = 0; i < 3; ++i) {
        fillers.push_back(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
        ::connect(fillers.back(), reinterpret_cast<sockaddr *>(&address), size);
    }
    NetworkThread thread({.connect = 150ms, .idle = 60s});
    const Answer answer =
        await(send(thread, get("/"), "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port))));
    ASSERT_FALSE(answer);
    EXPECT_EQ(answer.error().underlying, "the connection timed out");
    for (const int filler : fillers)
        ::close(filler);
    ::close(listener);
}

TEST(NetworkTransport, AsksTheServerOnThisComputerWithoutAProxy)
{
    ::setenv("http_proxy", "http://127.0.0.1:1", 1);
    LoopbackServer server([](const SeenRequest &, LoopbackServer::Connection &connection) {
        connection.answer(200, "direct");
    });
    {
        NetworkThread thread;
        const Answer answer = await(send(thread, get("/"), server.url()));
        ASSERT_TRUE(answer) << answer.error().underlying;
        EXPECT_EQ(answer->body, "direct");
    }
    ::unsetenv("http_proxy");
}

TEST(NetworkTransport, LetsManyCallsWaitTheirTurn)
{
    LoopbackServer server([](const SeenRequest &request, LoopbackServer::Connection &connection) {
        connection.wait(1ms);
        connection.answer(200, request.path);
    });
    NetworkThread thread({.atOnce = 3});
    std::vector<Task<Answer>> calls;
    for (int i = 0; i < 40; ++i)
        calls.push_back(send(thread, get("/" + std::to_string(i)), server.url()));
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const Answer answer = await(std::move(calls[i]));
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->body, "/" + std::to_string(i));
    }
}

TEST(NetworkTransport, AnswersWhatIsUnderWayWhenTheThreadEnds)
{
    LoopbackServer server(
        [](const SeenRequest &, LoopbackServer::Connection &connection) { connection.hang(); });
    auto thread = std::make_unique<NetworkThread>(NetworkLimits{.atOnce = 2});
    std::vector<Task<Answer>> calls;
    for (int i = 0; i < 5; ++i)
        calls.push_back(send(*thread, get("/"), server.url()));
    ASSERT_TRUE(server.waitForRequests(2));
    thread.reset();
    for (Task<Answer> &call : calls)
        EXPECT_FALSE(await(std::move(call)));
}

TEST(NetworkTransport, KeepsItsCookiesToNobody)
{
    LoopbackServer server([](const SeenRequest &, LoopbackServer::Connection &connection) {
        connection.answer(200, "", "", {{"Set-Cookie", "id=1; Path=/"}, {"Cache-Control", "max-age=600"}});
    });
    NetworkThread thread;
    ASSERT_TRUE(await(send(thread, get("/"), server.url())));
    ASSERT_TRUE(await(send(thread, get("/"), server.url())));
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_FALSE(requests[1].headers.find("cookie"));
    EXPECT_TRUE(requests[1].headers.find("accept-encoding")->find("gzip") != std::string::npos);
}

} // namespace
} // namespace orvane
