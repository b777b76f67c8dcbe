// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/OutboxStore.h"

#include "Catalog/EntryConversions.h"
#include "OrvaneAPI/SchemaFields.h"
#include "Outbox/EntryMerge.h"
#include "Support/JsonImpl.h"

#include <algorithm>
#include <limits>
#include <ranges>

ORVANE_JSON(orvane::RefusalDocument)
ORVANE_JSON(orvane::EntryHead)
ORVANE_JSON(orvane::ChangeBase)
ORVANE_JSON(orvane::CreationTry)

namespace orvane {

namespace {

/// A process whose view is older than that many of our own changes gets a conflict, which is the safe side.
constexpr std::size_t keptVersions = 16;
/// How many entries are remembered once nothing is queued any more.
constexpr std::int64_t keptHeads = 64;
/// How many refusals that were shown are remembered.
constexpr std::ptrdiff_t keptRefusals = 32;

using Values = std::vector<StoreValue>;
using Rows = std::vector<PendingChange>;
template <class T>
using Stored = Result<T, StoreError>;

constexpr JsonReading storeReading{.dates = DateCoding::SecondsSince2001};
constexpr JsonStyle storeStyle{.dates = DateCoding::SecondsSince2001};

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
    Steps &writeRow(const PendingChange &row)
    {
        return run("UPDATE outbox SET change = ? WHERE seq = ?",
                   {StoreBlob{encodeJson(row.change, storeStyle)}, row.seq});
    }
    Steps &removeRow(std::int64_t seq)
    {
        return run("DELETE FROM outbox WHERE seq = ?", {seq})
            .remove(ChangeBase::key(seq))
            .remove(CreationTry::key(seq));
    }

