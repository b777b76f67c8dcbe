// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"
#include "Support/Result.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace orvane::server {

/// One row of an answer; columns count from 0 in the order of the SELECT.
class SqlRow {
public:
    explicit SqlRow(const QSqlQuery &query) : m_query(query) {}

    std::string text(int column) const { return m_query.value(column).toString().toStdString(); }
    std::int64_t integer(int column) const { return m_query.value(column).toLongLong(); }
    bool boolean(int column) const { return integer(column) != 0; }
    double real(int column) const { return m_query.value(column).toDouble(); }
    Instant instant(int column) const { return instantFromMilliseconds(integer(column)); }
    bool isNull(int column) const { return m_query.isNull(column); }
    std::optional<std::string> optionalText(int column) const
    {
        return m_query.isNull(column) ? std::nullopt : std::optional{text(column)};
    }

private:
    const QSqlQuery &m_query;
};

/// Why a statement failed, as far as it matters to who asked for it.
enum class DatabaseFailure {
    /// A unique index says that what was to be written is there already.
    taken,
    /// Somebody else kept the database to themselves for too long.
    busy,
    /// Whatever else: no room, a broken file.
    broken
};

/// What a transaction is for. One that reads holds nobody up and must write nothing.
enum class Lane { reading, writing };

/// One connection to the server's database, used on the thread that opened it; each thread has its own.
/// Statements are prepared once and kept by their text, so there must be a bounded number of texts: they are
/// made of constants of the code, with `?` for values. Instants are kept in milliseconds.
///
/// A failure sticks until the transaction ends: from then on nothing is run, reads come back empty and
/// `commit` refuses. Whoever handles a request thus cannot report a change that was not kept, and need not
/// look at each statement's outcome; the one who opened the transaction asks.
class Database {
public:
    /// `path` is a file, made with access for its owner alone when it is not there, or ":memory:". Brings the
    /// tables up to date. The error is a sentence for people.
    static Result<std::unique_ptr<Database>, std::string> open(const std::string &path);
    /// The same for a database whose tables are up to date already.
    static Result<std::unique_ptr<Database>, std::string> connect(const std::string &path);
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;
    ~Database();

    bool begin(Lane lane = Lane::writing);
    /// False when anything since `begin` failed, or this did; everything is undone then.
    bool commit();
    void rollback();
    bool hasFailed() const { return m_failed; }
    /// The kind of the last failure, and what the database system said about it, for the log.
    DatabaseFailure lastFailure() const { return m_lastFailure; }
    const std::string &lastError() const { return m_lastError; }

    /// Runs a statement that writes and answers how many rows it touched.
    template <class... Values>
    std::int64_t run(std::string_view sql, const Values &...values)
    {
        return runWith(sql, {sqlValue(values)...});
    }
    std::int64_t runWith(std::string_view sql, const std::vector<QVariant> &values);

    /// All rows, each made into a value by `read`.
    template <class Read, class... Values>
    auto rows(std::string_view sql, Read read, const Values &...values)
    {
        std::vector<std::invoke_result_t<Read, const SqlRow &>> out;
        eachRow(sql, {sqlValue(values)...}, [&](const SqlRow &row) { out.push_back(read(row)); });
        return out;
    }

    /// The first row, or nothing.
    template <class Read, class... Values>
    auto row(std::string_view sql, Read read, const Values &...values)
    {
        std::optional<std::invoke_result_t<Read, const SqlRow &>> out;
        eachRow(sql, {sqlValue(values)...}, [&](const SqlRow &row) {
            if (!out)
                out = read(row);
        });
        return out;
    }

    template <class... Values>
    bool exists(std::string_view sql, const Values &...values)
    {
        return row(sql, [](const SqlRow &) { return true; }, values...).value_or(false);
    }

    /// Runs one statement that is not kept prepared, such as a table's definition.
    bool runOnce(std::string_view sql);

    // How values are kept.
    static QVariant sqlValue(const std::string &text);
    static QVariant sqlValue(std::string_view text);
    static QVariant sqlValue(const char *text) { return sqlValue(std::string_view(text)); }
    static QVariant sqlValue(std::int64_t number) { return QVariant::fromValue<qlonglong>(number); }
    static QVariant sqlValue(std::same_as<bool> auto value) { return QVariant(value ? 1 : 0); }
    static QVariant sqlValue(double number) { return QVariant(number); }
    static QVariant sqlValue(Instant instant) { return sqlValue(millisecondsSinceEpoch(instant)); }
    template <class T>
    static QVariant sqlValue(const std::optional<T> &value)
    {
        return value ? sqlValue(*value) : QVariant();
    }

private:
    explicit Database(QString connection) : m_connection(std::move(connection)) {}

    struct TextHash : std::hash<std::string_view> {
        using is_transparent = void;
    };

    QSqlQuery *prepared(std::string_view sql);
    bool control(std::string_view sql);
    QSqlQuery *execute(std::string_view sql, const std::vector<QVariant> &values);
    template <class Take>
    void eachRow(std::string_view sql, const std::vector<QVariant> &values, Take take)
    {
        QSqlQuery *query = execute(sql, values);
        if (!query)
            return;
        const SqlRow row(*query);
        while (query->next())
            take(row);
        endRead(*query);
    }
    void endRead(QSqlQuery &query);
    void fail(const QSqlError &error);

    QString m_connection;
    QSqlDatabase m_database;
    std::unordered_map<std::string, QSqlQuery, TextHash, std::equal_to<>> m_statements;
    DatabaseFailure m_lastFailure = DatabaseFailure::broken;
    std::string m_lastError;
    Lane m_lane = Lane::writing;
    bool m_failed = false;
};

} // namespace orvane::server
