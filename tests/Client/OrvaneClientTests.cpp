// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client/OrvaneClient.h"

#include "Http/NetworkThread.h"
#include "Http/SyncConnection.h"
#include "Session/AuthSession.h"
#include "Session/MemoryTokenStore.h"
#include "Support/DateText.h"
#include "support/Await.h"
#include "support/TokenServer.h"

#include <QThread>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;
using testing::LoopbackServer;
using testing::SeenRequest;
using testing::TokenServer;

constexpr auto entryBody = R"({"id":"e","workspaceId":"w","description":"d","projectId":null,"tagIds":["t"],
    "isBillable":false,"start":"2026-03-01T09:30:00Z","shares":[{"projectId":"p","isBillable":true,"percent":100,"description":""}],"version":"7"})";

class OrvaneClientTest : public ::testing::Test {
protected:
    OrvaneClientTest()
    {
        AuthSessionOptions options;
        options.server = server.url();
        options.tokenStore = std::make_shared<MemoryTokenStore>();
        session = AuthSession::make(*thread, options);
        client = std::make_unique<OrvaneClient>(thread, session);
        EXPECT_TRUE(await(session->login("a@example.org", "right")));
    }
    void answerWith(int status, std::string body)
    {
        server.setAnswer(
            [status, body = std::move(body)](const SeenRequest &, LoopbackServer::Connection &connection) {
                connection.answer(status, body);
            });
    }
    SeenRequest last() { return server.requests().back(); }

    TokenServer server;
    std::shared_ptr<NetworkThread> thread = std::make_shared<NetworkThread>();
    std::shared_ptr<AuthSession> session;
    std::unique_ptr<OrvaneClient> client;
};

TEST_F(OrvaneClientTest, CarriesAnEntrysVersion)
{
    answerWith(200, entryBody);
    TimeEntryRequest change;
    change.description = "d";
    change.start = *instantFromIso8601("2026-03-01T09:30:00Z");
    const auto entry = await(client->updateTimeEntry("w", "e/1", change, "7"));
    ASSERT_TRUE(entry) << describe(entry.error());
    EXPECT_EQ(entry->start, change.start);
    EXPECT_EQ(entry->version, "7");
    EXPECT_EQ(last().method, "PUT");
    EXPECT_EQ(last().path, "/api/workspaces/w/time-entries/e%2F1");
    EXPECT_EQ(last().headers.find("if-match"), "7");
    EXPECT_EQ(decodeJson<TimeEntryRequest>(last().body), change);

    answerWith(204, "");
    EXPECT_TRUE(await(client->deleteTimeEntry("w", "e", {})));
    EXPECT_FALSE(last().headers.find("if-match"));
}

TEST_F(OrvaneClientTest, TellsARunningTimerFromNone)
{
    answerWith(204, "");
    auto current = await(client->getCurrentTimeEntry());
    ASSERT_TRUE(current);
    EXPECT_FALSE(*current);
    answerWith(200, entryBody);
    current = await(client->getCurrentTimeEntry());
    ASSERT_TRUE(current && *current);
    EXPECT_EQ((*current)->id, "e");
    EXPECT_FALSE((*current)->stop);
}

TEST_F(OrvaneClientTest, TakesBothAnswersToACreate)
{
    CreateTimeEntryRequest entry;
    entry.id = "e";
    for (const int status : {200, 201}) {
        answerWith(status, entryBody);
        EXPECT_TRUE(await(client->createTimeEntry("w", entry))) << status;
    }
}

TEST_F(OrvaneClientTest, CallsOtherAnswersUnreadable)
{
    const auto isUnreadable = [&](int status, std::string body) {
        answerWith(status, std::move(body));
        const auto entry = await(client->getTimeEntry("w", "e"));
        return !entry && std::holds_alternative<DecodingError>(entry.error());
    };
    EXPECT_TRUE(isUnreadable(204, ""));
    EXPECT_TRUE(isUnreadable(202, entryBody));
    EXPECT_TRUE(isUnreadable(301, ""));
    EXPECT_TRUE(isUnreadable(200, ""));
    EXPECT_TRUE(isUnreadable(200, "<html>Sign in to the hotel</html>"));
    EXPECT_TRUE(isUnreadable(200, std::string(entryBody).substr(0, 60)));
    EXPECT_TRUE(isUnreadable(200, R"({"id":7})"));
    std::string absurd = entryBody;
    absurd.replace(absurd.find("2026-03-01"), 10, "2026-02-30");
    EXPECT_TRUE(isUnreadable(200, absurd));
    absurd.replace(absurd.find("2026-02-30"), 10, "0001-01-01");
    EXPECT_TRUE(isUnreadable(200, absurd));
    std::string huge = entryBody;
    huge.replace(huge.find(":100,"), 4, ":1e400");
    EXPECT_TRUE(isUnreadable(200, huge));
}

TEST_F(OrvaneClientTest, NamesTheLiveSyncConnectionWhileThereIsOne)
{
    EXPECT_TRUE(await(client->listTags("w")));
    EXPECT_FALSE(last().headers.find("x-sync-connection"));
    client->syncConnection()->set("connection-1");
    EXPECT_TRUE(await(client->listTags("w")));
    EXPECT_EQ(last().headers.find("x-sync-connection"), "connection-1");
    client->syncConnection()->set({});
    EXPECT_TRUE(await(client->listTags("w")));
    EXPECT_FALSE(last().headers.find("x-sync-connection"));
}

Task<> listOnce(OrvaneClient *client, QThread *expected, std::shared_ptr<int> right)
{
    const auto tags = co_await client->listTags("w");
    *right += tags && QThread::currentThread() == expected ? 1 : 0;
}

TEST_F(OrvaneClientTest, ResumesEachCallerOnItsOwnThread)
{
    const auto right = std::make_shared<int>(0);
    const std::unique_ptr<QThread> other(QThread::create([&] {
        for (int i = 0; i < 5; ++i)
            await(listOnce(client.get(), QThread::currentThread(), right));
    }));
    other->start();
    EXPECT_TRUE(testing::eventually([&] { return other->isFinished(); }));
    EXPECT_EQ(*right, 5);
    await(listOnce(client.get(), QThread::currentThread(), right));
    EXPECT_EQ(*right, 6);
}

TEST_F(OrvaneClientTest, MayBeDroppedWhileACallIsUnderWay)
{
    server.setAnswer([](const SeenRequest &, LoopbackServer::Connection &connection) { connection.hang(); });
    auto call = client->listTags("w");
    ASSERT_TRUE(server.waitForRequests(2));
    client.reset();
    session.reset();
    thread.reset();
    const auto tags = await(std::move(call));
    ASSERT_FALSE(tags);
    EXPECT_TRUE(std::holds_alternative<ConnectionError>(tags.error()));
}

TEST_F(OrvaneClientTest, ReadsAHundredThousandEntries)
{
    std::string body = "[";
    for (int i = 0; i < 100'000; ++i)
        body.append(i > 0 ? "," : "").append(entryBody);
    answerWith(200, body + "]");
    const auto entries = await(client->listTimeEntries("w", Instant{}, Instant{}));
    ASSERT_TRUE(entries) << describe(entries.error());
    EXPECT_EQ(entries->size(), 100'000U);
}

} // namespace
} // namespace orvane
