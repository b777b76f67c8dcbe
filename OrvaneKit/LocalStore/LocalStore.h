// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryChange.h"
#include "LocalStore/Connection.h"
#include "LocalStore/PendingChange.h"
#include "LocalStore/StoreSteps.h"
#include "Support/AsyncHop.h"
#include "Support/Json.h"

#include <QThreadPool>
#include <memory>

namespace orvane {

/// What must survive between runs, in one SQLite file per server and account: documents by key, so that
/// screens open with data before the server answers, and the queue of changes that the server has not
/// accepted yet.
///
/// Owned by whoever keeps the signed-in account. Calls may come from any thread with an event loop, which the
/// answer comes back to; they run one at a time on the store's own thread, in the order in which they were
/// made. A call that answered without an error is on the disk, whatever happens to the process or the power.
/// Several processes may hold one file open. The destructor waits for the calls under way.
class LocalStore {
public:
    using Value = StoreValue;
    using Rows = std::vector<std::vector<Value>>;
    using Opened = Result<std::shared_ptr<LocalStore>, StoreError>;

    /// Opens the file at `path`, creating it (mode 0600) and its folders (0700) when missing. A file that
    /// cannot be used is an error and stays as it is.
    static Task<Opened> open(std::string path, StoreOptions options = {});
    /// The same store without a file.
    static Task<Opened> openInMemory();
    LocalStore(const LocalStore &) = delete;
    LocalStore &operator=(const LocalStore &) = delete;
    ~LocalStore();

    /// The document under a key; nothing when there is none, or when it cannot be read as a T.
    template <class T>
    Task<std::optional<T>> load(std::string key);
    template <class T>
    Task<StoreStatus> save(std::string key, T document);
    Task<StoreStatus> remove(std::string key);

    /// The queue in order. Rows that do not hold a change are left out and stay in the file; when the queue
    /// cannot be read at all it reads as empty. Both are logged.
    Task<std::vector<PendingChange>> pending();
    /// Adds a change to the end of the queue and answers its number.
    Task<Result<std::int64_t, StoreError>> enqueue(EntryChange change);
    Task<StoreStatus> replace(std::int64_t seq, EntryChange change);
    Task<StoreStatus> dequeue(std::int64_t seq);
    /// Runs one statement with `values` bound to its parameters 1…n and answers its rows.
    Task<Result<Rows, StoreError>> query(std::string sql, std::vector<Value> values);

    /// Runs `work(Connection &)` on the store's thread inside one transaction and answers what it answers, a
    /// Result with a StoreError; an error rolls back.
    template <class Work>
    auto transact(Work work) -> Task<std::invoke_result_t<Work, Connection &>>;
    /// The same outside a transaction, for reading.
    template <class Work>
    auto inspect(Work work) -> Task<std::invoke_result_t<Work, Connection &>>;

    /// "HOST-PORT-ACCOUNT.sqlite" for the server's address and the account's identifier; without the port
    /// where the address names none.
    static std::string fileName(const std::string &server, const std::string &account);
    static std::string filePath(const std::string &root, const std::string &server,
                                const std::string &account);
    /// Moves a store that nobody has open, with the files that SQLite keeps beside it. Never overwrites: when
    /// both paths hold a store, both stay. A move that was cut short is taken up by the next call. Blocks.
    static StoreStatus moveStore(const std::string &from, const std::string &to);

private:
    explicit LocalStore(std::shared_ptr<Executor> executor);
    static Task<Opened> openAt(std::optional<std::string> path, StoreOptions options);

    std::vector<PendingChange> readPending();

    std::unique_ptr<Connection> m_connection; ///< touched on the executor only
    std::shared_ptr<Executor> m_executor;
};

// The jobs below hold plain pointers to the store: its destructor waits for them, and one that held the last
// reference would make the pool wait for itself.

template <class T>
Task<std::optional<T>> LocalStore::load(std::string key)
{
    return runOn(*m_executor, [this, key = std::move(key)] {
        std::optional<T> document;
        StoreSteps(*m_connection).read(key, document);
        return document;
    });
}

template <class T>
Task<StoreStatus> LocalStore::save(std::string key, T document)
{
    return runOn(*m_executor, [this, key = std::move(key), document = std::move(document)] {
        return StoreSteps(*m_connection).write(key, document).status();
    });
}

template <class Work>
auto LocalStore::transact(Work work) -> Task<std::invoke_result_t<Work, Connection &>>
{
    using Answer = std::invoke_result_t<Work, Connection &>;
    return runOn(*m_executor, [this, work = std::move(work)]() mutable -> Answer {
        std::optional<Answer> answer;
        const StoreStatus committed = m_connection->transaction([&]() -> StoreStatus {
            answer.emplace(work(*m_connection));
            return *answer ? StoreStatus{} : StoreStatus{failure(answer->error())};
        });
        if (!committed)
            return failure(committed.error());
        return std::move(*answer);
    });
}

template <class Work>
auto LocalStore::inspect(Work work) -> Task<std::invoke_result_t<Work, Connection &>>
{
    return runOn(*m_executor, [this, work = std::move(work)]() mutable { return work(*m_connection); });
}

} // namespace orvane
