// SPDX-License-Identifier: GPL-3.0-or-later
#include "Database/Database.h"

#include "Database/Migrations.h"
#include "Database/Sqlite.h"
#include "Support/Require.h"

#include <QSqlError>
#include <atomic>

namespace orvane::server {

namespace {

QString nextConnectionName()
{
    static std::atomic<int> count = 0;
    return QStringLiteral("orvane-server-%1").arg(++count);
}

} // namespace

Result<std::unique_ptr<Database>, std::string> Database::open(const std::string &path)
{
    auto database = connect(path);
    if (!database)
        return database;
    if (auto migrated = migrate(**database); !migrated)
        return failure(std::move(migrated.error()));
    return database;
}

Result<std::unique_ptr<Database>, std::string> Database::connect(const std::string &path)
{
    std::unique_ptr<Database> database(new Database(nextConnectionName()));
    auto connection = sqlite::connect(database->m_connection, path);
    if (!connection)
        return failure(std::move(connection.error()));
    database->m_database = std::move(*connection);
    return database;
}

Database::~Database()
{
    m_statements.clear();
    m_database.close();
    m_database = {};
    QSqlDatabase::removeDatabase(m_connection);
}

bool Database::begin(Lane lane)
{
    m_failed = false;
    m_lane = lane;
    return control(lane == Lane::writing ? sqlite::beginWriting : sqlite::beginReading);
}

bool Database::commit()
{
    if (!m_failed && control("COMMIT"))
        return true;
    rollback();
    return false;
}

void Database::rollback()
{
    m_failed = false;
    // There is none to undo when it did not begin, or the system undid it by itself.
    const std::string error = m_lastError;
    const DatabaseFailure kind = m_lastFailure;
    control("ROLLBACK");
    m_lastError = error;
    m_lastFailure = kind;
    m_failed = false;
}

bool Database::control(std::string_view sql)
{
    if (QSqlQuery *query = execute(sql, {}))
        query->finish();
    return !m_failed;
}

std::int64_t Database::runWith(std::string_view sql, const std::vector<QVariant> &values)
{
    ORVANE_REQUIRE(m_lane == Lane::writing, "a transaction that reads would write");
    QSqlQuery *query = execute(sql, values);
    if (!query)
        return 0;
    const std::int64_t touched = query->numRowsAffected();
    query->finish();
    return touched;
}

bool Database::runOnce(std::string_view sql)
{
    QSqlQuery query(m_database);
    if (!m_failed && !query.exec(QString::fromUtf8(sql.data(), static_cast<qsizetype>(sql.size()))))
        fail(query.lastError());
    return !m_failed;
}

QVariant Database::sqlValue(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QVariant Database::sqlValue(const std::string &text)
{
    return sqlValue(std::string_view(text));
}

QSqlQuery *Database::prepared(std::string_view sql)
{
    if (const auto found = m_statements.find(sql); found != m_statements.end())
        return &found->second;
    QSqlQuery query(m_database);
    query.setForwardOnly(true);
    if (!query.prepare(QString::fromUtf8(sql.data(), static_cast<qsizetype>(sql.size())))) {
        fail(query.lastError());
        return nullptr;
    }
    return &m_statements.emplace(sql, std::move(query)).first->second;
}

QSqlQuery *Database::execute(std::string_view sql, const std::vector<QVariant> &values)
{
    QSqlQuery *found = m_failed ? nullptr : prepared(sql);
    if (!found)
        return nullptr;
    QSqlQuery &query = *found;
    for (std::size_t i = 0; i < values.size(); ++i)
        query.bindValue(static_cast<int>(i), values[i]);
    if (!query.exec()) {
        fail(query.lastError());
        query.finish();
        return nullptr;
    }
    return &query;
}

void Database::endRead(QSqlQuery &query)
{
    // `next` answers false for a broken file as it does at the end.
    if (query.lastError().isValid())
        fail(query.lastError());
    // An unfinished read would keep the log from being written back to the file.
    query.finish();
}

void Database::fail(const QSqlError &error)
{
    m_failed = true;
    m_lastFailure = sqlite::failureOf(error);
    m_lastError = error.text().toStdString();
}

} // namespace orvane::server
