// SPDX-License-Identifier: GPL-3.0-or-later
// Requests that are worked on at once, by threads with a database each.
#include "Process/ServerExecutor.h"
#include "ServerFixture.h"

#include <QTemporaryDir>
#include <algorithm>
#include <atomic>
#include <future>
#include <thread>

namespace orvane::server {

using namespace operations;
using namespace std::chrono_literals;

class Workers : public ServerFixture {
protected:
    Workers()
    {
        openServer({}, {}, folder.filePath(QStringLiteral("server.sqlite")).toStdString());
        signInLocally();
    }

    void start(int readers, int writers)
    {
        executor = std::make_unique<ServerExecutor>(
            RequestWorkers::Options{.databasePath = databasePath, .readers = readers, .writers = writers});
    }
    std::future<HttpResponse> begin(HttpRequest request)
    {
        request.headers.set("Host", "127.0.0.1:0");
        request.headers.set("Authorization", "Bearer " + accessToken);
        const auto answer = std::make_shared<std::promise<HttpResponse>>();
        server->serve(request, peer, *executor,
                      [answer](Served served) { answer->set_value(std::move(served.response)); });
        return answer->get_future();
    }
    /// The statuses of answers to requests that are all under way at once, in order of size.
    std::vector<int> statuses(const std::vector<HttpRequest> &requests)
    {
        std::vector<std::future<HttpResponse>> answers;
        answers.reserve(requests.size());
        for (const HttpRequest &request : requests)
            answers.push_back(begin(request));
        std::vector<int> found;
        for (auto &answer : answers)
            found.push_back(answer.get().status);
        std::ranges::sort(found);
        return found;
    }
    CreateTimeEntryRequest entry(std::string id) const
    {
        CreateTimeEntryRequest body;
        body.id = std::move(id);
        body.start = now - 1h;
        body.stop = now;
        return body;
    }
    std::size_t entriesNow()
    {
        const auto answer = begin(ListTimeEntries::request({workspaceId, now - 2h, now + 1h})).get();
        return decodeJson<std::vector<TimeEntryResponse>>(answer.body).value().size();
    }
    /// Something that happens between another request's look at the database and its writing.
    void betweenLookAndWrite(std::string_view trigger)
    {
        const auto database = Database::connect(databasePath).value();
        ASSERT_TRUE(database->runOnce(trigger)) << database->lastError();
    }

