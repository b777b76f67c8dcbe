// SPDX-License-Identifier: GPL-3.0-or-later
// The measure for sending a queue: makes COUNT entries at the server on this computer, one after the other,
// and after each answer takes a row out of a database, durably. BareDrain SOCKET DATABASE COUNT.
#include "BareClient.h"

#include <QDateTime>
#include <QJsonArray>
#include <QUuid>
#include <sqlite3.h>

using namespace orvane::bare;

namespace {

sqlite3 *openQueue(const QString &path, int count)
{
    sqlite3 *database = nullptr;
    const bool isOpen =
        sqlite3_open(qPrintable(path), &database) == SQLITE_OK &&
        sqlite3_exec(database,
                     "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;"
                     "CREATE TABLE outbox (seq INTEGER PRIMARY KEY AUTOINCREMENT, change BLOB NOT NULL)",
                     nullptr, nullptr, nullptr) == SQLITE_OK;
    const QByteArray fill = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                            QByteArray::number(count) +
                            ") INSERT INTO outbox (change) SELECT zeroblob(400) FROM n";
    if (!isOpen || sqlite3_exec(database, fill.constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
        giveUp(QStringLiteral("the database cannot be used"));
    return database;
}

QJsonObject entry(int number)
{
    const QDateTime start = QDateTime::fromMSecsSinceEpoch(1'772'357'400'000LL + 60'000LL * number, Qt::UTC);
    return {{QStringLiteral("id"), QUuid::createUuid().toString(QUuid::WithoutBraces)},
            {QStringLiteral("description"), QStringLiteral("Queued %1").arg(number)},
            {QStringLiteral("tagIds"), QJsonArray()},
            {QStringLiteral("isBillable"), false},
            {QStringLiteral("shares"), QJsonArray()},
            {QStringLiteral("describeParts"), false},
            {QStringLiteral("start"), start.toString(Qt::ISODateWithMs)},
            {QStringLiteral("stop"), start.addSecs(30).toString(Qt::ISODateWithMs)}};
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        giveUp(QStringLiteral("SOCKET DATABASE COUNT are needed"));
    const int count = arguments[3].toInt();
    sqlite3 *queue = openQueue(arguments[2], count);
    Client bare = signedIn(arguments[1]);
    const QString path = workspaceOf(bare) + QStringLiteral("/time-entries");
    sqlite3_stmt *remove = nullptr;
    sqlite3_prepare_v2(queue, "DELETE FROM outbox WHERE seq = ?", -1, &remove, nullptr);
    for (int number = 1; number <= count; ++number) {
        Client::object(bare.post(path, entry(number)));
        sqlite3_bind_int(remove, 1, number);
        if (sqlite3_step(remove) != SQLITE_DONE)
            giveUp(QStringLiteral("a row stays"));
        sqlite3_reset(remove);
    }
    sqlite3_finalize(remove);
    sqlite3_close(queue);
    return 0;
}
