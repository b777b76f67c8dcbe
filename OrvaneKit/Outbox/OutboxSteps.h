// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LocalStore/Connection.h"
#include "LocalStore/LocalStore.h"
#include "Support/Json.h"

#include <limits>
#include <optional>
#include <string>
#include <vector>

/// The statements that the outbox's transactions are made of. Used on the store's executor, inside one of its
/// jobs.
namespace orvane::outbox {

using Values = std::vector<StoreValue>;
using Rows = std::vector<PendingChange>;

inline constexpr JsonReading storeReading{.dates = DateCoding::SecondsSince2001};
inline constexpr JsonStyle storeStyle{.dates = DateCoding::SecondsSince2001};

/// A row of number and change; nothing when it cannot be read as one.
std::optional<PendingChange> pendingOf(const Connection::Row &row);

/// The first failure of several statements; nothing is run after it.
class Steps {
public:
    explicit Steps(Connection &connection) : m_connection(connection) {}

    Steps &run(const std::string &sql, const Values &values, const Connection::OnRow &onRow = {})
    {
        if (m_status)
            m_status = m_connection.run(sql, values, onRow);
        return *this;
    }
    template <class Document>
    Steps &read(const std::string &key, std::optional<Document> &into)
    {
        return run("SELECT value FROM document WHERE key = ?", {key}, [&](const Connection::Row &row) {
            if (auto read = decodeJson<Document>(row.blob(0).value_or(""), storeReading))
                into = std::move(*read);
        });
    }
    template <class Document>
    Steps &write(const std::string &key, const Document &document)
    {
        return run("INSERT INTO document (key, value) VALUES (?, ?) "
                   "ON CONFLICT(key) DO UPDATE SET value = excluded.value",
                   {key, StoreBlob{encodeJson(document, storeStyle)}});
    }
    Steps &remove(const std::string &key) { return run("DELETE FROM document WHERE key = ?", {key}); }
    Steps &writeRow(const PendingChange &row);
    /// The row and what is kept beside it.
    Steps &removeRow(std::int64_t seq);
    /// The readable rows above `after`, up to `last`, that change the entry.
    Steps &readRowsOf(const std::string &entryId, std::int64_t after, Rows &rows,
                      std::int64_t last = std::numeric_limits<std::int64_t>::max());

    explicit operator bool() const { return m_status.has_value(); }
    const StoreStatus &status() const { return m_status; }
    tl::unexpected<StoreError> error() const { return failure(m_status.error()); }

private:
    Connection &m_connection;
    StoreStatus m_status;
};

} // namespace orvane::outbox
