// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

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
    std::optional<std::string> optionalText(int column) const
    {
        return m_query.isNull(column) ? std::nullopt : std::optional{text(column)};
    }
    std::optional<std::int64_t> optionalInteger(int column) const
    {
        return m_query.isNull(column) ? std::nullopt : std::optional{integer(column)};
    }
    std::optional<double> optionalReal(int column) const
    {
        return m_query.isNull(column) ? std::nullopt : std::optional{real(column)};
    }

private:
    const QSqlQuery &m_query;
};

/// The server's database: one connection, used by the server's one thread. Statements are prepared once and
/// kept by their text, so the texts are constants of the code, with `?` for values.
///
/// A failure sticks until the transaction ends: from then on nothing is run, reads come back empty and
/// `commit` refuses. Whoever handles a request thus cannot report a change that was not kept, and need not
/// look at each statement's outcome; the one who opened the transaction asks.
class Database {
public:
    /// `path` is a file, made with access for its owner alone when it is not there, or ":memory:". Brings the
    /// tables up to date. The error is a sentence for people.
    static Result<std::unique_ptr<Database>, std::string> open(const std::string &path);
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;
    ~Database();

    bool begin();
    /// False when anything since `begin` failed, or this did; everything is undone then.
    bool commit();
    void rollback();
    bool hasFailed() const { return m_failed; }
    /// What the database system said about the last failure, for the log.
    const std::string &lastError() const { return m_lastError; }

    /// Runs a statement and answers how many rows it touched.
    template <class... Values>
    std::int64_t run(std::string_view sql, const Values &...values)
    {
        QSqlQuery *query = execute(sql, {sqlValue(values)...});
        if (!query)
            return 0;
        const std::int64_t touched = query->numRowsAffected();
        query->finish();
        return touched;
    }

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

    /// Runs one statement that is not kept prepared: table definitions and settings of the connection.
    bool runOnce(std::string_view sql);

private:
    explicit Database(QString connection) : m_connection(std::move(connection)) {}

    static QVariant sqlValue(const std::string &text);
    static QVariant sqlValue(std::string_view text);
    static QVariant sqlValue(const char *text) { return sqlValue(std::string_view(text)); }
    static QVariant sqlValue(std::int64_t number) { return QVariant::fromValue<qlonglong>(number); }
    static QVariant sqlValue(std::same_as<bool> auto value) { return QVariant(value ? 1 : 0); }
    static QVariant sqlValue(double number) { return QVariant(number); }
    template <class T>
    static QVariant sqlValue(const std::optional<T> &value)
    {
        return value ? sqlValue(*value) : QVariant();
    }

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
    std::unordered_map<std::string_view, QSqlQuery> m_statements;
    std::string m_lastError;
    bool m_failed = false;
};

} // namespace orvane::server
