// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/OutboxStore.h"

#include "Catalog/EntryConversions.h"
#include "LocalStore/StoreSteps.h"
#include "OrvaneAPI/SchemaFields.h"
#include "Outbox/ChangeStack.h"
#include "Outbox/EntryMerge.h"
#include "Support/JsonImpl.h"

#include <algorithm>
#include <functional>

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

using Rows = ChangeRows;
using outbox::hideVersion;
using outbox::isLineOfOurs;
using outbox::placeOnTop;
using outbox::restack;
using outbox::Settled;

template <class T>
using Stored = Result<T, StoreError>;

Stored<Rows> enqueueOn(Connection &connection, std::vector<Submission> &submissions)
{
    Rows rows;
    for (Submission &submission : submissions) {
        StoreSteps steps(connection);
        const auto seen = submission.base;
        if (submission.base)
            placeOnTop(steps, submission);
        if (!steps)
            return steps.error();
        std::int64_t seq = 0;
        steps.addRow(submission.change, seq);
        if (submission.base)
            steps.write(ChangeBase::key(seq), ChangeBase{*submission.base, *seen});
        if (!steps)
            return steps.error();
        rows.push_back({seq, submission.change});
    }
    return rows;
}

// Settling

/// The row and what is kept beside it.
void removeWhole(StoreSteps &steps, std::int64_t seq)
{
    steps.removeRow(seq).remove(ChangeBase::key(seq)).remove(CreationTry::key(seq));
}

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
void forgetOldHeads(StoreSteps &steps)
{
    std::optional<PendingChange> first;
    steps.readFirstRow(0, first);
    if (!first)
        steps.removeOldest(EntryHead::key(""), keptHeads);
}

Stored<Rows> acceptOn(Connection &connection, const Rows &accepted, const Acceptance &acceptance)
{
    StoreSteps steps(connection);
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
        changed = hideVersion(steps, change.entryId(), last);
    }
    for (const PendingChange &row : accepted)
        removeWhole(steps, row.seq);
    forgetOldHeads(steps);
    if (!steps)
        return steps.error();
    return changed;
}

Stored<Rows> refuseOn(Connection &connection, const PendingChange &refused,
                      const std::optional<Refusal> &refusal)
{
    StoreSteps steps(connection);
    if (refusal) {
        std::optional<RefusalDocument> document;
        steps.readOrPutAside(RefusalDocument::key, document);
        if (!document)
            document.emplace();
        document->refusals.push_back(*refusal);
        steps.write(RefusalDocument::key, *document);
    }
    std::optional<ChangeBase> base;
    removeWhole(steps.read(ChangeBase::key(refused.seq), base), refused.seq);
    if (!base)
        return steps ? Stored<Rows>(Rows{}) : steps.error();
    // What a contested change stood against was never seen by those behind it either.
    const bool isContested = refused.change.version() == unseenVersion;
    Settled settled{.entryId = refused.change.entryId(), .seq = refused.seq, .seen = {}, .version = {}};
    if (isContested)
        settled.version = unseenVersion;
    Rows changed = restack(steps, settled, base->entry);
    return steps ? Stored<Rows>(std::move(changed)) : steps.error();
}

/// The change that goes out once its conflict with `current` is settled; none: it is dropped.
std::optional<EntryChange> settledChange(const EntryChange &change, const std::optional<ChangeBase> &base,
                                         const TimeEntryResponse &current, const Settlement &settlement)
{
    if (std::holds_alternative<KeepTheirs>(settlement))
        return std::nullopt;
    if (const auto *merged = std::get_if<KeepMerged>(&settlement))
        return EntryChange{
            EntryChange::Update{merged->request, current.id, current.workspaceId, current.version}};
    return madeAnew(change, base ? std::optional{base->entry} : std::nullopt, current);
}

Stored<std::optional<Rows>> settleOn(Connection &connection, std::int64_t seq,
                                     const TimeEntryResponse &current, const Settlement &settlement)
{
    StoreSteps steps(connection);
    std::optional<PendingChange> row;
    steps.readRow(seq, row);
    if (!steps)
        return steps.error();
    if (!row)
        return std::nullopt;
    Rows changed;
    std::optional<ChangeBase> base;
    steps.read(ChangeBase::key(seq), base);
    const auto seen = base ? std::optional{base->seen} : std::nullopt;
    std::optional<TimeEntryResponse> ground = current;
    if (auto change = settledChange(row->change, base, current, settlement)) {
        row->change = std::move(*change);
        steps.writeRow(*row).write(ChangeBase::key(seq), ChangeBase{current, seen.value_or(current)});
        changed.push_back(*row);
        ground = applied(row->change, current);
    } else {
        removeWhole(steps, seq);
    }
    // Where some of theirs was kept, who did not tell what they saw did not see that.
    const auto how = std::holds_alternative<KeepMine>(settlement) ? Settled::keptMine : Settled::keptTheirs;
    std::ranges::move(restack(steps, {current.id, seq, how, seen, current.version}, ground),
                      std::back_inserter(changed));
    if (!steps)
        return steps.error();
    return changed;
}