    QTemporaryDir folder;
    std::unique_ptr<ServerExecutor> executor;
};

TEST_F(Workers, OfTwoCreationsOfOneNameOneIsAConflict)
{
    start(2, 4);
    RegisterRequest account = registration();
    for (int round = 0; round < 5; ++round) {
        const std::string name = "Twin " + std::to_string(round);
        account.email = "twin" + std::to_string(round) + "@example.org";
        const std::vector<int> oneOfTwo{201, 409};
        EXPECT_EQ(
            statuses({CreateTag::request({workspaceId, {name}}), CreateTag::request({workspaceId, {name}})}),
            oneOfTwo);
        EXPECT_EQ(statuses({CreateClient::request({workspaceId, {name}}),
                            CreateClient::request({workspaceId, {name}})}),
                  oneOfTwo);
        auto other = entry(name.substr(5) + "-id");
        other.description = "another";
        EXPECT_EQ(statuses({CreateTimeEntry::request({workspaceId, entry(other.id)}),
                            CreateTimeEntry::request({workspaceId, other})}),
                  oneOfTwo);
        if (round == 0)
            EXPECT_EQ(statuses({Register::request({account}), Register::request({account})}), oneOfTwo);
    }
}

TEST_F(Workers, AUniqueIndexThatSpeaksIsAConflictToo)
{
    betweenLookAndWrite("CREATE TRIGGER faster BEFORE INSERT ON tags WHEN NEW.name = 'raced' BEGIN "
                        "INSERT INTO tags VALUES ('other', NEW.workspace_id, NEW.name, NEW.name_key); END");
    betweenLookAndWrite(
        "CREATE TRIGGER first BEFORE INSERT ON users WHEN NEW.email <> '' BEGIN "
        "INSERT INTO users SELECT 'other', '', NEW.email_key, 0, NULL, '', 'UTC', NULL, 0, 0; "
        "END");
    start(1, 2);
    changes.clear();
    EXPECT_EQ(statuses({CreateTag::request({workspaceId, {"raced"}})}), std::vector{409});
    EXPECT_EQ(statuses({Register::request({registration()})}), std::vector{409});
    EXPECT_TRUE(changes.empty()) << "what was undone is not told";
    EXPECT_EQ(statuses({CreateTag::request({workspaceId, {"calm"}})}), std::vector{201});
    EXPECT_EQ(begin(ListTags::request({workspaceId})).get().body.find("raced"), std::string::npos);
}

TEST_F(Workers, WhatIsAnsweredIsThereForWhoeverLooksThen)
{
    start(4, 2);
    std::vector<std::thread> users;
    std::atomic<std::size_t> answered = 0;
    std::atomic<int> strange = 0;
    for (int user = 0; user < 6; ++user) {
        users.emplace_back([&, user] {
            for (int i = 0; i < 10; ++i) {
                const auto body = entry("e-" + std::to_string(user) + "-" + std::to_string(i));
                if (begin(CreateTimeEntry::request({workspaceId, body})).get().status != 201)
                    ++strange;
                const std::size_t before = ++answered;
                if (entriesNow() < before)
                    ++strange;
            }
        });
    }
    for (std::thread &user : users)
        user.join();
    EXPECT_EQ(strange, 0);
    EXPECT_EQ(entriesNow(), 60U);
    EXPECT_EQ(changes.size(), 60U) << "each was told once";
}

TEST_F(Workers, ASessionInUseIsKeptThoughItOnlyReads)
{
    start(2, 1);
    const auto lastUsed = [this] {
        const auto answer = begin(ListSessions::request({})).get();
        return decodeJson<std::vector<SessionResponse>>(answer.body).value().at(0).lastUsedAt;
    };
    const Instant before = lastUsed();
    now += 59s;
    EXPECT_EQ(lastUsed(), before);
    now += 2s;
    EXPECT_EQ(lastUsed(), now);
}

TEST_F(Workers, AReadingTransactionIsNotHeldUpByOneThatWrites)
{
    start(1, 1);
    const auto other = Database::connect(databasePath).value();
    ASSERT_TRUE(other->begin());
    other->run("UPDATE users SET full_name = 'half done'");
    EXPECT_EQ(decodeJson<MeResponse>(begin(GetMe::request({})).get().body).value().fullName, "ada");
    auto waiting = begin(CreateTag::request({workspaceId, {"later"}}));
    other->rollback();
    EXPECT_EQ(waiting.get().status, 201);
}

TEST(DatabaseDeathTest, ATransactionThatReadsMustNotWrite)
{
    const auto database = Database::open(":memory:").value();
    ASSERT_TRUE(database->begin(Lane::reading));
    EXPECT_FALSE(database->exists("SELECT 1 FROM users"));
    EXPECT_DEATH(database->run("DELETE FROM users"), "would write");
    EXPECT_TRUE(database->commit());
}

TEST_F(Workers, TheirEndWaitsForWhatIsBeingWorkedOn)
{
    start(1, 1);
    std::promise<void> isWorking, mayGoOn;
    bool wasDone = false;
    executor->transact(Lane::writing, [&](Database *) {
        isWorking.set_value();
        mayGoOn.get_future().wait();
        wasDone = true;
    });
    isWorking.get_future().wait();
    std::thread later([&] { mayGoOn.set_value(); });
    executor.reset();
    EXPECT_TRUE(wasDone);
    later.join();
}

} // namespace orvane::server