    explicit operator bool() const { return m_status.has_value(); }
    const StoreStatus &status() const { return m_status; }
    tl::unexpected<StoreError> error() const { return failure(m_status.error()); }

private:
    Connection &m_connection;
    StoreStatus m_status;
};

std::optional<PendingChange> pendingOf(const Connection::Row &row)
{
    const auto seq = row.integer(0);
    const auto blob = row.blob(1);
    if (!seq || !blob)
        return std::nullopt;
    auto change = decodeJson<EntryChange>(*blob, storeReading);
    return change ? std::optional{PendingChange{*seq, std::move(*change)}} : std::nullopt;
}

/// The rows above `after` that change the entry. Its identifier stands in them as it is, which is quick to
/// look for in a long queue.
Steps &readRowsOf(Steps &steps, const std::string &entryId, std::int64_t after, Rows &rows,
                  std::int64_t last = std::numeric_limits<std::int64_t>::max())
{
    return steps.run(
        "SELECT seq, change FROM outbox WHERE seq > ? AND seq <= ? AND instr(change, ?) > 0 ORDER BY seq",
        {after, last, StoreBlob{entryId}}, [&](const Connection::Row &row) {
            auto pending = pendingOf(row);
            if (pending && pending->change.entryId() == entryId)
                rows.push_back(std::move(*pending));
        });
}

bool isLineOfOurs(const EntryHead &head, const std::optional<std::string> &version)
{
    return !version || version->empty() || *version == head.entry.version ||
           std::ranges::find(head.replaced, *version) != head.replaced.end();
}

std::optional<std::string> versionOf(const TimeEntryResponse &entry)
{
    return entry.version.empty() ? std::nullopt : std::optional{entry.version};
}

/// What a queued change makes of its entry, as far as others can stand on it: the first of two stops stands,
/// so a later one is either taken for that or asks the user.
std::optional<TimeEntryResponse> outcomeAfter(const EntryChange &change, TimeEntryResponse entry)
{
    const bool isLateStop = entry.stop && std::holds_alternative<EntryChange::Stop>(change.action);
    return isLateStop ? std::optional{std::move(entry)} : applied(change, std::move(entry));
}

// Queuing

/// What is queued for an entry makes of it; none when that cannot be told, or after a deletion.
std::optional<TimeEntryResponse> outcomeOf(Steps &steps, const Rows &rows)
{
    std::optional<TimeEntryResponse> entry;
    const EntryChange &first = rows.front().change;
    if (const auto *create = std::get_if<EntryChange::Create>(&first.action)) {
        entry = entryResponse(create->request, create->id, create->workspaceId);
    } else {
        std::optional<ChangeBase> base;
        steps.read(ChangeBase::key(rows.front().seq), base);
        if (!base)
            return std::nullopt;
        entry = outcomeAfter(first, std::move(base->entry));
    }
    for (const PendingChange &row : rows | std::views::drop(1)) {
        if (entry)
            entry = outcomeAfter(row.change, std::move(*entry));
    }
    return entry;
}

/// What a change stands on once it is put on top of `head`: that, with what its user saw in the fields that
/// they changed.
TimeEntryResponse groundOf(const Submission &submission, const TimeEntryResponse &head)
{
    const TimeEntryResponse &base = *submission.base;
    const auto mine = applied(submission.change, base);
    TimeEntryResponse ground = head;
    if (mine && submission.change.request() != nullptr) {
        const EntryChange back{EntryChange::Update{entryRequest(base), base.id, base.workspaceId, {}}};
        ground = *applied(putOnTop(back, *mine, head).change, head);
    }
    ground.version = base.version;
    return ground;
}

void contest(Submission &submission)
{
    submission.change = submission.change.withVersion(unseenVersion);
}

void place(Submission &submission, const TimeEntryResponse &head, const std::optional<std::string> &version)
{
    // All that is queued for an entry carries one version, so that a long queue needs no other to be
    // remembered.
    if (version)
        submission.change = submission.change.withVersion(*version);
    if (saysTheSame(*submission.base, head))
        return;
    Rebased rebased = putOnTop(submission.change, *submission.base, head);
    if (rebased.isContested)
        return contest(submission);
    submission.base = groundOf(submission, head);
    submission.change = std::move(rebased.change);
}

/// Puts a change on top of what this store's queue has made of its entry and still wants to make of it.
void placeOnTop(Steps &steps, Submission &submission)
{
    const std::string id = submission.change.entryId();
    Rows rows;
    std::optional<EntryHead> head;
    readRowsOf(steps, id, 0, rows).read(EntryHead::key(id), head);
    const auto seen = versionOf(*submission.base);
    if (rows.empty()) {
        if (head && isLineOfOurs(*head, seen))
            place(submission, head->entry, head->entry.version);
        else if (submission.server && submission.server->version == submission.base->version)
            place(submission, TimeEntryResponse(*submission.server), {});
        else if (!head && !seen)
            contest(submission); // what has become of the entry meanwhile is not known
        return;
    }
    const auto outcome = outcomeOf(steps, rows);
    if (!outcome)
        return;
    // Whatever server's version it was made against: those before it are sent first, and when that version
    // stands against them, settling their conflict decides about this change too.
    const auto carried = rows.front().change.version();
    place(submission, *outcome, carried == unseenVersion ? std::nullopt : carried);
}

Stored<Rows> enqueueOn(Connection &connection, std::vector<Submission> &submissions)
{
    Rows rows;
    for (Submission &submission : submissions) {
        Steps steps(connection);
        const auto seen = submission.base;
        if (submission.base)
            placeOnTop(steps, submission);
        if (!steps)
            return steps.error();
        const auto seq = LocalStore::enqueueOn(connection, submission.change);
        if (!seq)
            return failure(seq.error());
        if (submission.base && !steps.write(ChangeBase::key(*seq), ChangeBase{*submission.base, *seen}))
            return steps.error();
        rows.push_back({*seq, submission.change});
    }
    return rows;
}

// Rewriting what stands behind a change

/// What became of a change, and so of the ground that others stand on.
struct Settled {
    std::string entryId;
    std::int64_t seq = 0;
    enum { KeptMine, KeptTheirs, Refused } how = Refused;
    /// What its user had seen of the entry.
    std::optional<TimeEntryResponse> seen;
    /// The version that the rows behind it are made against from now on; none: as before.
    std::optional<std::string> version;
};

/// Puts the rows behind a settled one on top of `ground`, which is no longer what they were made on. A
/// contested row ends it: those behind it stand on what it says, and wait until it is settled.
Stored<Rows> restack(Steps &steps, const Settled &settled, std::optional<TimeEntryResponse> ground)
{
    Rows rows;
    Rows changed;
    readRowsOf(steps, settled.entryId, settled.seq, rows);
    for (PendingChange &row : rows) {
        std::optional<ChangeBase> base;
        steps.read(ChangeBase::key(row.seq), base);
        if (!ground || row.change.version() == unseenVersion || (!base && settled.how == Settled::KeptTheirs))
            break;
        // What was made without keeping what its user saw stands as it is.
        Rebased rebased =
            base ? putOnTop(row.change, base->entry, *ground, settled.seen) : Rebased{row.change, false};
        const bool asks = rebased.isContested && settled.how != Settled::Refused;
        if (asks)
            row.change = row.change.withVersion(unseenVersion);
        else
            row.change =
                settled.version ? rebased.change.withVersion(*settled.version) : std::move(rebased.change);
        steps.writeRow(row);
        changed.push_back(row);
        if (asks)
            break;
        if (base)
            steps.write(ChangeBase::key(row.seq), ChangeBase{*ground, base->seen});
        ground = outcomeAfter(row.change, std::move(*ground));
    }
    if (!steps)
        return steps.error();
    return changed;
}

/// Changes that were made before the entry had a version and did not see what it has become.
Stored<Rows> hideVersion(Steps &steps, const std::string &entryId, std::int64_t after)
{
    Rows rows;
    readRowsOf(steps, entryId, after, rows);
    std::erase_if(rows, [](const PendingChange &row) { return row.change.version().has_value(); });
    for (PendingChange &row : rows) {
        row.change = row.change.withVersion(unseenVersion);
        steps.writeRow(row);
    }
    if (!steps)
        return steps.error();
    return rows;
}

// Settling

/// Whether the change ended the entry, rather than leaving an end that was there.
bool ends(const EntryChange &change, const std::optional<TimeEntryResponse> &base)
{
    const EntryRequest *request = change.request();
    return request == nullptr || !base || base->stop != request->stop;
}

EntryHead headAfter(std::optional<EntryHead> before, const Rows &accepted, const Acceptance &acceptance)
{
    EntryHead head{*acceptance.entry, {}, false};
    const auto sent = accepted.front().change.version();
    const bool isLine = before && sent == before->entry.version;
    if (head.entry.stop)
        head.isStoppedByUs = accepted.size() > 1 || ends(accepted.front().change, acceptance.base) ||
                             (isLine && before->isStoppedByUs);
    // Only an unbroken line of our own changes counts: a version that somebody else made in between ends it.
    if (isLine)
        head.replaced = std::move(before->replaced);
    // The newest is kept longest, and what the queue still carries is in use.
    for (const auto &version : {sent, acceptance.carried}) {
        if (!version || *version == head.entry.version || *version == unseenVersion)
            continue;
        std::erase(head.replaced, *version);
        head.replaced.push_back(*version);
    }
    if (head.replaced.size() > keptVersions)
        head.replaced.erase(head.replaced.begin());
    return head;
}

/// Once the queue is empty, only processes that look at an older state still need to know what became of it.
void forgetOldHeads(Steps &steps)
{
    bool isEmpty = true;
    steps.run("SELECT 1 FROM outbox LIMIT 1", {}, [&](const Connection::Row &) { isEmpty = false; });
    if (isEmpty)
        steps.run(
            "DELETE FROM document WHERE rowid IN (SELECT rowid FROM document WHERE key >= 'head:' AND key < "
            "'head;' ORDER BY rowid DESC LIMIT -1 OFFSET ?)",
            {keptHeads});
}

Stored<Rows> acceptOn(Connection &connection, const Rows &accepted, const Acceptance &acceptance)
{
    Steps steps(connection);
    const EntryChange &change = accepted.front().change;
    const std::string key = EntryHead::key(change.entryId());
    const std::int64_t last = accepted.back().seq;
    Rows changed;
    if (acceptance.entry && acceptance.isOursAlone) {
        std::optional<EntryHead> head;
        steps.read(key, head);
        const EntryHead newest = headAfter(std::move(head), accepted, acceptance);
        // Written anew, so that the newest has the highest row.
        steps.remove(key).write(key, newest);
    } else {
        steps.remove(key);
        auto hidden = hideVersion(steps, change.entryId(), last);
        if (!hidden)
            return hidden;
        changed = std::move(*hidden);
    }
    for (const PendingChange &row : accepted)
        steps.removeRow(row.seq);
    forgetOldHeads(steps);
    if (!steps)
        return steps.error();
    return changed;
}

Stored<Rows> refuseOn(Connection &connection, const PendingChange &refused,
                      const std::optional<Refusal> &refusal)
{
    Steps steps(connection);
    if (refusal) {
        std::optional<RefusalDocument> document;
        steps.read(RefusalDocument::key, document);
        if (!document)
            document.emplace();
        document->refusals.push_back(*refusal);
        steps.write(RefusalDocument::key, *document);
    }
    std::optional<ChangeBase> base;
    steps.read(ChangeBase::key(refused.seq), base).removeRow(refused.seq);
    if (!base)
        return steps ? Stored<Rows>(Rows{}) : steps.error();
    // What a contested change stood against was never seen by those behind it either.
    const bool isContested = refused.change.version() == unseenVersion;
    return restack(steps,
                   {refused.change.entryId(),
                    refused.seq,
                    Settled::Refused,
                    {},
                    isContested ? std::optional<std::string>(unseenVersion) : std::nullopt},
                   base->entry);
}

Stored<std::optional<Rows>> settleOn(Connection &connection, std::int64_t seq,
                                     const TimeEntryResponse &current, bool keepsMine)
{
    Steps steps(connection);
    std::optional<PendingChange> row;
    steps.run("SELECT seq, change FROM outbox WHERE seq = ?", {seq},
              [&](const Connection::Row &found) { row = pendingOf(found); });
    if (!steps)
        return steps.error();
    if (!row)
        return std::nullopt;
    Rows changed;
    std::optional<ChangeBase> base;
    steps.read(ChangeBase::key(seq), base);
    const auto seen = base ? std::optional{base->seen} : std::nullopt;
    std::optional<TimeEntryResponse> ground = current;
    if (keepsMine) {
        row->change = madeAnew(row->change, base ? std::optional{base->entry} : std::nullopt, current);
        steps.writeRow(*row).write(ChangeBase::key(seq), ChangeBase{current, seen.value_or(current)});
        changed.push_back(*row);
        ground = applied(row->change, current);
    } else {
        steps.removeRow(seq);
    }
    auto behind = restack(
        steps, {current.id, seq, keepsMine ? Settled::KeptMine : Settled::KeptTheirs, seen, current.version},
        ground);
    if (!behind)
        return failure(std::move(behind.error()));
    std::ranges::move(*behind, std::back_inserter(changed));
    return changed;
}

Steps &readRefusals(Steps &steps, std::vector<Refusal> &refusals)
{
    std::optional<RefusalDocument> document;
    steps.read(RefusalDocument::key, document);
    if (document)
        refusals = std::move(document->refusals);
    return steps;
}

/// Marks refusals as shown, and forgets those that were long ago.
Steps &markShown(Steps &steps, const std::vector<std::int64_t> &seqs)
{
    std::vector<Refusal> refusals;
    readRefusals(steps, refusals);
    for (Refusal &refusal : refusals)
        refusal.isShown = refusal.isShown || std::ranges::find(seqs, refusal.seq) != seqs.end();
    auto shown = std::ranges::count_if(refusals, &Refusal::isShown);
    std::erase_if(refusals,
                  [&](const Refusal &refusal) { return refusal.isShown && shown-- > keptRefusals; });
    return steps.write(RefusalDocument::key, RefusalDocument{std::move(refusals)});
}

/// The first row above `after` that holds a change.
Stored<std::optional<PendingChange>> firstReadable(Connection &connection, std::int64_t after)
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

Stored<std::optional<StoredRow>> nextOn(Connection &connection, std::int64_t after)
{
    auto next = firstReadable(connection, after);
    if (!next)
        return failure(std::move(next.error()));
    if (!*next)
        return std::nullopt;
    StoredRow stored;
    stored.row = std::move(**next);
    EntryChange &change = stored.row.change;
    Steps steps(connection);
    if (const auto *create = std::get_if<EntryChange::Create>(&change.action)) {
        if (!create->request.stop)
            steps.read(CreationTry::key(stored.row.seq), stored.tried);
        return steps ? Stored<std::optional<StoredRow>>(std::move(stored)) : steps.error();
    }
    std::optional<ChangeBase> base;
    std::optional<EntryHead> head;
    steps.read(ChangeBase::key(stored.row.seq), base).read(EntryHead::key(change.entryId()), head);
    if (!steps)
        return steps.error();
    if (base)
        stored.base = std::move(base->entry);
    const bool isStop = std::holds_alternative<EntryChange::Stop>(change.action);
    if (isStop && head && head->entry.stop && head->isStoppedByUs && isLineOfOurs(*head, change.version()))
        stored.stopped = head->entry;
    stored.carried = change.version();
    if (const auto version = currentVersion(head, change.version()))
        change = change.withVersion(*version);
    return stored;
}

} // namespace

