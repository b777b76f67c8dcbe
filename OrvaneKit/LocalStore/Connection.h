// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LocalStore/StoreError.h"
#include "Support/Executor.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace orvane {

/// Bytes of a BLOB column, told apart from text.
struct StoreBlob {
    std::string bytes;

    bool operator==(const StoreBlob &) const = default;
};

/// A value bound to or read from a statement: integer, real, text (UTF-8), blob, null.
using StoreValue = std::variant<std::int64_t, double, std::string, StoreBlob, std::monostate>;

struct StoreOptions {
    /// How long a statement waits for a lock that another connection holds.
    std::chrono::milliseconds busyTimeout{5000};
    /// Where the statements run; null: a thread of the store's own.
    std::shared_ptr<Executor> executor = {};
    /// The name of the file layer that SQLite is to use; empty: the system's.
    std::string fileLayer = {};
};

/// An open database with its prepared statements. Owned by a LocalStore and used on that store's executor
/// alone. The database is closed with it.
class Connection {
public:
    /// The row that a statement stands on; valid only inside the call that hands it out.
    class Row {
    public:
        explicit Row(sqlite3_stmt *statement) : m_statement(statement) {}

        int size() const;
        /// Nothing when the column holds another kind of value.
        std::optional<std::int64_t> integer(int column) const;
        std::optional<std::string_view> blob(int column) const;
        StoreValue value(int column) const;

    private:
        sqlite3_stmt *m_statement;
    };
    using OnRow = std::function<void(const Row &)>;

    /// Opens the file, which is created (for its user alone) when missing, and brings its schema up to date.
    /// `file` is an absolute path, or nothing for a database in memory.
    static Result<std::unique_ptr<Connection>, StoreError> open(std::optional<std::string> file,
                                                                StoreOptions options);
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;
    ~Connection();

    /// Runs the first statement of `sql` with `values` bound to its parameters 1…n, and hands out its rows.
    /// The statement is kept for the next call with the same text. Not to be called from inside `onRow`.
    StoreStatus run(const std::string &sql, std::span<const StoreValue> values, const OnRow &onRow = {});
    /// Runs `work` inside one transaction, which a failure rolls back.
    StoreStatus transaction(const std::function<StoreStatus()> &work);
    std::int64_t lastInsertedRow() const;

private:
    using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)>;

    Connection(sqlite3 *database, std::string file);
    StoreStatus migrate(std::chrono::milliseconds busyTimeout);
    StoreStatus execute(const char *script);
    Result<sqlite3_stmt *, StoreError> prepared(const std::string &sql);
    StoreStatus bind(sqlite3_stmt *statement, std::span<const StoreValue> values) const;
    StoreStatus step(sqlite3_stmt *statement, const OnRow &onRow) const;
    tl::unexpected<StoreError> lastFailure() const;

    sqlite3 *m_database;
    std::string m_file;
    std::map<std::string, Statement> m_statements;
};

} // namespace orvane
