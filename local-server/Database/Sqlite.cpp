// SPDX-License-Identifier: GPL-3.0-or-later
#include "Database/Sqlite.h"

#include "Database/Database.h"
#include "Support/FileDescriptor.h"

#include <QSqlError>
#include <cerrno>
#include <cstring>
#include <fcntl.h>

namespace orvane::server::sqlite {

namespace {

// Results as the library numbers them; the lower eight bits are the general one.
constexpr int busy = 5;
constexpr int primaryKeyTaken = 1555;
constexpr int uniqueTaken = 2067;
constexpr int rowIdTaken = 2579;

/// SQLite gives its side files the main file's permissions, so making that one private is enough.
bool makePrivateFile(const std::string &path)
{
    return static_cast<bool>(FileDescriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)));
}

/// An answered change must survive a power cut, hence FULL: in WAL mode anything less may lose the last
/// commits. Only another program that writes (a backup, somebody's shell) makes one wait.
constexpr std::string_view connectionSettings[] = {
    "PRAGMA busy_timeout = 5000",
    "PRAGMA journal_mode = WAL",
    "PRAGMA synchronous = FULL",
    "PRAGMA foreign_keys = ON",
};

} // namespace

Result<QSqlDatabase, std::string> connect(const QString &name, const std::string &path)
{
    if (path != ":memory:" && !makePrivateFile(path))
        return failure(std::string("the database cannot be opened for writing: ") + std::strerror(errno));
    QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    connection.setDatabaseName(QString::fromStdString(path));
    if (!connection.open())
        return failure("the database cannot be opened: " + connection.lastError().text().toStdString());
    for (const auto setting : connectionSettings) {
        QSqlQuery query(connection);
        if (!query.exec(QString::fromUtf8(setting.data(), static_cast<qsizetype>(setting.size()))))
            return failure("the database cannot be used: " + query.lastError().text().toStdString());
    }
    return connection;
}

DatabaseFailure failureOf(const QSqlError &error)
{
    const int code = error.nativeErrorCode().toInt();
    if (code == uniqueTaken || code == primaryKeyTaken || code == rowIdTaken)
        return DatabaseFailure::taken;
    return (code & 0xff) == busy ? DatabaseFailure::busy : DatabaseFailure::broken;
}

} // namespace orvane::server::sqlite
