// SPDX-License-Identifier: GPL-3.0-or-later
// The local store beside bare SQLite: what a durable submit and reading the queue back cost on top of it.
// The files lie in the folder named by ORVANE_BENCHMARK_FOLDER, which must be on a real disk.
#include "LocalStore/LocalStore.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QTemporaryDir>
#include <QUuid>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <simdjson.h>
#include <sqlite3.h>

namespace {

using namespace orvane;

constexpr int queuedChanges = 10'000;

std::string newId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}

EntryChange sampleChange(int number)
{
    EntryChange::Create create{.request = {}, .id = newId(), .workspaceId = newId()};
    EntryRequest &request = create.request;
    request.details.description =
        "Review the change to the report's totals, number " + std::to_string(number);
    request.details.projectId = newId();
    request.details.tagIds = {newId(), newId()};
    request.details.isBillable = number % 2 == 0;
    request.start = instantFromMilliseconds(1'772'357'400'123) + std::chrono::minutes{number};
    request.stop = request.start + std::chrono::minutes{25};
    return {create};
}

void require(bool condition, const char *message)
{
    if (condition)
        return;
    std::fprintf(stderr, "StoreBenchmark: %s\n", message);
    std::exit(1);
}

QString benchmarkFolder()
{
    return qEnvironmentVariable("ORVANE_BENCHMARK_FOLDER", QStringLiteral(".")) +
           QStringLiteral("/store-XXXXXX");
}

std::shared_ptr<LocalStore> openStore(const QTemporaryDir &folder)
{
    auto store =
        QCoro::waitFor(LocalStore::open(folder.filePath(QStringLiteral("store.sqlite")).toStdString()));
    require(store.has_value(), "the store cannot be opened");
    return *store;
}

/// The least that a program can do with SQLite under the same pragmas, prepared once.
class BareDatabase {
public:
    explicit BareDatabase(const QTemporaryDir &folder)
    {
        const std::string path = folder.filePath(QStringLiteral("bare.sqlite")).toStdString();
        require(sqlite3_open(path.c_str(), &m_database) == SQLITE_OK &&
                    sqlite3_exec(m_database,
                                 "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;"
                                 "CREATE TABLE outbox (seq INTEGER PRIMARY KEY AUTOINCREMENT, "
                                 "change BLOB NOT NULL, created_at REAL NOT NULL)",
                                 nullptr, nullptr, nullptr) == SQLITE_OK &&
                    sqlite3_prepare_v2(m_database, "INSERT INTO outbox (change, created_at) VALUES (?, ?)",
                                       -1, &m_insert, nullptr) == SQLITE_OK &&
                    sqlite3_prepare_v2(m_database, "SELECT seq, change FROM outbox ORDER BY seq", -1,
                                       &m_select, nullptr) == SQLITE_OK,
                "SQLite cannot be opened");
    }
    BareDatabase(const BareDatabase &) = delete;
    BareDatabase &operator=(const BareDatabase &) = delete;
    ~BareDatabase()
    {
        sqlite3_finalize(m_insert);
        sqlite3_finalize(m_select);
        sqlite3_close(m_database);
    }

    void begin()
    {
        require(sqlite3_exec(m_database, "BEGIN", nullptr, nullptr, nullptr) == SQLITE_OK, "no begin");
    }
    void commit()
    {
        require(sqlite3_exec(m_database, "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK, "no commit");
    }

    void insert(const std::string &change)
    {
        sqlite3_bind_blob(m_insert, 1, change.data(), static_cast<int>(change.size()), SQLITE_STATIC);
        sqlite3_bind_double(m_insert, 2, 1'772'357'400.5);
        require(sqlite3_step(m_insert) == SQLITE_DONE, "no insert");
        sqlite3_reset(m_insert);
    }

    template <class OnChange>
    void forEachChange(OnChange onChange)
    {
        while (sqlite3_step(m_select) == SQLITE_ROW)
            onChange(sqlite3_column_int64(m_select, 0),
                     static_cast<const char *>(sqlite3_column_blob(m_select, 1)),
                     static_cast<std::size_t>(sqlite3_column_bytes(m_select, 1)));
        sqlite3_reset(m_select);
    }

private:
    sqlite3 *m_database = nullptr;
    sqlite3_stmt *m_insert = nullptr;
    sqlite3_stmt *m_select = nullptr;
};

/// Both sides take turns of so many, since a disk has better and worse moments.
constexpr int submitsInTurn = 50;

double secondsSince(std::chrono::steady_clock::time_point began)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

Task<> submitEach(benchmark::State *state, std::shared_ptr<LocalStore> store, BareDatabase *bare)
{
    const EntryChange change = sampleChange(1);
    const std::string text = encodeJson(change, {.dates = DateCoding::secondsSince2001});
    double bareSeconds = 0;
    double storeSeconds = 0;
    for (auto step : *state) {
        static_cast<void>(step);
        auto began = std::chrono::steady_clock::now();
        for (int i = 0; i < submitsInTurn; ++i)
            bare->insert(text);
        bareSeconds += secondsSince(began);
        began = std::chrono::steady_clock::now();
        for (int i = 0; i < submitsInTurn; ++i) {
            const auto seq = co_await store->enqueue(change);
            require(seq.has_value(), "a change was refused");
        }
        storeSeconds += secondsSince(began);
    }
    state->counters["rate"] = bareSeconds / storeSeconds;
}

void submit(benchmark::State &state)
{
    const QTemporaryDir folder(benchmarkFolder());
    BareDatabase bare(folder);
    QCoro::waitFor(submitEach(&state, openStore(folder), &bare));
}
BENCHMARK(submit)->UseRealTime();

Task<> readEach(benchmark::State *state, std::shared_ptr<LocalStore> store)
{
    for (auto step : *state) {
        static_cast<void>(step);
        std::vector<PendingChange> changes = co_await store->pending();
        // Reading is what is measured, not forgetting what was read.
        state->PauseTiming();
        require(changes.size() == queuedChanges, "changes are missing");
        changes = {};
        state->ResumeTiming();
    }
}

void readStore(benchmark::State &state)
{
    const QTemporaryDir folder(benchmarkFolder());
    const auto store = openStore(folder);
    QCoro::waitFor(store->query("BEGIN", {}));
    for (int i = 0; i < queuedChanges; ++i)
        require(QCoro::waitFor(store->enqueue(sampleChange(i))).has_value(), "a change was refused");
    QCoro::waitFor(store->query("COMMIT", {}));
    QCoro::waitFor(readEach(&state, store));
}
BENCHMARK(readStore)->UseRealTime()->Unit(benchmark::kMillisecond);

void readBare(benchmark::State &state)
{
    const QTemporaryDir folder(benchmarkFolder());
    BareDatabase bare(folder);
    bare.begin();
    for (int i = 0; i < queuedChanges; ++i)
        bare.insert(encodeJson(sampleChange(i), {.dates = DateCoding::secondsSince2001}));
    bare.commit();
    simdjson::dom::parser parser;
    for (auto step : state) {
        static_cast<void>(step);
        int parsed = 0;
        bare.forEachChange([&](std::int64_t seq, const char *text, std::size_t size) {
            simdjson::dom::element change;
            parsed += parser.parse(text, size).get(change) == simdjson::SUCCESS ? 1 : 0;
            benchmark::DoNotOptimize(seq);
        });
        require(parsed == queuedChanges, "changes are missing");
    }
}
BENCHMARK(readBare)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
