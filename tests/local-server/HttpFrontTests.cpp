// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/HttpFront.h"

#include "support/Await.h"

#include <QTcpSocket>
#include <gtest/gtest.h>
#include <vector>

namespace orvane::server {

namespace {

using orvane::testing::eventually;

struct Asked {
    HttpRequest request;
    HttpFront::Reply reply;
};

} // namespace

/// A front whose requests are answered when the test says so.
class Front : public ::testing::Test {
protected:
    Front()
        : front([this](const HttpRequest &request, const std::string &, HttpFront::Reply reply) {
            asked.push_back({request, std::move(reply)});
        })
    {
        const auto port = front.listen({"127.0.0.1", 0});
        EXPECT_TRUE(port) << port.error();
        client.connectToHost(QHostAddress::LocalHost, port.value_or(0));
        EXPECT_TRUE(client.waitForConnected());
    }

    void say(const std::string &method, const std::string &path, const std::string &headers = {})
    {
        client.write(
            QByteArray::fromStdString(method + " " + path + " HTTP/1.1\r\nHost: x\r\n" + headers + "\r\n"));
    }
    bool arrived(std::size_t count) const
    {
        return eventually([&] { return asked.size() >= count; });
    }
    void answer(std::size_t index, std::string body)
    {
        asked[index].reply({200, {}, std::move(body)}, false);
    }
    /// Everything that came, once it ends with `end`.
    std::string heardUntil(const std::string &end)
    {
        EXPECT_TRUE(eventually([&] {
            heard += client.readAll().toStdString();
            return heard.ends_with(end);
        })) << heard;
        return heard;
    }

    std::vector<Asked> asked;
    HttpFront front;
    QTcpSocket client;
    std::string heard;
};

TEST_F(Front, AnswersComeInTheOrderOfTheirRequests)
{
    say("GET", "/first");
    ASSERT_TRUE(arrived(1));
    say("GET", "/second");
    say("GET", "/third", "Connection: close\r\n");
    say("POST", "/behind-the-end");
    QTcpSocket other;
    other.connectToHost(client.peerAddress(), client.peerPort());
    other.write("GET /other HTTP/1.1\r\nHost: x\r\n\r\n");
    ASSERT_TRUE(arrived(2));
    EXPECT_EQ(asked[1].request.path, "/other") << "the line is the connection's own";
    answer(0, "<1>");
    ASSERT_TRUE(arrived(3));
    EXPECT_EQ(asked[2].request.path, "/second");
    answer(2, "<2>");
    ASSERT_TRUE(arrived(4));
    answer(3, "<3>");
    heardUntil("<3>");
    EXPECT_LT(heard.find("<1>"), heard.find("<2>"));
    EXPECT_TRUE(eventually([&] { return client.state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_EQ(asked.size(), 4U);
}

TEST_F(Front, AnAnswerForNobodyIsNoHarm)
{
    say("GET", "/");
    ASSERT_TRUE(arrived(1));
    const auto port = client.peerPort();
    client.abort();
    // What a later client is told shows that the server has heard of the first one's end.
    client.connectToHost(QHostAddress::LocalHost, port);
    say("GET", "/later");
    ASSERT_TRUE(arrived(2));
    answer(0, "<1>");
    answer(1, "<2>");
    EXPECT_EQ(heardUntil("<2>").find("<1>"), std::string::npos);
}

TEST_F(Front, AHeadIsAGetWithoutItsBody)
{
    say("HEAD", "/thing");
    ASSERT_TRUE(arrived(1));
    EXPECT_EQ(asked[0].request.method, HttpMethod::get);
    answer(0, "body");
    heardUntil("\r\n\r\n");
    EXPECT_NE(heard.find("Content-Length: 4"), std::string::npos) << heard;
    say("GET", "/thing");
    ASSERT_TRUE(arrived(2));
    answer(1, "body");
    EXPECT_EQ(heardUntil("body").find("body"), heard.size() - 4) << "once";
}

TEST_F(Front, AnUpgradeWhereThereIsNoneIsRefused)
{
    say("GET", "/thing", "Upgrade: websocket\r\nConnection: Upgrade\r\n");
    EXPECT_TRUE(eventually([&] {
        heard += client.readAll().toStdString();
        return client.state() == QAbstractSocket::UnconnectedState;
    }));
    EXPECT_TRUE(heard.starts_with("HTTP/1.1 400 ")) << heard;
    EXPECT_TRUE(asked.empty());
}

TEST_F(Front, WhoAsksOnWithoutListeningIsHungUpOn)
{
    for (int i = 0; i < 100; ++i)
        say("GET", "/");
    ASSERT_TRUE(arrived(1));
    EXPECT_TRUE(eventually([&] { return client.state() == QAbstractSocket::UnconnectedState; }));
    answer(0, "too late");
    EXPECT_EQ(asked.size(), 1U);
}

} // namespace orvane::server
