// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ConnectionGuard.h"

#include "support/Await.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace orvane::server {

namespace {

using namespace std::chrono_literals;
using orvane::testing::eventually;

} // namespace

/// A guard whose time the test sets, and both ends of its connections.
class Connections : public ::testing::Test {
protected:
    struct Pair {
        std::unique_ptr<QTcpSocket> client;
        QPointer<GuardedSocket> server;

        /// What both sides know of it, once the events of it are handled.
        bool isOpen() const
        {
            return server && server->state() == QAbstractSocket::ConnectedState &&
                   client->state() == QAbstractSocket::ConnectedState;
        }
        bool isClosed() const { return client->state() == QAbstractSocket::UnconnectedState; }
    };

    void listen(ConnectionGuard::Options options = {})
    {
        options.clock = [this] { return now; };
        guard = std::make_unique<ConnectionGuard>(std::move(options));
        ASSERT_TRUE(guard->listen(QHostAddress::LocalHost));
    }
    Pair connectFrom(const char *address = "127.0.0.1")
    {
        Pair pair{std::make_unique<QTcpSocket>(), nullptr};
        pair.client->bind(QHostAddress(QString::fromLatin1(address)));
        pair.client->connectToHost(QHostAddress::LocalHost, guard->serverPort());
        EXPECT_TRUE(eventually([&] {
            if (auto *socket = guard->nextPendingConnection())
                pair.server = qobject_cast<GuardedSocket *>(socket);
            return pair.server || pair.isClosed();
        }));
        EXPECT_TRUE(pair.client->waitForConnected() || pair.isClosed());
        return pair;
    }
    Pair connectSignedIn()
    {
        Pair pair = connectFrom();
        pair.server->setSignedIn();
        return pair;
    }
    void say(Pair &pair, const char *text) const
    {
        pair.client->write(text);
        const auto length = static_cast<qint64>(qstrlen(text));
        EXPECT_TRUE(eventually([&] { return pair.server->bytesAvailable() >= length; }));
    }
    void pass(SteadyTime time)
    {
        now += time;
        guard->sweep();
    }

    SteadyTime now{1'000'000};
    std::unique_ptr<ConnectionGuard> guard;
};

TEST_F(Connections, SilenceIsBornForFiveSecondsAndASlowRequestForThirty)
{
    listen();
    Pair silent = connectFrom();
    Pair slow = connectFrom();
    Pair answering = connectFrom();
    Pair signedIn = connectSignedIn();
    say(slow, "GET");
    say(answering, "GET");
    answering.server->takeTurn([] {});
    pass(4999ms);
    EXPECT_TRUE(silent.isOpen());
    pass(1ms);
    EXPECT_TRUE(eventually([&] { return silent.isClosed(); }));
    EXPECT_TRUE(slow.isOpen());
    pass(24'999ms);
    EXPECT_TRUE(slow.isOpen());
    pass(1ms);
    EXPECT_TRUE(eventually([&] { return slow.isClosed(); }));
    EXPECT_TRUE(signedIn.isOpen());
    pass(90s);
    EXPECT_TRUE(eventually([&] { return signedIn.isClosed(); })) << "two minutes of quiet";
    EXPECT_TRUE(answering.isOpen()) << "it is our turn";
    answering.server->requestAnswered();
    pass(120s);
    EXPECT_TRUE(eventually([&] { return answering.isClosed(); }));
}

TEST_F(Connections, TheOldestStrangerOfAPeerGivesWay)
{
    listen();
    Pair signedIn = connectSignedIn();
    Pair elsewhere = connectFrom("127.0.0.2");
    Pair answering = connectFrom();
    answering.server->takeTurn([] {});
    std::vector<Pair> strangers;
    for (int i = 0; i < 63; ++i)
        strangers.push_back(connectFrom());
    EXPECT_TRUE(strangers.front().isOpen());
    now += 1s;
    for (int i = 0; i < 63; ++i) {
        strangers.push_back(connectFrom());
        EXPECT_TRUE(eventually([&] { return strangers[static_cast<std::size_t>(i)].isClosed(); })) << i;
        EXPECT_TRUE(strangers[static_cast<std::size_t>(i) + 1].isOpen()) << i;
    }
    EXPECT_TRUE(signedIn.isOpen());
    EXPECT_TRUE(elsewhere.isOpen());
    EXPECT_TRUE(answering.isOpen());
}

TEST_F(Connections, WhoGivesWayHasItsAnswerFirst)
{
    listen();
    Pair pair = connectFrom();
    say(pair, "GET");
    pair.server->takeTurn([] {});
    pair.server->write("answer");
    pair.server->requestAnswered();
    pair.server->drop();
    EXPECT_TRUE(eventually([&] { return pair.isClosed(); }));
    EXPECT_EQ(pair.client->readAll(), "answer");
}

TEST_F(Connections, ManyWhoComeAtOnceHaveAMomentToSignIn)
{
    listen();
    std::vector<Pair> crowd;
    for (int i = 0; i < 200; ++i)
        crowd.push_back(connectFrom());
    pass(999ms);
    for (const Pair &one : crowd)
        EXPECT_TRUE(one.isOpen());
    for (std::size_t i = 100; i < 200; ++i)
        crowd[i].server->setSignedIn();
    pass(1ms);
    EXPECT_TRUE(eventually([&] { return std::ranges::count_if(crowd, &Pair::isClosed) == 36; }));
    EXPECT_TRUE(crowd[35].isClosed());
    EXPECT_TRUE(crowd[36].isOpen());
}

TEST_F(Connections, SignedInUsersAreBoundedByDescriptorsAlone)
{
    listen({.mostConnections = 200});
    std::vector<Pair> users;
    Pair stranger = connectFrom();
    for (int i = 0; i < 199; ++i)
        users.push_back(connectSignedIn());
    EXPECT_TRUE(stranger.isOpen());
    users.push_back(connectSignedIn());
    EXPECT_TRUE(eventually([&] { return stranger.isClosed(); })) << "strangers go first";
    Pair refused = connectFrom();
    EXPECT_TRUE(eventually([&] { return refused.isClosed(); }));
    for (const Pair &user : users)
        EXPECT_TRUE(user.isOpen());
}

TEST_F(Connections, ATrustedProxyIsNoStranger)
{
    listen({.trustedProxy = "127.0.0.2"});
    std::vector<Pair> proxied;
    for (int i = 0; i < 100; ++i)
        proxied.push_back(connectFrom("127.0.0.2"));
    pass(6s);
    for (const Pair &connection : proxied)
        EXPECT_TRUE(connection.isOpen());
}

} // namespace orvane::server