StoreSteps &readRefusals(StoreSteps &steps, std::vector<Refusal> &refusals)
{
    std::optional<RefusalDocument> document;
    steps.read(RefusalDocument::key, document);
    if (document)
        refusals = std::move(document->refusals);
    return steps;
}

bool isDone(const Refusal &refusal)
{
    return refusal.isShown && !refusal.isSetAside;
}

/// Marks refusals as shown, and forgets those that were long ago.
StoreSteps &markShown(StoreSteps &steps, const std::vector<std::int64_t> &seqs)
{
    std::vector<Refusal> refusals;
    readRefusals(steps, refusals);
    if (refusals.empty())
        return steps; // none, or none that can be read
    for (Refusal &refusal : refusals)
        refusal.isShown = refusal.isShown || std::ranges::find(seqs, refusal.seq) != seqs.end();
    auto done = std::ranges::count_if(refusals, isDone);
    std::erase_if(refusals, [&](const Refusal &refusal) { return isDone(refusal) && done-- > keptRefusals; });
    return steps.write(RefusalDocument::key, RefusalDocument{std::move(refusals)});
}

Stored<std::optional<StoredRow>> nextOn(Connection &connection, std::int64_t after)
{
    StoreSteps steps(connection);
    std::optional<PendingChange> next;
    if (!steps.readFirstRow(after, next))
        return steps.error();
    if (!next)
        return std::nullopt;
    StoredRow stored;
    stored.row = std::move(*next);
    EntryChange &change = stored.row.change;
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
        StoreSteps steps(connection);
        steps.readRows(after, rows);
        return steps ? Stored<Rows>(std::move(rows)) : steps.error();
    });
}

Task<Result<CreationTry, StoreError>> noteTry(std::shared_ptr<LocalStore> store, PendingChange creation,
                                              std::optional<std::int64_t> stop)
{
    co_return co_await store->transact(
        [creation = std::move(creation), stop](Connection &connection) -> Stored<CreationTry> {
            StoreSteps steps(connection);
            CreationTry tried{stop};
            Rows behind;
            if (stop)
                steps.readRowsOf(creation.change.entryId(), creation.seq, behind, *stop);
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

Task<Result<std::optional<Rows>, StoreError>> settleConflict(std::shared_ptr<LocalStore> store,
                                                             std::int64_t seq, TimeEntryResponse current,
                                                             Settlement settlement)
{
    co_return co_await store->transact(
        [seq, current = std::move(current), settlement = std::move(settlement)](Connection &connection) {
            return settleOn(connection, seq, current, settlement);
        });
}

Task<Result<std::optional<EntryChange>, StoreError>>
changeMadeAnew(std::shared_ptr<LocalStore> store, std::int64_t seq, TimeEntryResponse theirs)
{
    co_return co_await store->transact(
        [seq, theirs = std::move(theirs)](Connection &connection) -> Stored<std::optional<EntryChange>> {
            StoreSteps steps(connection);
            std::optional<PendingChange> row;
            std::optional<ChangeBase> base;
            steps.readRow(seq, row).read(ChangeBase::key(seq), base);
            if (!steps)
                return steps.error();
            return row ? settledChange(row->change, base, theirs, KeepMine{}) : std::nullopt;
        });
}

Task<Result<SettledElsewhere, StoreError>> settledElsewhere(std::shared_ptr<LocalStore> store, Rows rows)
{
    co_return co_await store->transact(
        [rows = std::move(rows)](Connection &connection) -> Stored<SettledElsewhere> {
            SettledElsewhere settled;
            StoreSteps steps(connection);
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

Task<Result<std::vector<Refusal>, StoreError>> setRefusalsAside(std::shared_ptr<LocalStore> store)
{
    co_return co_await store->transact([](Connection &connection) -> Stored<std::vector<Refusal>> {
        StoreSteps steps(connection);
        std::vector<Refusal> refusals;
        readRefusals(steps, refusals);
        const auto before = refusals;
        for (Refusal &refusal : refusals)
            refusal.isSetAside = refusal.isSetAside || !refusal.isShown;
        if (refusals != before)
            steps.write(RefusalDocument::key, RefusalDocument{refusals});
        std::erase_if(refusals, std::not_fn(&Refusal::isSetAside));
        return steps ? Stored<std::vector<Refusal>>(std::move(refusals)) : steps.error();
    });
}

Task<StoreStatus> noteAnswered(std::shared_ptr<LocalStore> store, std::int64_t seq)
{
    co_return co_await store->transact([seq](Connection &connection) -> StoreStatus {
        StoreSteps steps(connection);
        std::vector<Refusal> refusals;
        readRefusals(steps, refusals);
        const auto answered = std::ranges::find(refusals, seq, &Refusal::seq);
        if (answered == refusals.end())
            return steps.status();
        answered->isSetAside = false;
        steps.write(RefusalDocument::key, RefusalDocument{std::move(refusals)});
        return markShown(steps, {seq}).status();
    });
}

Task<StoreStatus> noteShown(std::shared_ptr<LocalStore> store, std::vector<std::int64_t> seqs)
{
    co_return co_await store->transact([seqs = std::move(seqs)](Connection &connection) -> StoreStatus {
        StoreSteps steps(connection);
        return markShown(steps, seqs).status();
    });
}

} // namespace orvane
