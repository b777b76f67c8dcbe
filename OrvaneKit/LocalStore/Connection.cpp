// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalStore/Connection.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace orvane {

namespace {

constexpr const char *schemaScript =
    "PRAGMA journal_mode = WAL;\n"
    "CREATE TABLE IF NOT EXISTS document (key TEXT PRIMARY KEY NOT NULL, value BLOB NOT NULL);\n"
    "CREATE TABLE IF NOT EXISTS outbox (seq INTEGER PRIMARY KEY AUTOINCREMENT, change BLOB NOT NULL, "
    "created_at REAL NOT NULL);\n"
    "PRAGMA user_version = 1;";

/// More distinct statements than the store itself ever runs; beyond it the kept ones are thrown away.
constexpr std::size_t keptStatements = 16;

StoreError::Kind kindOf(int code, int systemError)
{
    if (systemError == ENOSPC || systemError == EDQUOT || systemError == EFBIG)
        return StoreError::Kind::full;
    switch (code & 0xFF) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
        return StoreError::Kind::notADatabase;
    case SQLITE_READONLY:
        return StoreError::Kind::readOnly;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
        return StoreError::Kind::locked;
    case SQLITE_FULL:
        return StoreError::Kind::full;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
        return StoreError::Kind::cannotOpen;
    default:
        return StoreError::Kind::other;
    }
}

StoreError errorOf(sqlite3 *database, const std::string &file)
{
    if (database == nullptr)
        return {StoreError::Kind::cannotOpen, "unknown error", file};
    const int code = sqlite3_errcode(database);
    int systemCode = 0;
    if (code == SQLITE_IOERR || code == SQLITE_CANTOPEN) {
        // SQLite does not keep the number of every failed write; errno was cleared before the call.
        systemCode = sqlite3_system_errno(database);
        systemCode = systemCode == 0 ? errno : systemCode;
    }
    const char *message = sqlite3_errmsg(database);
    return {kindOf(code, systemCode), message != nullptr ? message : "unknown error", file};
}

StoreError systemError(const std::string &file)
{
    const int code = errno;
    return {kindOf(SQLITE_CANTOPEN, code), std::strerror(code), file};
}

/// Makes the folder and those above it, for this user alone.
bool makeFolder(const std::string &folder)
{
    if (::mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST)
        return true;
    const std::size_t slash = folder.find_last_of('/');
    if (errno != ENOENT || slash == std::string::npos || slash == 0)
        return false;
    return makeFolder(folder.substr(0, slash)) && (::mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST);
}

/// SQLite would make the file readable by others; the files that it makes beside it take this one's mode.
StoreStatus makeFile(const std::string &file)
{
    struct stat status{};
    if (::stat(file.c_str(), &status) != 0) {
        if (!makeFolder(file.substr(0, file.find_last_of('/'))))
            return failure(systemError(file));
        const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (descriptor < 0)
            return errno == EEXIST ? StoreStatus{} : StoreStatus{failure(systemError(file))};
        ::close(descriptor);
        return {};
    }
    // An emptied file with changes still beside it: SQLite would take it for a new one and delete them.
    struct stat beside{};
    if (status.st_size == 0 && ::stat((file + "-wal").c_str(), &beside) == 0 && beside.st_size > 0)
        return failure(StoreError{StoreError::Kind::notADatabase, "the file is empty", file});
    return {};
}

} // namespace

int Connection::Row::size() const
{
    return sqlite3_column_count(m_statement);
}

// The value's own functions take no lock, unlike those of the column: the connection has one user, and a
// queue has many rows.
std::optional<std::int64_t> Connection::Row::integer(int column) const
{
    sqlite3_value *value = sqlite3_column_value(m_statement, column);
    if (sqlite3_value_type(value) != SQLITE_INTEGER)
        return std::nullopt;
    return sqlite3_value_int64(value);
}

std::optional<std::string_view> Connection::Row::blob(int column) const
{
    sqlite3_value *value = sqlite3_column_value(m_statement, column);
    if (sqlite3_value_type(value) != SQLITE_BLOB)
        return std::nullopt;
    // An empty blob has no address.
    const auto *bytes = static_cast<const char *>(sqlite3_value_blob(value));
    return bytes == nullptr ? std::string_view()
                            : std::string_view(bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

StoreValue Connection::Row::value(int column) const
{
    switch (sqlite3_column_type(m_statement, column)) {
    case SQLITE_INTEGER:
        return std::int64_t{sqlite3_column_int64(m_statement, column)};
    case SQLITE_FLOAT:
        return sqlite3_column_double(m_statement, column);
    case SQLITE_TEXT: {
        const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
        return std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column)));
    }
    case SQLITE_BLOB:
        return StoreBlob{std::string(blob(column).value_or(std::string_view()))};
    default:
        return std::monostate{};
    }
}

Connection::Connection(sqlite3 *database, std::string file) : m_database(database), m_file(std::move(file)) {}

Connection::~Connection()
{
    m_statements.clear();
    sqlite3_close(m_database);
}

