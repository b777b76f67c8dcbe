// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/AccountStores.h"

#include "support/Await.h"

#include <QTemporaryDir>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using orvane::testing::await;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AccountStores : public ::testing::Test {
protected:
    /// Makes the store and queues so many changes in it.
    void queue(const std::string &server, const std::string &account, int changes) const
    {
        const auto store = await(LocalStore::open(LocalStore::filePath(root, server, account)));
        ASSERT_TRUE(store);
        for (int i = 0; i < changes; ++i)
            ASSERT_TRUE(await((*store)->enqueue(EntryChange{EntryChange::Delete{"e", "w", {}}})));
    }
    std::vector<std::int64_t> waiting(const std::string &server, const std::string &account) const
    {
        std::vector<std::int64_t> counts;
        for (const WaitingStore &store : await(waitingBeside(root, server, account)))
            counts.push_back(store.changes.value_or(-1));
        return counts;
    }

    QTemporaryDir folder;
    std::string root = folder.path().toStdString();
    const std::string before = "http://127.0.0.1:8001";
    const std::string after = "http://127.0.0.1:80";
};

TEST_F(AccountStores, MoveWithTheirServerAndNobodyElses)
{
    queue(before, "a", 1);
    queue(before, "b", 2);
    queue("http://127.0.0.1:8", "c", 3);
    queue("http://example.com:8001", "d", 3);
    EXPECT_THAT(accountsWithStore(root, before), ElementsAre("a", "b"));
    EXPECT_THAT(waiting(before, "a"), ElementsAre(2));
    EXPECT_THAT(waiting(before, ""), ElementsAre(1, 2));

    EXPECT_TRUE(moveStores(root, before, after));
    EXPECT_THAT(accountsWithStore(root, before), IsEmpty());
    EXPECT_THAT(waiting(after, "b"), ElementsAre(1));
    EXPECT_THAT(accountsWithStore(root, "http://127.0.0.1:8"), ElementsAre("c"));
}

TEST_F(AccountStores, GoOnWithAMoveThatWasCutShort)
{
    queue(before, "a", 1);
    const std::string log = LocalStore::filePath(root, before, "a") + "-wal";
    {
        const auto store = await(LocalStore::open(LocalStore::filePath(root, before, "a")));
        ASSERT_TRUE(await((*store)->enqueue(EntryChange{EntryChange::Delete{"e", "w", {}}})));
        // As a process leaves them that is killed before SQLite takes the log in.
        std::filesystem::copy_file(log, log + ".kept");
        std::filesystem::copy_file(LocalStore::filePath(root, before, "a"), root + "/kept");
    }
    std::filesystem::rename(log + ".kept", log);
    std::filesystem::remove(LocalStore::filePath(root, before, "a"));
    std::filesystem::rename(root + "/kept", LocalStore::filePath(root, after, "a"));

    EXPECT_TRUE(moveStores(root, before, after));
    EXPECT_THAT(waiting(after, ""), ElementsAre(2)) << "what was in the log alone too";
}

TEST_F(AccountStores, GoWithTheirAccountAlone)
{
    queue(before, "a", 1);
    queue(before, "b", 2);
    EXPECT_TRUE(removeStore(root, before, "a"));
    EXPECT_TRUE(removeStore(root, before, "never was"));
    EXPECT_THAT(accountsWithStore(root, before), ElementsAre("b"));
    EXPECT_THAT(waiting(before, ""), ElementsAre(2));
}

TEST_F(AccountStores, TellWhatCannotBeRead)
{
    queue(before, "a", 1);
    const std::string path = LocalStore::filePath(root, before, "a");
    const auto store = await(LocalStore::open(path));
    ASSERT_TRUE(store);
    ASSERT_TRUE(await((*store)->query("INSERT INTO outbox (change, created_at) VALUES (x'7b7d', 0)", {})));
    EXPECT_EQ(await(queuedRows(**store)).value(), 2);
    EXPECT_THAT(await(unreadableRows(**store)).value(), ElementsAre(2));
    ASSERT_TRUE(await((*store)->query("DROP TABLE outbox", {})));
    EXPECT_FALSE(await(queuedRows(**store)));
    EXPECT_FALSE(await(unreadableRows(**store)));
    EXPECT_THAT(waiting(before, ""), ElementsAre(-1));
}

} // namespace
} // namespace orvane
