// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/OutboxSteps.h"

#include "Outbox/OutboxStore.h"

namespace orvane::outbox {

std::optional<PendingChange> pendingOf(const Connection::Row &row)
{
    const auto seq = row.integer(0);
    const auto blob = row.blob(1);
    if (!seq || !blob)
        return std::nullopt;
    auto change = decodeJson<EntryChange>(*blob, storeReading);
    return change ? std::optional{PendingChange{*seq, std::move(*change)}} : std::nullopt;
}

Steps &Steps::writeRow(const PendingChange &row)
{
    return run("UPDATE outbox SET change = ? WHERE seq = ?",
               {StoreBlob{encodeJson(row.change, storeStyle)}, row.seq});
}

Steps &Steps::removeRow(std::int64_t seq)
{
    return run("DELETE FROM outbox WHERE seq = ?", {seq})
        .remove(ChangeBase::key(seq))
        .remove(CreationTry::key(seq));
}

Steps &Steps::readRowsOf(const std::string &entryId, std::int64_t after, Rows &rows, std::int64_t last)
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

} // namespace orvane::outbox