Result<std::unique_ptr<Connection>, StoreError> Connection::open(std::optional<std::string> file,
                                                                 StoreOptions options)
{
    if (file) {
        if (const StoreStatus made = makeFile(*file); !made)
            return failure(made.error());
    }
    sqlite3 *database = nullptr;
    const int code = sqlite3_open_v2(file ? file->c_str() : ":memory:", &database,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX,
                                     options.fileLayer.empty() ? nullptr : options.fileLayer.c_str());
    // Owned from here on, so that a failure closes it.
    std::unique_ptr<Connection> connection(new Connection(database, file.value_or("")));
    if (code != SQLITE_OK)
        return connection->lastFailure();
    if (sqlite3_db_readonly(database, "main") == 1)
        return failure(
            StoreError{StoreError::Kind::readOnly, sqlite3_errstr(SQLITE_READONLY), connection->m_file});
    sqlite3_busy_timeout(database, static_cast<int>(options.busyTimeout.count()));
    const StoreStatus ready = connection->migrate(options.busyTimeout).and_then([&] {
        return connection->execute("PRAGMA synchronous = FULL");
    });
    if (!ready)
        return failure(ready.error());
    return connection;
}

StoreStatus Connection::migrate(std::chrono::milliseconds busyTimeout)
{
    std::int64_t version = 0;
    StoreStatus read =
        run("PRAGMA user_version", {}, [&](const Row &row) { version = row.integer(0).value_or(0); });
    if (version >= 1)
        return {};
    // The script would wait as long again, to no better end.
    if (!read && read.error().kind == StoreError::Kind::locked)
        return read;
    // SQLite does not apply its time-out to the change of journal mode, which two processes that create the
    // file together both want.
    const auto deadline = std::chrono::steady_clock::now() + busyTimeout;
    StoreStatus status = execute(schemaScript);
    while (!status && status.error().kind == StoreError::Kind::locked &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds{5});
        status = execute(schemaScript);
    }
    return status;
}

StoreStatus Connection::execute(const char *script)
{
    errno = 0;
    if (sqlite3_exec(m_database, script, nullptr, nullptr, nullptr) != SQLITE_OK)
        return lastFailure();
    return {};
}

StoreStatus Connection::run(const std::string &sql, std::span<const StoreValue> values, const OnRow &onRow)
{
    const Result<sqlite3_stmt *, StoreError> statement = prepared(sql);
    if (!statement)
        return failure(statement.error());
    StoreStatus status = bind(*statement, values);
    if (status)
        status = step(*statement, onRow);
    sqlite3_reset(*statement);
    sqlite3_clear_bindings(*statement);
    return status;
}

StoreStatus Connection::transaction(const std::function<StoreStatus()> &work)
{
    // Immediate: a transaction that turns from reading to writing would not wait for another writer.
    StoreStatus status = execute("BEGIN IMMEDIATE");
    if (!status)
        return status;
    status = work();
    if (status)
        status = execute("COMMIT");
    if (!status && sqlite3_get_autocommit(m_database) == 0)
        sqlite3_exec(m_database, "ROLLBACK", nullptr, nullptr, nullptr);
    return status;
}

std::int64_t Connection::lastInsertedRow() const
{
    return sqlite3_last_insert_rowid(m_database);
}

Result<sqlite3_stmt *, StoreError> Connection::prepared(const std::string &sql)
{
    if (const auto found = m_statements.find(sql); found != m_statements.end())
        return found->second.get();
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(m_database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        return lastFailure();
    if (statement == nullptr)
        return failure(StoreError{StoreError::Kind::other, "there is no statement to run", m_file});
    if (m_statements.size() >= keptStatements)
        m_statements.clear();
    m_statements.emplace(sql, Statement(statement, &sqlite3_finalize));
    return statement;
}

StoreStatus Connection::bind(sqlite3_stmt *statement, std::span<const StoreValue> values) const
{
    struct Binder {
        sqlite3_stmt *statement;
        int index;

        int operator()(std::int64_t value) const { return sqlite3_bind_int64(statement, index, value); }
        int operator()(double value) const { return sqlite3_bind_double(statement, index, value); }
        int operator()(const std::string &text) const
        {
            return sqlite3_bind_text(statement, index, text.c_str(), -1, SQLITE_TRANSIENT);
        }
        int operator()(const StoreBlob &blob) const
        {
            return sqlite3_bind_blob64(statement, index, blob.bytes.data(), blob.bytes.size(),
                                       SQLITE_TRANSIENT);
        }
        int operator()(std::monostate) const { return sqlite3_bind_null(statement, index); }
    };
    int index = 0;
    for (const StoreValue &value : values) {
        if (std::visit(Binder{statement, ++index}, value) != SQLITE_OK)
            return lastFailure();
    }
    return {};
}

StoreStatus Connection::step(sqlite3_stmt *statement, const OnRow &onRow) const
{
    errno = 0;
    for (;;) {
        const int code = sqlite3_step(statement);
        if (code == SQLITE_DONE)
            return {};
        if (code != SQLITE_ROW)
            return lastFailure();
        if (onRow)
            onRow(Row(statement));
    }
}

tl::unexpected<StoreError> Connection::lastFailure() const
{
    return failure(errorOf(m_database, m_file));
}

} // namespace orvane
