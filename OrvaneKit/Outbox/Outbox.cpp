// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/Outbox.h"

#include "Catalog/EntryConversions.h"
#include "Client/OrvaneClient.h"
#include "Outbox/OutboxRules.h"
#include "Outbox/OutboxStore.h"
#include "Support/Eventual.h"

#include <QCoro/QCoroSignal>
#include <QLoggingCategory>
#include <QPointer>
#include <algorithm>
#include <limits>

namespace orvane {

namespace {

Q_LOGGING_CATEGORY(outboxLog, "orvane.outbox", QtWarningMsg)

/// How often a pass that waits for another process looks whether it is wanted any more.
constexpr std::chrono::milliseconds lockSlice{100};

constexpr auto queueEnd = std::numeric_limits<std::int64_t>::max();

template <class T>
Result<std::optional<TimeEntryResponse>, CallError> answered(Result<T, CallError> result)
{
    if (!result)
        return failure(std::move(result.error()));
    if constexpr (std::is_void_v<T>)
        return std::optional<TimeEntryResponse>{};
    else
        return std::optional<TimeEntryResponse>{std::move(*result)};
}

Task<Result<Outbox::Turn, std::string>> lockFile(std::string path, std::chrono::milliseconds patience)
{
    const auto lock = std::make_shared<FileLock>(std::move(path));
    if (co_await lockWithin(lock, patience))
        co_return Outbox::Turn(lock);
    if (!lock->error().empty())
        co_return failure(std::string(lock->error()));
    co_return Outbox::Turn();
}

} // namespace

Outbox::Outbox(Parts parts) : m_parts(std::move(parts))
{
    if (!m_parts.retry)
        m_parts.retry = std::make_unique<SystemRetryTimer>();
    if (!m_parts.takeTurn && !m_parts.lockPath.empty())
        m_parts.takeTurn = [path = m_parts.lockPath](std::chrono::milliseconds patience) {
            return lockFile(path, patience);
        };
}

Outbox::~Outbox() = default;

Task<std::unique_ptr<Outbox>> Outbox::make(Parts parts)
{
    std::unique_ptr<Outbox> outbox(new Outbox(std::move(parts)));
    std::vector<PendingChange> stored = co_await outbox->m_parts.store->pending();
    for (PendingChange &row : stored)
        outbox->m_pending.push_back({row.seq, std::move(row.change), std::nullopt});
    co_return outbox;
}

std::vector<EntryChange> Outbox::changes() const
{
    std::vector<EntryChange> changes;
    changes.reserve(m_pending.size());
    for (const Pending &row : m_pending)
        changes.push_back(row.change);
    return changes;
}

std::vector<Outbox::Pending> Outbox::conflicts() const
{
    std::vector<Pending> conflicts;
    std::ranges::copy_if(m_pending, std::back_inserter(conflicts),
                         [](const Pending &row) { return row.conflict.has_value(); });
    return conflicts;
}

// Submitting

Task<Result<Outbox::Outcome, StoreError>> Outbox::submit(EntryChange change)
{
    std::vector<EntryChange> changes;
    changes.push_back(std::move(change));
    auto outcomes = co_await submit(std::move(changes));
    if (!outcomes)
        co_return failure(std::move(outcomes.error()));
    co_return std::move(outcomes->front());
}

Task<Result<std::vector<Outbox::Outcome>, StoreError>> Outbox::submit(std::vector<EntryChange> changes)
{
    const QPointer<Outbox> self(this);
    auto seqs = co_await enqueueAll(m_parts.store, changes);
    if (!seqs)
        co_return failure(std::move(seqs.error()));
    if (!self) {
        std::vector<Outcome> queued;
        std::ranges::transform(*seqs, std::back_inserter(queued),
                               [](std::int64_t seq) { return Queued{seq}; });
        co_return queued;
    }
    std::vector<Eventual<Outcome>> answers(seqs->size());
    for (std::size_t i = 0; i < seqs->size(); ++i) {
        const std::int64_t seq = (*seqs)[i];
        if (find(seq) == nullptr)
            adopt({seq, std::move(changes[i]), std::nullopt});
        m_waiters[seq] = [answer = answers[i]](Outcome outcome) { answer.set(std::move(outcome)); };
    }
    Q_EMIT pendingChanged();
    if (m_isClosing)
        resumeAllQueued();
    pass();
    std::vector<Outcome> outcomes;
    outcomes.reserve(answers.size());
    for (const Eventual<Outcome> &answer : answers)
        outcomes.push_back(co_await answer.wait());
    co_return outcomes;
}

Task<> Outbox::flush()
{
    if (m_isFlushing)
        co_await qCoro(this, &Outbox::passEnded);
    else
        co_await pass();
}

Task<> Outbox::close()
{
    m_isClosing = true;
    m_parts.retry->cancel();
    if (m_isFlushing)
        co_await qCoro(this, &Outbox::passEnded);
}

// One pass

Task<> Outbox::pass()
{
    // A running pass reads the queue to its end and so reaches what was added meanwhile.
    if (m_isFlushing || m_isClosing)
        co_return;
    m_isFlushing = true;
    m_parts.retry->cancel();
    const QPointer<Outbox> self(this);
    Turn turn;
    if (m_parts.takeTurn)
        turn = co_await waitForTurn();
    if (!self)
        co_return;
    if (turn || !m_parts.takeTurn) {
        co_await sendAll();
        turn.reset();
    } else {
        resumeAllQueued();
        scheduleRetry();
    }
    if (!self)
        co_return;
    m_isFlushing = false;
    Q_EMIT passEnded();
}

Task<Outbox::Turn> Outbox::waitForTurn()
{
    const QPointer<Outbox> self(this);
    const TakeTurn take = m_parts.takeTurn;
    for (std::chrono::milliseconds waited{0}; waited < m_parts.lockPatience; waited += lockSlice) {
        auto turn = co_await take(lockSlice);
        if (turn && *turn)
            co_return Turn(*turn);
        if (!self || m_isClosing)
            co_return Turn();
        if (!turn) {
            // Without a lock file (a read-only folder, a full disk) the store would refuse its own writes as
            // well.
            qCWarning(outboxLog) << "the lock file cannot be made:" << turn.error().c_str();
            co_return Turn();
        }
    }
    co_return Turn();
}

Task<> Outbox::sendAll()
{
    const QPointer<Outbox> self(this);
    std::int64_t cursor = 0;
    bool isChecked = false;
    for (;;) {
        auto next = co_await nextStored(m_parts.store, cursor);
        if (!self)
            co_return;
        if (!next) {
            stopForStore(next.error());
            co_return;
        }
        const bool isAtEnd = !next->has_value();
        co_await catchUp(cursor, isAtEnd ? queueEnd : (*next)->seq);
        if (!self || isAtEnd)
            co_return;
        cursor = (*next)->seq;
        const Pending row = adopt({cursor, std::move((*next)->change), std::nullopt});
        if (isBlocked(row)) {
            resume(row.seq, Queued{row.seq});
            continue;
        }
        if (!isChecked)
            isChecked = co_await isAllowed();
        if (!isChecked)
            co_return;
        if (!self)
            co_return;
        if (m_isClosing) {
            resumeAllQueued();
            co_return;
        }
        if (co_await sendOne(row) == Step::Stop || !self)
            co_return;
    }
}

/// Whether the queue may be sent to the account that is signed in.
Task<bool> Outbox::isAllowed()
{
    if (!m_parts.mayBeSent)
        co_return true;
    const QPointer<Outbox> self(this);
    const SendVerdict verdict = co_await m_parts.mayBeSent();
    if (!self)
        co_return false;
    m_isHeldBack = verdict == SendVerdict::NotOurs;
    if (m_isHeldBack)
        resumeAllQueued();
    else if (verdict == SendVerdict::Away)
        handleTransient();
    co_return verdict == SendVerdict::Allowed;
}

Task<Outbox::Step> Outbox::sendOne(Pending row)
{
    const QPointer<Outbox> self(this);
    m_sending = row.seq;
    auto answer = co_await deliver(row.change);
    if (!self)
        co_return Step::Stop;
    m_sending.reset();
    if (answer)
        co_return co_await handleAccepted(std::move(row), std::move(*answer));
    co_return co_await handleFailure(std::move(row), std::move(answer.error()));
}

Task<Result<std::optional<TimeEntryResponse>, CallError>> Outbox::deliver(EntryChange change)
{
    const auto api = m_parts.api;
    const std::string workspace = change.workspaceId();
    const std::string id = change.entryId();
    const auto version = change.version();
    if (const auto *create = std::get_if<EntryChange::Create>(&change.action))
        co_return answered(
            co_await api->createTimeEntry(workspace, createTimeEntryRequest(create->request, id)));
    if (const auto *update = std::get_if<EntryChange::Update>(&change.action))
        co_return answered(
            co_await api->updateTimeEntry(workspace, id, timeEntryRequest(update->request), version));
    if (const auto *stop = std::get_if<EntryChange::Stop>(&change.action))
        co_return answered(
            co_await api->stopTimeEntry(workspace, id, StopTimeEntryRequest{stop->at}, version));
    co_return answered(co_await api->deleteTimeEntry(workspace, id, version));
}

// What became of it

Task<Outbox::Step> Outbox::handleAccepted(Pending row, std::optional<TimeEntryResponse> entry)
{
    const QPointer<Outbox> self(this);
    const auto version = entry ? std::optional{entry->version} : std::nullopt;
    const StoreStatus settled = co_await settleAccepted(m_parts.store, {row.seq, row.change}, version);
    if (!self)
        co_return Step::Stop;
    m_failures = 0;
    setOffline(false);
    if (!settled) {
        // The server has it, and sending the row again does no harm; what is behind it waits for the disk.
        resume(row.seq, Sent{row.seq, entry});
        stopForStore(settled.error());
        co_return Step::Stop;
    }
    remove(row.seq);
    if (version) {
        for (Pending &other : m_pending) {
            if (other.seq > row.seq && other.change.entryId() == row.change.entryId())
                other.change = other.change.withVersion(*version);
        }
    }
    if (onSent)
        onSent(row, entry);
    Q_EMIT pendingChanged();
    resume(row.seq, Sent{row.seq, std::move(entry)});
    co_return Step::GoOn;
}

Task<Outbox::Step> Outbox::handleFailure(Pending row, CallError error)
{
    if (auto lost = lostFirstAnswer(row.change, error))
        co_return co_await handleAccepted(std::move(row), std::move(lost->entry));
    switch (classify(error)) {
    case FailureKind::Conflict:
        co_return handleConflict(std::move(row), *std::get<APIError>(error).current);
    case FailureKind::Transient:
        handleTransient();
        co_return Step::Stop;
    case FailureKind::Refusal:
        break;
    }
    co_return co_await handleRefusal(std::move(row), std::move(error));
}

Outbox::Step Outbox::handleConflict(Pending row, const TimeEntryResponse &current)
{
    m_failures = 0;
    setOffline(false);
    if (Pending *queued = find(row.seq))
        queued->conflict = current;
    if (onConflict)
        onConflict(row, current);
    Q_EMIT pendingChanged();
    resume(row.seq, Queued{row.seq});
    return Step::GoOn;
}

void Outbox::handleTransient()
{
    ++m_failures;
    setOffline(true);
    resumeAllQueued();
    scheduleRetry();
}

Task<Outbox::Step> Outbox::handleRefusal(Pending row, CallError error)
{
    const QPointer<Outbox> self(this);
    const bool callerWaits = m_waiters.contains(row.seq);
    std::optional<Refusal> kept;
    if (!callerWaits)
        kept = Refusal{row.seq, row.change, describe(error), std::get<APIError>(error).status};
    const StoreStatus settled = co_await settleRefused(m_parts.store, row.seq, std::move(kept));
    if (!self)
        co_return Step::Stop;
    m_failures = 0;
    setOffline(false);
    if (!settled) {
        stopForStore(settled.error());
        co_return Step::Stop;
    }
    remove(row.seq);
    if (onRejected)
        onRejected(row, error, callerWaits);
    Q_EMIT pendingChanged();
    resume(row.seq, Rejected{row.seq, std::move(error)});
    co_return Step::GoOn;
}

void Outbox::stopForStore(const StoreError &error)
{
    qCWarning(outboxLog) << "the pass stopped at the store:" << error.message.c_str();
    resumeAllQueued();
    ++m_failures;
    scheduleRetry();
}

/// Changes between two rows of the store that are no longer there were settled by another process. The store
/// answers in order, so a change that this process added after the question is not known here yet.
Task<> Outbox::catchUp(std::int64_t after, std::int64_t before)
{
    const QPointer<Outbox> self(this);
    std::vector<Pending> gone;
    std::vector<std::int64_t> seqs;
    for (const Pending &row : m_pending) {
        if (row.seq > after && row.seq < before) {
            gone.push_back(row);
            seqs.push_back(row.seq);
        }
    }
    if (gone.empty())
        co_return;
    const auto refused = co_await takeRefusals(m_parts.store, seqs);
    if (!self)
        co_return;
    for (const Pending &row : gone)
        reportSettledElsewhere(row, refused ? *refused : std::vector<Refusal>{});
    Q_EMIT pendingChanged();
}

void Outbox::reportSettledElsewhere(const Pending &row, const std::vector<Refusal> &refusals)
{
    const bool callerWaits = m_waiters.contains(row.seq);
    remove(row.seq);
    const auto refusal = std::ranges::find(refusals, row.seq, &Refusal::seq);
    if (refusal == refusals.end()) {
        if (onSent)
            onSent(row, std::nullopt);
        resume(row.seq, Sent{row.seq, {}});
        return;
    }
    const CallError error = APIError{.status = refusal->status, .title = refusal->message};
    if (onRejected)
        onRejected(row, error, callerWaits);
    resume(row.seq, Rejected{row.seq, error});
}

// Settling by the user

Task<Result<bool, StoreError>> Outbox::keepMine(std::int64_t seq)
{
    const QPointer<Outbox> self(this);
    Pending *row = find(seq);
    if (row == nullptr || !row->conflict)
        co_return false;
    const EntryChange change = row->change.withVersion(row->conflict->version);
    const StoreStatus stored = co_await m_parts.store->replace(seq, change);
    if (!stored)
        co_return failure(stored.error());
    if (!self)
        co_return true;
    if (Pending *settled = find(seq)) {
        settled->change = change;
        settled->conflict.reset();
    }
    Q_EMIT pendingChanged();
    co_await flush();
    co_return true;
}

Task<Result<bool, StoreError>> Outbox::keepTheirs(std::int64_t seq)
{
    const QPointer<Outbox> self(this);
    const Pending *row = find(seq);
    if (row == nullptr || !row->conflict)
        co_return false;
    const StoreStatus stored = co_await m_parts.store->dequeue(seq);
    if (!stored)
        co_return failure(stored.error());
    if (!self)
        co_return true;
    remove(seq);
    Q_EMIT pendingChanged();
    co_await flush();
    co_return true;
}

Task<std::vector<Refusal>> Outbox::unshownRefusals()
{
    auto document = co_await m_parts.store->load<RefusalDocument>(RefusalDocument::key);
    co_return document ? std::move(document->refusals) : std::vector<Refusal>{};
}

Task<StoreStatus> Outbox::markShown(std::vector<Refusal> refusals)
{
    std::vector<std::int64_t> seqs;
    seqs.reserve(refusals.size());
    for (const Refusal &refusal : refusals)
        seqs.push_back(refusal.seq);
    auto taken = co_await takeRefusals(m_parts.store, std::move(seqs));
    if (!taken)
        co_return failure(std::move(taken.error()));
    co_return StoreStatus{};
}

// Small pieces

bool Outbox::isBlocked(const Pending &row) const
{
    return std::ranges::any_of(m_pending, [&](const Pending &other) {
        return other.conflict && other.seq <= row.seq && other.change.entryId() == row.change.entryId();
    });
}

Outbox::Pending *Outbox::find(std::int64_t seq)
{
    const auto found = std::ranges::lower_bound(m_pending, seq, {}, &Pending::seq);
    return found != m_pending.end() && found->seq == seq ? &*found : nullptr;
}

/// Puts a stored row into the list, or brings the one that is there up to date; its conflict stays.
Outbox::Pending Outbox::adopt(Pending row)
{
    if (Pending *known = find(row.seq)) {
        known->change = std::move(row.change);
        return *known;
    }
    const auto place = std::ranges::lower_bound(m_pending, row.seq, {}, &Pending::seq);
    return *m_pending.insert(place, std::move(row));
}

void Outbox::remove(std::int64_t seq)
{
    std::erase_if(m_pending, [seq](const Pending &row) { return row.seq == seq; });
}

void Outbox::resume(std::int64_t seq, const Outcome &outcome)
{
    if (auto waiter = m_waiters.extract(seq))
        waiter.mapped()(outcome);
}

void Outbox::resumeAllQueued()
{
    for (const auto &[seq, answer] : std::exchange(m_waiters, {}))
        answer(Queued{seq});
}

void Outbox::scheduleRetry()
{
    if (!m_isClosing)
        m_parts.retry->schedule(retryDelay(m_failures), [this] { pass(); });
}

void Outbox::setOffline(bool isOffline)
{
    if (std::exchange(m_isOffline, isOffline) != isOffline)
        Q_EMIT isOfflineChanged();
}

} // namespace orvane