std::optional<std::string> currentVersion(const std::optional<EntryHead> &head,
                                          const std::optional<std::string> &version)
{
    return head && isLineOfOurs(*head, version) ? std::optional{head->entry.version} : version;
}

Task<Result<Rows, StoreError>> enqueueAll(std::shared_ptr<LocalStore> store,
                                          std::vector<Submission> submissions)
{
    if (submissions.size() == 1 && !submissions.front().base) {
        EntryChange change = std::move(submissions.front().change);
        auto seq = co_await store->enqueue(change);
        co_return seq ? Stored<Rows>(Rows{{*seq, std::move(change)}}) : failure(std::move(seq.error()));
    }
    co_return co_await store->transact(
        [submissions = std::move(submissions)](Connection &connection) mutable {
            return enqueueOn(connection, submissions);
        });
}

Task<Result<std::optional<StoredRow>, StoreError>> nextStored(std::shared_ptr<LocalStore> store,
                                                              std::int64_t after)
{
    co_return co_await store->inspect([after](Connection &connection) { return nextOn(connection, after); });
}

Task<Result<Rows, StoreError>> storedAbove(std::shared_ptr<LocalStore> store, std::int64_t after)
{
    co_return co_await store->inspect([after](Connection &connection) -> Stored<Rows> {
        Rows rows;
        Steps steps(connection);
        steps.run("SELECT seq, change FROM outbox WHERE seq > ? ORDER BY seq", {after},
                  [&](const Connection::Row &row) {
                      if (auto pending = pendingOf(row))
                          rows.push_back(std::move(*pending));
                  });
        return steps ? Stored<Rows>(std::move(rows)) : steps.error();
    });
}

