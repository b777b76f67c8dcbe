// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/AccountStores.h"

#include "LocalStore/StoreSteps.h"

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

StoreStatus removeStore(const std::string &root, const std::string &server, const std::string &account)
{
    const std::string path = LocalStore::filePath(root, server, account);
    // The store itself last: cut short, this is done again.
    for (const char *beside : {"-wal", "-shm", ".lock", ""}) {
        std::error_code error;
        std::filesystem::remove(path + beside, error);
        if (error)
            return failure(StoreError{StoreError::Kind::cannotOpen, error.message(), path + beside});
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
    return store.inspect([](Connection &connection) -> Result<std::int64_t, StoreError> {
        std::int64_t count = 0;
        StoreSteps steps(connection);
        if (!steps.countRows(count))
            return steps.error();
        return count;
    });
}

Task<StoreStatus> readThrough(LocalStore &store)
{
    return store.inspect(
        [](Connection &connection) -> StoreStatus { return StoreSteps(connection).readAll().status(); });
}

Task<Result<std::vector<std::int64_t>, StoreError>> unreadableRows(LocalStore &store)
{
    return store.inspect([](Connection &connection) -> Result<std::vector<std::int64_t>, StoreError> {
        std::vector<std::int64_t> seqs;
        StoreSteps steps(connection);
        if (!steps.readUnreadable(seqs))
            return steps.error();
        return seqs;
    });
}

} // namespace orvane
