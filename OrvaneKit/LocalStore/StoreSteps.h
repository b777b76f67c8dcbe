// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LocalStore/Connection.h"
#include "LocalStore/PendingChange.h"
#include "Support/Json.h"

#include <QLoggingCategory>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

Q_DECLARE_LOGGING_CATEGORY(storeLog)

using ChangeRows = std::vector<PendingChange>;

/// How the store writes and reads its JSON.
inline constexpr JsonReading storeReading{.dates = DateCoding::secondsSince2001};
inline constexpr JsonStyle storeStyle{.dates = DateCoding::secondsSince2001};

/// The statements that the store's transactions are made of: all that is known of its tables stands here. The
/// first failure of several is kept, and nothing is run after it. Used on the store's executor, inside one of
/// its jobs.
class StoreSteps {
public:
    explicit StoreSteps(Connection &connection) : m_connection(connection) {}

    // Documents
    /// Nothing is put into `into` when there is none, or it cannot be read.
    template <class Document>
    StoreSteps &read(const std::string &key, std::optional<Document> &into);
    /// The same, and one that cannot be read is put aside before something else is written under its key.
    template <class Document>
    StoreSteps &readOrPutAside(const std::string &key, std::optional<Document> &into);
    template <class Document>
    StoreSteps &write(const std::string &key, const Document &document)
    {
        return writeText(key, encodeJson(document, storeStyle));
    }
    StoreSteps &writeText(const std::string &key, std::string text);
    StoreSteps &remove(const std::string &key);
    /// Of the documents whose keys begin so, all but the newest ones.
    StoreSteps &removeOldest(const std::string &prefix, std::int64_t kept);
    /// Touches every document and row, which fails where the file is damaged.
    StoreSteps &readAll();

    // The queue
    /// The row's own number is put into `seq`.
    StoreSteps &addRow(const EntryChange &change, std::int64_t &seq);
    StoreSteps &writeRow(const PendingChange &row);
    StoreSteps &removeRow(std::int64_t seq);
    /// Nothing when there is none of that number, or it cannot be read.
    StoreSteps &readRow(std::int64_t seq, std::optional<PendingChange> &row);
    /// The readable rows above `after`, in order.
    StoreSteps &readRows(std::int64_t after, ChangeRows &rows);
    /// The first row above `after` that can be read.
    StoreSteps &readFirstRow(std::int64_t after, std::optional<PendingChange> &row);
    /// The readable rows above `after`, up to `last`, that change the entry.
    StoreSteps &readRowsOf(const std::string &entryId, std::int64_t after, ChangeRows &rows,
                           std::int64_t last = std::numeric_limits<std::int64_t>::max());
    StoreSteps &countRows(std::int64_t &count);
    /// The numbers of the rows that cannot be read.
    StoreSteps &readUnreadable(std::vector<std::int64_t> &seqs);
    /// Every row: its number, what it holds, and the count of all.
    StoreSteps &visitRows(const Connection::OnRow &onRow);

    explicit operator bool() const { return m_status.has_value(); }
    const StoreStatus &status() const { return m_status; }
    tl::unexpected<StoreError> error() const { return failure(m_status.error()); }

private:
    using Values = std::vector<StoreValue>;
    using TakeText = std::function<bool(std::optional<std::string_view>)>;

    StoreSteps &run(const std::string &sql, const Values &values = {}, const Connection::OnRow &onRow = {});
    StoreSteps &readText(const std::string &key, const TakeText &take);
    StoreSteps &putAside(const std::string &key);

    Connection &m_connection;
    StoreStatus m_status;
};

template <class Document>
StoreSteps &StoreSteps::read(const std::string &key, std::optional<Document> &into)
{
    return readText(key, [&](std::optional<std::string_view> text) {
        if (auto read = decodeJson<Document>(text.value_or(""), storeReading))
            into = std::move(*read);
        return into.has_value();
    });
}

template <class Document>
StoreSteps &StoreSteps::readOrPutAside(const std::string &key, std::optional<Document> &into)
{
    bool isUnreadable = false;
    readText(key, [&](std::optional<std::string_view> text) {
        if (auto read = decodeJson<Document>(text.value_or(""), storeReading))
            into = std::move(*read);
        isUnreadable = !into.has_value();
        return into.has_value();
    });
    return isUnreadable ? putAside(key) : *this;
}

} // namespace orvane
