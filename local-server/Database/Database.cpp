// SPDX-License-Identifier: GPL-3.0-or-later
#include "Database/Database.h"

#include "Database/Migrations.h"

#include <QSqlError>
#include <atomic>
#include <fcntl.h>
#include <unistd.h>

namespace orvane::server {

namespace {

QString nextConnectionName()
{
    static std::atomic<int> count = 0;
    return QStringLiteral("orvane-server-%1").arg(++count);
}

/// SQLite gives its side files the main file's permissions, so making that one private is enough.
bool makePrivateFile(const std::string &path)
{
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    return descriptor >= 0 && ::close(descriptor) == 0;
}

/// What is particular to SQLite is said here and nowhere else. An answered change must survive a power cut,
/// hence FULL: in WAL mode anything less may lose the last commits.
constexpr std::string_view connectionSettings[] = {
    "PRAGMA journal_mode = WAL",
    "PRAGMA synchronous = FULL",
    "PRAGMA foreign_keys = ON",
    "PRAGMA busy_timeout = 5000",
};

} // namespace

Result<std::unique_ptr<Database>, std::string> Database::open(const std::string &path)
{
    if (path != ":memory:" && !makePrivateFile(path))
        return failure(std::string("the database cannot be opened for writing: ") + std::strerror(errno));
    std::unique_ptr<Database> database(new Database(nextConnectionName()));
    auto &connection = database->m_database;
    connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), database->m_connection);
    connection.setDatabaseName(QString::fromStdString(path));
    if (!connection.open())
        return failure("the database cannot be opened: " + connection.lastError().text().toStdString());
    for (const auto setting : connectionSettings) {
        if (!database->runOnce(setting))
            return failure("the database cannot be used: " + database->lastError());
    }
    if (auto migrated = migrate(*database); !migrated)
        return failure(std::move(migrated.error()));
    return database;
}

Database::~Database()
{
    m_statements.clear();
    m_database.close();
    m_database = {};
    QSqlDatabase::removeDatabase(m_connection);
}

bool Database::begin()
{
    m_failed = false;
    if (!m_database.transaction())
        fail(m_database.lastError());
    return !m_failed;
}

bool Database::commit()
{
    if (!m_failed && !m_database.commit())
        fail(m_database.lastError());
    if (!m_failed)
        return true;
    rollback();
    return false;
}

void Database::rollback()
{
    m_database.rollback();
    m_failed = false;
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

QSqlQuery *Database::execute(std::string_view sql, const std::vector<QVariant> &values)
{
    if (m_failed)
        return nullptr;
    auto found = m_statements.find(sql);
    if (found == m_statements.end()) {
        QSqlQuery query(m_database);
        query.setForwardOnly(true);
        if (!query.prepare(QString::fromUtf8(sql.data(), static_cast<qsizetype>(sql.size())))) {
            fail(query.lastError());
            return nullptr;
        }
        found = m_statements.emplace(sql, std::move(query)).first;
    }
    QSqlQuery &query = found->second;
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
    m_lastError = error.text().toStdString();
}

} // namespace orvane::server
