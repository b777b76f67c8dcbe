// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalStore/StoreSteps.h"

#include <chrono>

namespace orvane {

Q_LOGGING_CATEGORY(storeLog, "orvane.store")

namespace {

double secondsNow()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

/// A row of number and change; nothing when it cannot be read as one.
std::optional<PendingChange> pendingOf(const Connection::Row &row)
{
    const auto seq = row.integer(0);
    const auto blob = row.blob(1);
    if (!seq || !blob)
        return std::nullopt;
    auto change = decodeJson<EntryChange>(*blob, storeReading);
    return change ? std::optional{PendingChange{*seq, std::move(*change)}} : std::nullopt;
}

StoreBlob blobOf(const EntryChange &change)
{
    return StoreBlob{encodeJson(change, storeStyle)};
}

} // namespace

StoreSteps &StoreSteps::run(const std::string &sql, const Values &values, const Connection::OnRow &onRow)
{
    if (m_status)
        m_status = m_connection.run(sql, values, onRow);
    return *this;
}

// Documents

StoreSteps &StoreSteps::readText(const std::string &key, const TakeText &take)
{
    return run("SELECT value FROM document WHERE key = ?", {key}, [&](const Connection::Row &row) {
        if (!take(row.blob(0)))
            qCWarning(storeLog) << "a document cannot be read and counts as absent";
    });
}

StoreSteps &StoreSteps::writeText(const std::string &key, std::string text)
{
    return run("INSERT INTO document (key, value) VALUES (?, ?) "
               "ON CONFLICT(key) DO UPDATE SET value = excluded.value",
               {key, StoreBlob{std::move(text)}});
}

StoreSteps &StoreSteps::remove(const std::string &key)
{
    return run("DELETE FROM document WHERE key = ?", {key});
}

/// Under a key that nobody reads, for who repairs the file by hand.
StoreSteps &StoreSteps::putAside(const std::string &key)
{
    return run("UPDATE document SET key = key || ':unreadable:' || rowid WHERE key = ?", {key});
}

StoreSteps &StoreSteps::removeOldest(const std::string &prefix, std::int64_t kept)
{
    // Written anew each time, so that the newest has the highest row.
    std::string end = prefix;
    ++end.back();
    return run("DELETE FROM document WHERE rowid IN (SELECT rowid FROM document WHERE key >= ? AND key < ? "
               "ORDER BY rowid DESC LIMIT -1 OFFSET ?)",
               {prefix, end, kept});
}

StoreSteps &StoreSteps::readAll()
{
    const auto read = [](const Connection::Row &row) { row.blob(0); };
    return run("SELECT value FROM document", {}, read).run("SELECT change FROM outbox", {}, read);
}

// The queue

StoreSteps &StoreSteps::addRow(const EntryChange &change, std::int64_t &seq)
{
    run("INSERT INTO outbox (change, created_at) VALUES (?, ?)", {blobOf(change), secondsNow()});
    if (m_status)
        seq = m_connection.lastInsertedRow();
    return *this;
}

StoreSteps &StoreSteps::writeRow(const PendingChange &row)
{
    return run("UPDATE outbox SET change = ? WHERE seq = ?", {blobOf(row.change), row.seq});
}

StoreSteps &StoreSteps::removeRow(std::int64_t seq)
{
    return run("DELETE FROM outbox WHERE seq = ?", {seq});
}

StoreSteps &StoreSteps::readRow(std::int64_t seq, std::optional<PendingChange> &row)
{
    return run("SELECT seq, change FROM outbox WHERE seq = ?", {seq},
               [&](const Connection::Row &found) { row = pendingOf(found); });
}

StoreSteps &StoreSteps::readRows(std::int64_t after, ChangeRows &rows)
{
    return run("SELECT seq, change FROM outbox WHERE seq > ? ORDER BY seq", {after},
               [&](const Connection::Row &row) {
                   if (auto pending = pendingOf(row))
                       rows.push_back(std::move(*pending));
               });
}

StoreSteps &StoreSteps::readFirstRow(std::int64_t after, std::optional<PendingChange> &row)
{
    bool isAtEnd = false;
    while (m_status && !isAtEnd && !row) {
        isAtEnd = true;
        run("SELECT seq, change FROM outbox WHERE seq > ? ORDER BY seq LIMIT 1", {after},
            [&](const Connection::Row &found) {
                isAtEnd = false;
                after = found.integer(0).value_or(after + 1);
                row = pendingOf(found);
            });
    }
    return *this;
}

StoreSteps &StoreSteps::readRowsOf(const std::string &entryId, std::int64_t after, ChangeRows &rows,
                                   std::int64_t last)
{
    // Its identifier stands in a row as it is, which is quick to look for in a long queue.
    return run(
        "SELECT seq, change FROM outbox WHERE seq > ? AND seq <= ? AND instr(change, ?) > 0 ORDER BY seq",
        {after, last, StoreBlob{entryId}}, [&](const Connection::Row &row) {
            auto pending = pendingOf(row);
            if (pending && pending->change.entryId() == entryId)
                rows.push_back(std::move(*pending));
        });
}

StoreSteps &StoreSteps::countRows(std::int64_t &count)
{
    return run("SELECT COUNT(*) FROM outbox", {},
               [&](const Connection::Row &row) { count = row.integer(0).value_or(0); });
}

StoreSteps &StoreSteps::readUnreadable(std::vector<std::int64_t> &seqs)
{
    return run("SELECT seq, change FROM outbox ORDER BY seq", {}, [&](const Connection::Row &row) {
        if (!pendingOf(row))
            seqs.push_back(row.integer(0).value_or(0));
    });
}

StoreSteps &StoreSteps::visitRows(const Connection::OnRow &onRow)
{
    return run("SELECT seq, change, (SELECT COUNT(*) FROM outbox) FROM outbox ORDER BY seq", {}, onRow);
}

} // namespace orvane
