// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/AccountStores.h"

#include <filesystem>
#include <optional>
#include <set>
#include <string_view>

namespace orvane {

namespace {

const std::string extension = ".sqlite";

/// The account in the name of a store's file or of one that SQLite keeps beside it.
std::optional<std::string> accountOf(std::string_view name, const std::string &prefix)
{
    if (!name.starts_with(prefix))
        return std::nullopt;
    name.remove_prefix(prefix.size());
    for (const char *beside : {"", "-wal", "-shm"}) {
        const std::string ending = extension + beside;
        if (name.size() > ending.size() && name.ends_with(ending))
            return std::string(name.substr(0, name.size() - ending.size()));
    }
    return std::nullopt;
}

} // namespace

std::vector<std::string> accountsWithStore(const std::string &root, const std::string &server)
{
    std::string prefix = LocalStore::fileName(server, "");
    prefix.resize(prefix.size() - extension.size());
    std::set<std::string> accounts;
    std::error_code error;
    for (const auto &file : std::filesystem::directory_iterator(root, error)) {
        if (auto account = accountOf(file.path().filename().string(), prefix))
            accounts.insert(std::move(*account));
    }
    return {accounts.begin(), accounts.end()};
}

StoreStatus moveStores(const std::string &root, const std::string &from, const std::string &to)
{
    for (const std::string &account : accountsWithStore(root, from)) {
        const auto moved = LocalStore::moveStore(LocalStore::filePath(root, from, account),
                                                 LocalStore::filePath(root, to, account));
        if (!moved)
            return moved;
    }
    return {};
}

Task<std::vector<WaitingStore>> waitingBeside(std::string root, std::string server, std::string account)
{
    const std::string own = LocalStore::filePath(root, server, account);
    std::vector<WaitingStore> waiting;
    for (const std::string &other : accountsWithStore(root, server)) {
        std::string file = LocalStore::filePath(root, server, other);
        std::error_code error;
        if (file == own || !std::filesystem::is_regular_file(file, error))
            continue;
        auto opened = co_await LocalStore::open(file);
        auto changes = opened ? co_await queuedRows(**opened)
                              : Result<std::int64_t, StoreError>(failure(std::move(opened.error())));
        if (!changes || *changes > 0)
            waiting.push_back({std::move(file), std::move(changes)});
    }
    co_return waiting;
}

Task<Result<std::int64_t, StoreError>> queuedRows(LocalStore &store)
{
    using Answer = Result<std::int64_t, StoreError>;
    return store.inspect([](Connection &connection) -> Answer {
        std::int64_t count = 0;
        const StoreStatus read =
            connection.run("SELECT COUNT(*) FROM outbox", {},
                           [&](const Connection::Row &row) { count = row.integer(0).value_or(0); });
        return read ? Answer(count) : Answer(failure(read.error()));
    });
}

Task<StoreStatus> readThrough(LocalStore &store)
{
    return store.inspect([](Connection &connection) -> StoreStatus {
        const auto read = [](const Connection::Row &row) { row.blob(0); };
        const StoreStatus documents = connection.run("SELECT value FROM document", {}, read);
        return documents ? connection.run("SELECT change FROM outbox", {}, read) : documents;
    });
}

Task<Result<std::vector<std::int64_t>, StoreError>> unreadableRows(LocalStore &store)
{
    using Answer = Result<std::vector<std::int64_t>, StoreError>;
    return store.inspect([](Connection &connection) -> Answer {
        std::vector<std::int64_t> seqs;
        const StoreStatus read = connection.run(
            "SELECT seq, change FROM outbox ORDER BY seq", {}, [&](const Connection::Row &row) {
                constexpr JsonReading reading{.dates = DateCoding::SecondsSince2001};
                const auto text = row.blob(1);
                if (!text || !decodeJson<EntryChange>(*text, reading))
                    seqs.push_back(row.integer(0).value_or(0));
            });
        return read ? Answer(std::move(seqs)) : Answer(failure(read.error()));
    });
}

} // namespace orvane
