// SPDX-License-Identifier: GPL-3.0-or-later
// Clients that are silent, slow, many or talk nonsense, and a server that goes.
#include "HubFixture.h"

namespace orvane::server {

using namespace std::chrono_literals;
using orvane::testing::eventually;

namespace {

/// A frame as a client sends it, masked by zeros.
QByteArray clientFrame(unsigned char opcode, const QByteArray &payload, bool isLast = true)
{
    QByteArray frame;
    frame += static_cast<char>((isLast ? 0x80 : 0) | opcode);
    if (payload.size() < 126) {
        frame += static_cast<char>(0x80 | payload.size());
    } else {
        frame += static_cast<char>(0x80 | 126);
        frame += static_cast<char>(payload.size() >> 8);
        frame += static_cast<char>(payload.size() & 0xff);
    }
    return frame + QByteArray(4, '\0') + payload;
}

SyncHub::Options withLimits()
{
    SyncHub::Options options;
    options.mostOfAUser = 2;
    options.limits = {.mostUnsent = 64 * 1024, .mostWatched = 2};
    return options;
}

} // namespace

class HubFaults : public HubFixture {
protected:
    HubFaults() : HubFixture(withLimits()) {}

    /// A client that speaks in raw bytes, its handshakes done.
    std::unique_ptr<QTcpSocket> connectRaw()
    {
        auto socket = std::make_unique<QTcpSocket>();
        socket->connectToHost(QHostAddress::LocalHost, port);
        socket->write(
            QByteArray::fromStdString(head(address(negotiate(accessToken).connectionToken, accessToken))));
        EXPECT_EQ(statusFrom(*socket), 101);
        socket->write(clientFrame(1, QByteArray::fromStdString(hub::record(hub::Handshake{}))));
        QByteArray answer;
        EXPECT_TRUE(eventually([&] { return (answer += socket->readAll()).endsWith("{}\x1e"); }));
        return socket;
    }
    static bool isClosed(const QTcpSocket &socket)
    {
        return eventually([&] { return socket.state() == QAbstractSocket::UnconnectedState; });
    }
};

TEST_F(HubFaults, PingsKeepTheLivingAndFindTheDead)
{
    const auto silent = connectHub(accessToken);
    const auto pinging = connectHub(accessToken);
    passSteadily(14'999ms);
    EXPECT_EQ(pinging->heardByNow(), std::vector<std::string>{});
    passSteadily(1ms);
    EXPECT_EQ(pinging->heardByNow(), std::vector<std::string>{R"({"type":6})"});
    passSteadily(14'999ms);
    EXPECT_EQ(pinging->heardByNow(), std::vector<std::string>{});
    passSteadily(1ms);
    EXPECT_TRUE(silent->isClosed());
    EXPECT_EQ(pinging->heardByNow(), std::vector<std::string>{R"({"type":6})"});
    EXPECT_EQ(silent->heard, std::vector<std::string>{R"({"type":6})"});
}

TEST_F(HubFaults, WhoDoesNotShakeHandsIsNotWaitedFor)
{
    const auto mute = open(accessToken);
    const auto wrong = open(accessToken);
    wrong->say("{\"protocol\":\"messagepack\",\"version\":1}\x1e");
    EXPECT_TRUE(wrong->isClosed());
    EXPECT_EQ(wrong->heard, std::vector<std::string>{
                                R"({"error":"This hub speaks version 1 of the json protocol alone."})"});
    steady += 14s;
    mute->say("{");
    passSteadily(1s);
    EXPECT_TRUE(mute->isClosed());
    EXPECT_TRUE(eventually([&] { return hub->isEmpty(); }));
}

TEST_F(HubFaults, NonsenseEndsItsOwnConnectionAlone)
{
    const auto witness = connectHub(accessToken);
    const auto say = [this](const QByteArray &bytes) {
        const auto client = connectRaw();
        client->write(bytes);
        return isClosed(*client);
    };
    EXPECT_TRUE(say(clientFrame(1, "no json\x1e")));
    EXPECT_TRUE(say(clientFrame(1, "\xff\xfe\x1e"))) << "not UTF-8";
    EXPECT_TRUE(say(clientFrame(2, "{\"type\":6}\x1e"))) << "binary";
    EXPECT_TRUE(say(clientFrame(1, QByteArray(32 * 1024 + 1, ' ')))) << "a frame too long";
    EXPECT_TRUE(say(clientFrame(1, QByteArray(20'000, ' '), false) + clientFrame(0, QByteArray(20'000, ' '))))
        << "a message too long";
    EXPECT_TRUE(say(clientFrame(1, QByteArray(20'000, ' ')) + clientFrame(1, QByteArray(20'000, ' '))))
        << "a record too long";
    EXPECT_TRUE(say(clientFrame(1, "{\"type\":7}\x1e"))) << "a farewell";
    EXPECT_TRUE(say("GET / HTTP/1.1\r\n\r\n")) << "another protocol";

    const auto split = connectRaw();
    split->write(clientFrame(1, R"({"type":1,"target":"Nothing",)", false) +
                 clientFrame(0, R"("invocationId":"9","arguments":[]})") + clientFrame(1, "\x1e"));
    QByteArray answer;
    EXPECT_TRUE(eventually([&] { return (answer += split->readAll()).contains(R"("invocationId":"9")"); }));
    EXPECT_EQ(witness->heardByNow(), std::vector<std::string>{});
}

TEST_F(HubFaults, ManyConnectionsAndManyWatchesAreBounded)
{
    const auto first = connectHub(accessToken);
    auto second = connectHub(accessToken);
    EXPECT_EQ(statusOf(head(address(negotiate(accessToken).connectionToken, accessToken))), 503);
    second.reset();
    EXPECT_TRUE(eventually(
        [&] { return statusOf(head(address(negotiate(accessToken).connectionToken, accessToken))) == 101; }));
    using Body = Created<WorkspaceSummary>;
    std::vector<std::string> workspaces;
    for (const char *name : {"a", "b", "c"})
        workspaces.push_back(expect<operations::CreateWorkspace, Body>({{name, {}}}).body.id);
    first->heardByNow();
    for (const std::string &workspace : workspaces)
        first->invoke("Watch", workspace);
    EXPECT_EQ(first->heardByNow(),
              (std::vector<std::string>{
                  R"({"type":3,"invocationId":"1","result":true})",
                  R"({"type":3,"invocationId":"1","result":true})",
                  R"({"type":3,"invocationId":"1","error":"Too many workspaces are watched."})"}));
}

TEST_F(HubFaults, WhoDoesNotReadIsNotWaitedFor)
{
    const auto reader = connectHub(accessToken);
    const auto slow = connectRaw();
    slow->setReadBufferSize(1);
    const auto hasRoom = [this] { return !hub->refuse({{}, userId, {}, false}); };
    EXPECT_FALSE(hasRoom());
    // Each makes the hub look at the sessions, which is not what this is about.
    isDatabaseAway = true;
    std::size_t told = 0;
    while (!hasRoom() && told < 200'000) {
        for (int i = 0; i < 100; ++i, ++told)
            hub->tell({{{ChangeTopic::me, {}, userId}}, {}, {}});
        ASSERT_TRUE(reader->hears(told));
    }
    EXPECT_TRUE(hasRoom()) << "the one that does not read is gone";
    EXPECT_EQ(reader->socket.state(), QAbstractSocket::ConnectedState);
}

TEST_F(HubFaults, ADatabaseThatIsAwayIsNoRefusal)
{
    const auto client = watching(accessToken, workspaceId);
    isDatabaseAway = true;
    client->invoke("Watch", "another", "5");
    EXPECT_EQ(client->heardByNow(),
              std::vector<std::string>{
                  R"({"type":3,"invocationId":"5","error":"The server is busy. Try again."})"});
    steady += 60s;
    client->heardByNow();
    hub->keepAlive();
    isDatabaseAway = false;
    addTag("one");
    EXPECT_EQ(client->heardByNow(),
              (std::vector<std::string>{R"({"type":6})", changed("catalog", workspaceId, "")}));
}

TEST_F(HubFaults, AStopIsSaidToAll)
{
    const auto client = connectHub(accessToken);
    const auto mute = open(accessToken);
    hub->close();
    EXPECT_TRUE(client->isClosed());
    EXPECT_EQ(client->heard, std::vector<std::string>{
                                 R"({"type":7,"error":"The server is stopping.","allowReconnect":true})"});
    EXPECT_EQ(client->socket.closeCode(), QWebSocketProtocol::CloseCodeGoingAway);
    EXPECT_TRUE(mute->isClosed());
    EXPECT_TRUE(eventually([&] { return hub->isEmpty(); }));
}

} // namespace orvane::server
