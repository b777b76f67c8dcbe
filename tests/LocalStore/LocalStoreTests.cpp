// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/OutboxStore.h"
#include "StoreFixture.h"

#include <filesystem>
#include <sys/stat.h>

namespace orvane {
namespace {

using Value = LocalStore::Value;

mode_t modeOf(const std::string &path)
{
    struct stat status{};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

std::vector<std::string> idsOf(const std::vector<PendingChange> &changes)
{
    std::vector<std::string> ids;
    for (const PendingChange &row : changes)
        ids.push_back(row.change.entryId());
    return ids;
}

using LocalStoreTest = StoreTest;

TEST_F(LocalStoreTest, makesTheFileAndItsFoldersForItsUserAlone)
{
    m_path = m_folder.filePath(QStringLiteral("new/Orvane/store.sqlite")).toStdString();
    const auto store = openStore();
    ASSERT_TRUE(wait(store->enqueue(sampleChange("a"))));
    EXPECT_EQ(modeOf(m_path), 0600);
    EXPECT_EQ(modeOf(m_path + "-wal"), 0600);
    EXPECT_EQ(modeOf(m_path + "-shm"), 0600);
    EXPECT_EQ(modeOf(std::filesystem::path(m_path).parent_path()), 0700);
    EXPECT_EQ(modeOf(std::filesystem::path(m_path).parent_path().parent_path()), 0700);
    RawDatabase raw(m_path);
    EXPECT_EQ(raw.number("PRAGMA user_version"), 1);
    EXPECT_EQ(raw.number("SELECT count(*) FROM document"), 0);
    EXPECT_EQ(wait(store->query("PRAGMA journal_mode", {})).value()[0][0], Value("wal"));
    EXPECT_EQ(wait(store->query("PRAGMA synchronous", {})).value()[0][0], Value(std::int64_t{2}));
}

TEST_F(LocalStoreTest, migratesOnlyWhatIsNotCurrent)
{
    openStore();
    {
        RawDatabase raw(m_path);
        raw.execute("INSERT INTO document VALUES ('kept', x'7b7d'); PRAGMA user_version = 0");
    }
    openStore();
    {
        RawDatabase raw(m_path);
        EXPECT_EQ(raw.number("PRAGMA user_version"), 1);
        EXPECT_EQ(raw.number("SELECT count(*) FROM document"), 1);
        raw.execute("DROP TABLE document");
    }
    openStore();
    RawDatabase raw(m_path);
    EXPECT_EQ(raw.number("SELECT count(*) FROM sqlite_schema WHERE name = 'document'"), 0);
}

TEST_F(LocalStoreTest, keepsOneDocumentUnderAKey)
{
    const Note note{"Übersicht", instantFromMilliseconds(978'307'200'500), 3};
    {
        const auto store = openStore();
        EXPECT_EQ(wait(store->load<Note>("note")), std::nullopt);
        ASSERT_TRUE(wait(store->save("note", Note{"first", {}, {}})));
        ASSERT_TRUE(wait(store->save("note", note)));
    }
    const auto store = openStore();
    EXPECT_EQ(wait(store->load<Note>("note")), note);
    const LocalStore::Rows rows = wait(store->query("SELECT key, value FROM document", {})).value();
    EXPECT_EQ(rows, (LocalStore::Rows{{"note", StoreBlob{R"({"title":"Übersicht","at":0.5,"weight":3})"}}}));

    ASSERT_TRUE(wait(store->remove("note")));
    EXPECT_EQ(wait(store->load<Note>("note")), std::nullopt);
}

TEST_F(LocalStoreTest, readsADocumentThatDoesNotDecodeAsAbsent)
{
    const auto store = openStore();
    const std::string insert = "INSERT INTO document VALUES (?, ?)";
    ASSERT_TRUE(wait(store->query(insert, {"other shape", StoreBlob{R"({"title":1})"}})));
    ASSERT_TRUE(wait(store->query(insert, {"empty", StoreBlob{}})));
    ASSERT_TRUE(wait(store->query(insert, {"text", R"({"title":"a","at":0})"})));
    for (const char *key : {"other shape", "empty", "text"})
        EXPECT_EQ(wait(store->load<Note>(key)), std::nullopt) << key;
    ASSERT_TRUE(wait(store->query("DROP TABLE document", {})));
    EXPECT_EQ(wait(store->load<Note>("empty")), std::nullopt);
}

TEST_F(LocalStoreTest, queuesInOrderAndNeverReusesANumber)
{
    const double before =
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    {
        const auto store = openStore();
        EXPECT_EQ(wait(store->enqueue(sampleChange("a"))), 1);
        EXPECT_EQ(wait(store->enqueue(sampleChange("b"))), 2);
        EXPECT_EQ(wait(store->enqueue(sampleChange("c"))), 3);
        EXPECT_EQ(wait(store->pending())[0], (PendingChange{1, sampleChange("a")}));
        ASSERT_TRUE(wait(store->dequeue(3)));
        ASSERT_TRUE(wait(store->dequeue(2)));
    }
    const auto store = openStore();
    EXPECT_EQ(wait(store->enqueue(sampleChange("d"))), 4);
    EXPECT_EQ(idsOf(wait(store->pending())), (std::vector<std::string>{"a", "d"}));
    const LocalStore::Rows rows =
        wait(store->query("SELECT created_at FROM outbox WHERE seq = 4", {})).value();
    const double at = std::get<double>(rows[0][0]);
    EXPECT_GE(at, before);
    EXPECT_LT(at, before + 600);
}

TEST_F(LocalStoreTest, runsCallsInTheOrderInWhichTheyWereMade)
{
    auto store = openStore();
    std::vector<Task<Result<std::int64_t, StoreError>>> calls;
    for (int i = 0; i < 20; ++i)
        calls.push_back(store->enqueue(sampleChange(std::to_string(i))));
    const auto all = store->pending();
    // Dropped with calls under way, it finishes them first.
    store.reset();
    const std::vector<PendingChange> changes = QCoro::waitFor(all);
    ASSERT_EQ(changes.size(), 20U);
    for (std::size_t i = 0; i < changes.size(); ++i) {
        EXPECT_EQ(QCoro::waitFor(calls[i]), changes[i].seq);
        EXPECT_EQ(changes[i].change.entryId(), std::to_string(i));
    }
    EXPECT_EQ(wait(openStore()->pending()), changes);
}

TEST_F(LocalStoreTest, doesTheStepsOfATransactionOrNoneOfThem)
{
    const auto store = openStore();
    for (const char *id : {"a", "b", "c"})
        ASSERT_TRUE(wait(store->enqueue(sampleChange(id))));
    ASSERT_TRUE(wait(store->replace(2, sampleChange("b2"))));
    const auto putInPlace = [&](std::int64_t seq, const ChangeRows &rows) {
        return wait(store->transact([seq, rows](Connection &connection) {
            StoreSteps steps(connection);
            steps.removeRow(seq);
            for (const PendingChange &row : rows)
                steps.writeRow(row);
            return steps.status();
        }));
    };
    ASSERT_TRUE(putInPlace(1, {{2, sampleChange("b3")}, {3, sampleChange("c2")}}));
    EXPECT_EQ(idsOf(wait(store->pending())), (std::vector<std::string>{"b3", "c2"}));

    ASSERT_TRUE(wait(store->enqueue(sampleChange("d"))));
    RawDatabase(m_path).execute("CREATE TRIGGER guard BEFORE UPDATE ON outbox WHEN NEW.seq = 4 "
                                "BEGIN SELECT RAISE(ABORT, 'not this one'); END");
    const StoreStatus status = putInPlace(2, {{3, sampleChange("c3")}, {4, sampleChange("d2")}});
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().message, "not this one");
    EXPECT_EQ(idsOf(wait(store->pending())), (std::vector<std::string>{"b3", "c2", "d"}));
}

TEST_F(LocalStoreTest, putsAsideWhatItCannotReadBeforeItWritesThere)
{
    const auto store = openStore();
    const std::string broken = R"({"refusals":[{"seq":"one"}]})";
    ASSERT_TRUE(wait(store->query("INSERT INTO document (key, value) VALUES (?, ?)",
                                  {RefusalDocument::key, StoreBlob{broken}})));
    const Refusal refusal{7, sampleChange("a"), "No.", 403, false};
    for (int i = 0; i < 2; ++i)
        ASSERT_TRUE(wait(settleRefused(store, {7, sampleChange("a")}, refusal)));
    const auto written = wait(store->load<RefusalDocument>(RefusalDocument::key));
    ASSERT_TRUE(written);
    EXPECT_EQ(written->refusals, (std::vector{refusal, refusal}));
    const auto kept =
        wait(store->query("SELECT value FROM document WHERE key <> ?", {RefusalDocument::key})).value();
    EXPECT_EQ(kept, (LocalStore::Rows{{Value(StoreBlob{broken})}}));
}

TEST_F(LocalStoreTest, leavesRowsThatAreNotChangesInPlace)
{
    const auto store = openStore();
    ASSERT_TRUE(wait(store->enqueue(sampleChange("a"))));
    const std::string insert = "INSERT INTO outbox (change, created_at) VALUES (?, 0)";
    for (const char *blob :
         {"", "not JSON", R"({"create":{"id":"x"}})", R"({"unknown":{}})", "{\"stop\":{\xff"})
        ASSERT_TRUE(wait(store->query(insert, {StoreBlob{blob}})));
    ASSERT_TRUE(wait(store->query("INSERT INTO outbox (change, created_at) SELECT CAST(change AS TEXT), 0 "
                                  "FROM outbox WHERE seq = 1",
                                  {})));
    ASSERT_TRUE(wait(store->enqueue(sampleChange("b"))));
    EXPECT_EQ(idsOf(wait(store->pending())), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(wait(store->query("SELECT count(*) FROM outbox", {})).value()[0][0], Value(std::int64_t{8}));

    ASSERT_TRUE(wait(store->query("DROP TABLE outbox", {})));
    EXPECT_TRUE(wait(store->pending()).empty());
}

TEST_F(LocalStoreTest, readsALongQueueInOrder)
{
    const auto store = openStore();
    ASSERT_TRUE(wait(store->query("BEGIN", {})));
    for (int i = 0; i < 2001; ++i)
        ASSERT_TRUE(wait(store->enqueue(sampleChange(std::to_string(i)))));
    ASSERT_TRUE(
        wait(store->query("UPDATE outbox SET change = x'00' WHERE seq IN (1, 1000, 1001, 2001)", {})));
    ASSERT_TRUE(wait(store->query("COMMIT", {})));
    const std::vector<PendingChange> changes = wait(store->pending());
    ASSERT_EQ(changes.size(), 1997U);
    EXPECT_EQ(changes.front().seq, 2);
    EXPECT_EQ(changes.back().seq, 2000);
    for (const PendingChange &change : changes)
        ASSERT_EQ(change.change, sampleChange(std::to_string(change.seq - 1)));
}

TEST_F(LocalStoreTest, bindsAndReadsEveryKindOfValue)
{
    const auto store = wait(LocalStore::openInMemory()).value();
    const std::vector<Value> values{
        std::int64_t{-5}, 0.25, "größer", StoreBlob{std::string("\0\xff", 2)}, StoreBlob{}, std::monostate{}};
    const std::string sql = "SELECT ?, ?, ?, ?, ?, ?";
    EXPECT_EQ(wait(store->query(sql, values)), (LocalStore::Rows{values}));
    // What was bound before is gone: a parameter without a value is null.
    EXPECT_EQ(wait(store->query(sql, {})), (LocalStore::Rows{std::vector<Value>(6, std::monostate{})}));
    EXPECT_EQ(wait(store->query("SELECT 1 WHERE 0", {})), LocalStore::Rows{});

    EXPECT_EQ(wait(store->query("SELEKT 1", {})).error().message, "near \"SELEKT\": syntax error");
    EXPECT_EQ(wait(store->query("SELECT 1", {Value(1.0)})).error().message, "column index out of range");
    EXPECT_FALSE(wait(store->query("", {})));
    for (int i = 0; i < 40; ++i) {
        const Value number{std::int64_t{i}};
        EXPECT_EQ(wait(store->query("SELECT " + std::to_string(i), {})), (LocalStore::Rows{{number}}));
    }
}

TEST_F(LocalStoreTest, sharesAFileWithAnotherStore)
{
    const auto first = openStore();
    const auto second = openStore();
    std::vector<Task<Result<std::int64_t, StoreError>>> calls;
    for (int i = 0; i < 50; ++i) {
        calls.push_back(first->enqueue(sampleChange("1-" + std::to_string(i))));
        calls.push_back(second->enqueue(sampleChange("2-" + std::to_string(i))));
    }
    std::map<std::int64_t, std::size_t> numbers;
    for (std::size_t i = 0; i < calls.size(); ++i)
        numbers[QCoro::waitFor(calls[i]).value()] = i;
    EXPECT_EQ(numbers.size(), 100U);
    EXPECT_EQ(wait(first->pending()), wait(second->pending()));
    ASSERT_TRUE(wait(second->dequeue(1)));
    EXPECT_EQ(wait(first->pending()).front().seq, 2);
}

TEST(StoreNameTest, namesTheFileAfterServerAndAccount)
{
    EXPECT_EQ(LocalStore::fileName("https://time.example.org:8443", "42"), "time.example.org-8443-42.sqlite");
    EXPECT_EQ(LocalStore::fileName("https://time.example.org/api", "a:b/c d_e"),
              "time.example.org-a_b_c_d_e.sqlite");
    EXPECT_EQ(LocalStore::fileName("http://[::1]:80", "é1"), "__1-80-é1.sqlite");
    EXPECT_EQ(LocalStore::fileName("", "../../x"), "server-.._.._x.sqlite");
    EXPECT_EQ(LocalStore::filePath("/data/Orvane", "http://127.0.0.1:4000", "u"),
              "/data/Orvane/127.0.0.1-4000-u.sqlite");
}

TEST_F(LocalStoreTest, movesAStoreWithItsCompanions)
{
    const std::string target = m_folder.filePath(QStringLiteral("moved.sqlite")).toStdString();
    writeBytes(m_path, "main");
    writeBytes(m_path + "-wal", "log");
    ASSERT_TRUE(LocalStore::moveStore(m_path, target));
    EXPECT_EQ(bytesOf(target), "main");
    EXPECT_EQ(bytesOf(target + "-wal"), "log");
    EXPECT_FALSE(std::filesystem::exists(m_path));
    EXPECT_FALSE(std::filesystem::exists(m_path + "-wal"));

    // Cut short after the first file, it goes on where it stopped.
    writeBytes(m_path + "-shm", "index");
    ASSERT_TRUE(LocalStore::moveStore(m_path, target));
    EXPECT_EQ(bytesOf(target + "-shm"), "index");

    // Two stores: neither is touched, and no log goes over to the other.
    std::filesystem::remove(target + "-wal");
    writeBytes(m_path, "another");
    writeBytes(m_path + "-wal", "its log");
    ASSERT_TRUE(LocalStore::moveStore(m_path, target));
    EXPECT_EQ(bytesOf(m_path), "another");
    EXPECT_EQ(bytesOf(m_path + "-wal"), "its log");
    EXPECT_EQ(bytesOf(target), "main");
    EXPECT_FALSE(std::filesystem::exists(target + "-wal"));

    const StoreStatus failed =
        LocalStore::moveStore(m_path, m_folder.path().toStdString() + "/none/store.sqlite");
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().kind, StoreError::Kind::cannotOpen);
    EXPECT_EQ(bytesOf(m_path), "another");
}

} // namespace
} // namespace orvane
