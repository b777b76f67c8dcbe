// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/OutboxStore.h"

#include "Support/JsonImpl.h"

#include <algorithm>

ORVANE_JSON(orvane::RefusalDocument)
ORVANE_JSON(orvane::VersionDocument)

namespace orvane {

namespace {

/// Enough for the changes that can be on their way from some process at one time. Not more: a process whose
/// view is older than that has not seen our later changes, and overwriting them in silence would be wrong.
constexpr std::size_t keptEntries = 64;
constexpr std::size_t keptVersions = 16;

using Values = std::vector<StoreValue>;

constexpr JsonReading storeReading{.dates = DateCoding::SecondsSince2001};
constexpr JsonStyle storeStyle{.dates = DateCoding::SecondsSince2001};

template <class Document>
Result<Document, StoreError> readDocument(Connection &connection)
{
    Document document;
    const StoreStatus done =
        connection.run("SELECT value FROM document WHERE key = ?", Values{std::string(Document::key)},
                       [&](const Connection::Row &row) {
                           if (auto read = decodeJson<Document>(row.blob(0).value_or(""), storeReading))
                               document = std::move(*read);
                       });
    if (!done)
        return failure(done.error());
    return document;
}

template <class Document>
StoreStatus writeDocument(Connection &connection, const Document &document)
{
    return connection.run("INSERT INTO document (key, value) VALUES (?, ?) "
                          "ON CONFLICT(key) DO UPDATE SET value = excluded.value",
                          Values{std::string(Document::key), StoreBlob{encodeJson(document, storeStyle)}});
}

StoreStatus deleteRow(Connection &connection, std::int64_t seq)
{
    return connection.run("DELETE FROM outbox WHERE seq = ?", Values{seq});
}

std::optional<PendingChange> pendingOf(const Connection::Row &row)
{
    const auto seq = row.integer(0);
    const auto blob = row.blob(1);
    if (!seq || !blob)
        return std::nullopt;
    auto change = decodeJson<EntryChange>(*blob, storeReading);
    return change ? std::optional{PendingChange{*seq, std::move(*change)}} : std::nullopt;
}

/// Rewrites the rows above `seq` that change the entry, so that they follow on the version just brought.
StoreStatus passVersionOn(Connection &connection, const PendingChange &accepted, const std::string &version)
{
    std::vector<PendingChange> followers;
    StoreStatus read =
        connection.run("SELECT seq, change FROM outbox WHERE seq > ? ORDER BY seq", Values{accepted.seq},
                       [&](const Connection::Row &row) {
                           auto pending = pendingOf(row);
                           if (pending && pending->change.entryId() == accepted.change.entryId())
                               followers.push_back(std::move(*pending));
                       });
    if (!read)
        return read;
    for (const PendingChange &follower : followers) {
        StoreBlob blob{encodeJson(follower.change.withVersion(version), storeStyle)};
        if (auto done = connection.run("UPDATE outbox SET change = ? WHERE seq = ?",
                                       Values{std::move(blob), follower.seq});
            !done)
            return done;
    }
    return {};
}

/// The first row above `after` that holds a change.
Result<std::optional<PendingChange>, StoreError> firstReadable(Connection &connection, std::int64_t after)
{
    bool isAtEnd = false;
    while (!isAtEnd) {
        isAtEnd = true;
        std::optional<PendingChange> found;
        const StoreStatus read =
            connection.run("SELECT seq, change FROM outbox WHERE seq > ? ORDER BY seq LIMIT 1", Values{after},
                           [&](const Connection::Row &row) {
                               isAtEnd = false;
                               after = row.integer(0).value_or(after + 1);
                               found = pendingOf(row);
                           });
        if (!read)
            return failure(read.error());
        if (found)
            return found;
    }
    return std::nullopt;
}

} // namespace

std::string succeedingVersion(const VersionDocument &document, const std::string &entryId,
                              const std::string &version)
{
    const auto found = std::ranges::find(document.entries, entryId, &VersionSuccession::entryId);
    const bool isReplaced = found != document.entries.end() &&
                            std::ranges::find(found->replaced, version) != found->replaced.end();
    return isReplaced ? found->current : version;
}

void noteSuccession(VersionDocument &document, const std::string &entryId,
                    const std::optional<std::string> &before, const std::string &after)
{
    VersionSuccession succession{entryId, {}, after};
    const auto found = std::ranges::find(document.entries, entryId, &VersionSuccession::entryId);
    if (found != document.entries.end()) {
        // Only an unbroken line of our own changes counts: a version that somebody else made in between ends
        // it.
        if (before == found->current)
            succession.replaced = std::move(found->replaced);
        document.entries.erase(found);
    }
    if (before && *before != after)
        succession.replaced.push_back(*before);
    if (succession.replaced.size() > keptVersions)
        succession.replaced.erase(succession.replaced.begin());
    document.entries.push_back(std::move(succession));
    if (document.entries.size() > keptEntries)
        document.entries.erase(document.entries.begin());
}

Task<Result<std::vector<std::int64_t>, StoreError>> enqueueAll(std::shared_ptr<LocalStore> store,
                                                               std::vector<EntryChange> changes)
{
    using Numbers = Result<std::vector<std::int64_t>, StoreError>;
    if (changes.size() == 1) {
        auto seq = co_await store->enqueue(std::move(changes.front()));
        co_return seq ? Numbers{{*seq}} : Numbers{failure(std::move(seq.error()))};
    }
    co_return co_await store->transact([changes = std::move(changes)](Connection &connection) -> Numbers {
        std::vector<std::int64_t> seqs;
        for (const EntryChange &change : changes) {
            auto seq = LocalStore::enqueueOn(connection, change);
            if (!seq)
                return failure(std::move(seq.error()));
            seqs.push_back(*seq);
        }
        return seqs;
    });
}

Task<Result<std::optional<PendingChange>, StoreError>> nextStored(std::shared_ptr<LocalStore> store,
                                                                  std::int64_t after)
{
    using Next = Result<std::optional<PendingChange>, StoreError>;
    co_return co_await store->inspect([after](Connection &connection) -> Next {
        Next next = firstReadable(connection, after);
        if (!next || !*next || !(*next)->change.version())
            return next;
        auto document = readDocument<VersionDocument>(connection);
        if (!document)
            return failure(std::move(document.error()));
        EntryChange &change = (*next)->change;
        change = change.withVersion(succeedingVersion(*document, change.entryId(), *change.version()));
        return next;
    });
}

Task<StoreStatus> settleAccepted(std::shared_ptr<LocalStore> store, PendingChange accepted,
                                 std::optional<std::string> version)
{
    co_return co_await store->transact([accepted = std::move(accepted),
                                        version = std::move(version)](Connection &connection) -> StoreStatus {
        if (version) {
            auto document = readDocument<VersionDocument>(connection);
            if (!document)
                return failure(std::move(document.error()));
            noteSuccession(*document, accepted.change.entryId(), accepted.change.version(), *version);
            if (auto written = writeDocument(connection, *document); !written)
                return written;
            if (auto passed = passVersionOn(connection, accepted, *version); !passed)
                return passed;
        }
        return deleteRow(connection, accepted.seq);
    });
}

Task<StoreStatus> settleRefused(std::shared_ptr<LocalStore> store, std::int64_t seq,
                                std::optional<Refusal> refusal)
{
    co_return co_await store->transact(
        [seq, refusal = std::move(refusal)](Connection &connection) -> StoreStatus {
            if (refusal) {
                auto document = readDocument<RefusalDocument>(connection);
                if (!document)
                    return failure(std::move(document.error()));
                document->refusals.push_back(*refusal);
                if (auto written = writeDocument(connection, *document); !written)
                    return written;
            }
            return deleteRow(connection, seq);
        });
}

Task<Result<std::vector<Refusal>, StoreError>> takeRefusals(std::shared_ptr<LocalStore> store,
                                                            std::vector<std::int64_t> seqs)
{
    using Taken = Result<std::vector<Refusal>, StoreError>;
    co_return co_await store->transact([seqs = std::move(seqs)](Connection &connection) -> Taken {
        auto document = readDocument<RefusalDocument>(connection);
        if (!document)
            return failure(std::move(document.error()));
        const auto isTaken = [&](const Refusal &refusal) {
            return std::ranges::find(seqs, refusal.seq) != seqs.end();
        };
        std::vector<Refusal> taken;
        std::ranges::copy_if(document->refusals, std::back_inserter(taken), isTaken);
        if (taken.empty())
            return taken;
        std::erase_if(document->refusals, isTaken);
        if (auto written = writeDocument(connection, *document); !written)
            return failure(std::move(written.error()));
        return taken;
    });
}

} // namespace orvane