Task<Result<CreationTry, StoreError>> noteTry(std::shared_ptr<LocalStore> store, PendingChange creation,
                                              std::optional<std::int64_t> stop)
{
    co_return co_await store->transact(
        [creation = std::move(creation), stop](Connection &connection) -> Stored<CreationTry> {
            Steps steps(connection);
            CreationTry tried{stop};
            Rows behind;
            if (stop)
                readRowsOf(steps, creation.change.entryId(), creation.seq, behind, *stop);
            if (stop && (behind.size() != 1 || behind.front().seq != *stop))
                tried.stop.reset();
            steps.write(CreationTry::key(creation.seq), tried);
            return steps ? Stored<CreationTry>(tried) : steps.error();
        });
}

Task<Result<Rows, StoreError>> settleAccepted(std::shared_ptr<LocalStore> store, Rows accepted,
                                              Acceptance acceptance)
{
    co_return co_await store->transact(
        [accepted = std::move(accepted), acceptance = std::move(acceptance)](Connection &connection) {
            return acceptOn(connection, accepted, acceptance);
        });
}

Task<Result<Rows, StoreError>> settleRefused(std::shared_ptr<LocalStore> store, PendingChange refused,
                                             std::optional<Refusal> refusal)
{
    co_return co_await store->transact(
        [refused = std::move(refused), refusal = std::move(refusal)](Connection &connection) {
            return refuseOn(connection, refused, refusal);
        });
}

Task<Result<std::optional<Rows>, StoreError>>
settleConflict(std::shared_ptr<LocalStore> store, std::int64_t seq, TimeEntryResponse current, bool keepsMine)
{
    co_return co_await store->transact(
        [seq, current = std::move(current), keepsMine](Connection &connection) {
            return settleOn(connection, seq, current, keepsMine);
        });
}

Task<Result<SettledElsewhere, StoreError>> settledElsewhere(std::shared_ptr<LocalStore> store, Rows rows)
{
    co_return co_await store->transact(
        [rows = std::move(rows)](Connection &connection) -> Stored<SettledElsewhere> {
            SettledElsewhere settled;
            Steps steps(connection);
            std::vector<std::int64_t> seqs;
            for (const PendingChange &row : rows) {
                seqs.push_back(row.seq);
                std::optional<EntryHead> head;
                steps.read(EntryHead::key(row.change.entryId()), head);
                if (head)
                    settled.entries.push_back(std::move(head->entry));
            }
            readRefusals(steps, settled.refusals);
            std::erase_if(settled.refusals, [&](const Refusal &refusal) {
                return std::ranges::find(seqs, refusal.seq) == seqs.end();
            });
            return steps ? Stored<SettledElsewhere>(std::move(settled)) : steps.error();
        });
}

Task<StoreStatus> noteShown(std::shared_ptr<LocalStore> store, std::vector<std::int64_t> seqs)
{
    co_return co_await store->transact([seqs = std::move(seqs)](Connection &connection) -> StoreStatus {
        Steps steps(connection);
        return markShown(steps, seqs).status();
    });
}

} // namespace orvane
