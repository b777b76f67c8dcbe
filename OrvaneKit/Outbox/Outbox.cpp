// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/Outbox.h"

#include "Catalog/EntryConversions.h"
#include "Client/OrvaneClient.h"
#include "Http/RefusalText.h"
#include "Outbox/OutboxRules.h"
#include "Support/Eventual.h"
#include "Time/AppClock.h"

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
    outbox->m_readUpTo = stored.empty() ? 0 : stored.back().seq;
    for (PendingChange &row : stored)
        outbox->m_queue.adopt(std::move(row));
    outbox->m_queue.takeTouched();
    co_return outbox;
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
    std::vector<Submission> submissions;
    submissions.reserve(changes.size());
    for (EntryChange &change : changes)
        submissions.push_back({std::move(change), std::nullopt});
    return submit(std::move(submissions));
}

Task<Result<std::vector<Outbox::Outcome>, StoreError>> Outbox::submit(std::vector<Submission> submissions,
                                                                      StoredHandler onStored)
{
    const QPointer<Outbox> self(this);
    auto rows = co_await enqueueAll(m_parts.store, std::move(submissions));
    if (!rows)
        co_return failure(std::move(rows.error()));
    std::vector<Outcome> outcomes;
    if (!self) {
        std::ranges::transform(*rows, std::back_inserter(outcomes),
                               [](const PendingChange &row) { return Queued{row.seq}; });
        co_return outcomes;
    }
    std::vector<Eventual<Outcome>> answers;
    for (const PendingChange &row : *rows) {
        const auto &answer = answers.emplace_back(ResumeWaiters::fromTheirLoops);
        m_waiters[row.seq] = [answer](Outcome outcome) { answer.finish(std::move(outcome)); };
    }
    m_queue.adopt(*rows);
    tellPending();
    if (onStored) {
        std::vector<std::int64_t> seqs;
        std::ranges::transform(*rows, std::back_inserter(seqs), &PendingChange::seq);
        onStored(seqs);
    }
    if (m_isClosing)
        resumeAllQueued();
    pass();
    outcomes.reserve(answers.size());
    for (Eventual<Outcome> &answer : answers)
        outcomes.push_back(co_await std::move(answer));
    co_return outcomes;
}

Task<> Outbox::flush()
{
    const QPointer<Outbox> self(this);
    pass();
    if (self && m_isFlushing)
        co_await qCoro(this, &Outbox::passEnded);
}

Task<> Outbox::readStored()
{
    if (!m_isClosing)
        co_await readNewRows();
}

Task<> Outbox::close()
{
    m_isClosing = true;
    cancelRetry();
    if (m_isFlushing)
        co_await qCoro(this, &Outbox::passEnded);
}

// One pass

Task<> Outbox::pass()
{
    m_isWanted = true;
    if (m_isFlushing || m_isClosing)
        co_return;
    m_isFlushing = true;
    cancelRetry();
    const QPointer<Outbox> self(this);
    Step step = Step::goOn;
    // What comes while a pass is under way may lie behind it, or come when its end is decided.
    while (m_isWanted && step == Step::goOn && !m_isClosing) {
        m_isWanted = false;
        m_startsOver = false;
        step = co_await takeTurnAndSend();
        if (!self)
            co_return;
    }
    if (step == Step::stop || m_isClosing)
        resumeAllQueued();
    m_isFlushing = false;
    Q_EMIT passEnded();
}

Task<Outbox::Step> Outbox::takeTurnAndSend()
{
    const QPointer<Outbox> self(this);
    if (!m_parts.takeTurn)
        co_return co_await sendAll();
    const Turn turn = co_await waitForTurn();
    if (!self)
        co_return Step::stop;
    if (turn)
        co_return co_await sendAll();
    scheduleRetry();
    co_return Step::stop;
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

Task<Outbox::Step> Outbox::sendAll()
{
    const QPointer<Outbox> self(this);
    if (!co_await readNewRows() || !self)
        co_return Step::stop;
    std::int64_t cursor = 0;
    bool isChecked = false;
    for (;;) {
        auto next = co_await nextStored(m_parts.store, cursor);
        if (!self)
            co_return Step::stop;
        if (!next)
            co_return stopForStore(next.error());
        const bool isAtEnd = !next->has_value();
        co_await catchUp(cursor, isAtEnd ? queueEnd : (*next)->row.seq);
        if (!self)
            co_return Step::stop;
        if (isAtEnd) {
            noteEnd();
            co_return Step::goOn;
        }
        StoredRow stored = std::move(**next);
        cursor = stored.row.seq;
        if (m_queue.isBlocked(m_queue.adopt(stored.row))) {
            resume(cursor, Queued{cursor});
            continue;
        }
        if (!isChecked)
            isChecked = co_await isAllowed();
        if (!isChecked || !self || m_isClosing)
            co_return Step::stop;
        if (std::exchange(m_startsOver, false)) {
            cursor = 0;
            continue;
        }
        if (co_await sendNext(std::move(stored)) == Step::stop || !self)
            co_return Step::stop;
    }
}

/// With nothing left to send, by whoever it was sent, there is nothing to be offline about.
void Outbox::noteEnd()
{
    if (!m_queue.rows().empty())
        return;
    m_failures = 0;
    setOffline(false);
    setHeldBack(false);
}

/// What other processes have queued, so that all of an entry's changes are known before the first is sent.
Task<bool> Outbox::readNewRows()
{
    const QPointer<Outbox> self(this);
    const auto rows = co_await storedAbove(m_parts.store, m_readUpTo);
    if (!self)
        co_return false;
    if (!rows) {
        stopForStore(rows.error());
        co_return false;
    }
    if (!rows->empty()) {
        // Not as far as this process's own rows: another one's may lie before them.
        m_readUpTo = rows->back().seq;
        m_queue.adopt(*rows);
        tellPending();
    }
    co_return true;
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
    setHeldBack(verdict == SendVerdict::notOurs);
    if (verdict == SendVerdict::away)
        handleTransient();
    co_return verdict == SendVerdict::allowed;
}

Task<Outbox::Step> Outbox::sendNext(StoredRow stored)
{
    const QPointer<Outbox> self(this);
    if (stored.stopped) {
        // The first stop's time stands.
        const std::optional<TimeEntryResponse> stopped = std::move(stored.stopped);
        Pending row{stored.row.seq, stored.row.change, std::nullopt};
        row.change = row.change.withVersion(stopped->version);
        co_return co_await handleAccepted({std::move(row), stopped, stored.carried, {}}, stopped, true);
    }
    auto sending = co_await prepared(std::move(stored));
    if (!self)
        co_return Step::stop;
    if (!sending)
        co_return stopForStore(sending.error());
    co_return co_await sendOne(std::move(*sending));
}

/// A creation that was never tried takes the stop of its entry along, when nothing lies between: sent alone,
/// it would end the timer that runs on another device by now. In which form it goes is noted first.
Task<Result<Outbox::Sending, StoreError>> Outbox::prepared(StoredRow stored)
{
    const QPointer<Outbox> self(this);
    Sending sending{{stored.row.seq, std::move(stored.row.change), {}},
                    std::move(stored.base),
                    std::move(stored.carried),
                    {}};
    const auto *create = std::get_if<EntryChange::Create>(&sending.row.change.action);
    if (create == nullptr || create->request.stop)
        co_return sending;
    if (!stored.tried) {
        const auto tried = co_await noteTry(m_parts.store, {sending.row.seq, sending.row.change},
                                            m_queue.stopBehind(sending.row));
        if (!tried)
            co_return failure(tried.error());
        stored.tried = *tried;
    }
    if (!self || !stored.tried->stop)
        co_return sending;
    if (const Pending *stop = m_queue.find(*stored.tried->stop))
        sending.stop = *stop;
    co_return sending;
}

Task<Outbox::Step> Outbox::sendOne(Sending sending)
{
    const QPointer<Outbox> self(this);
    m_sending = sending.row.seq;
    EntryChange change = sending.row.change;
    auto *create = std::get_if<EntryChange::Create>(&change.action);
    if (sending.stop)
        create->request.stop = std::get<EntryChange::Stop>(sending.stop->change.action).at;
    auto answer = co_await deliver(change);
    if (!self)
        co_return Step::stop;
    m_sending.reset();
    if (!answer)
        co_return co_await handleFailure(std::move(sending), std::move(answer.error()));
    const bool isOursAlone = create == nullptr || !*answer || isAsCreated(*create, **answer);
    co_return co_await handleAccepted(std::move(sending), std::move(*answer), isOursAlone);
}

Task<Outbox::Delivered> Outbox::deliver(EntryChange change)
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

Task<Outbox::Step> Outbox::handleAccepted(Sending sending, std::optional<TimeEntryResponse> entry,
                                          bool isOursAlone)
{
    const QPointer<Outbox> self(this);
    std::vector<Pending> accepted{std::move(sending.row)};
    if (sending.stop)
        accepted.push_back(std::move(*sending.stop));
    std::vector<PendingChange> rows;
    for (const Pending &row : accepted)
        rows.push_back({row.seq, row.change});
    const auto settled = co_await settleAccepted(m_parts.store, std::move(rows),
                                                 {sending.base, sending.carried, entry, isOursAlone});
    if (!self)
        co_return Step::stop;
    m_failures = 0;
    setOffline(false);
    if (settled) {
        for (const Pending &row : accepted)
            m_queue.remove(row.seq);
        m_queue.adopt(*settled);
    }
    // Without the disk the row stays, and sending it again does no harm; what is behind it waits.
    for (const Pending &row : accepted) {
        if (onSent && settled)
            onSent(row, entry);
        resume(row.seq, Sent{row.seq, entry});
    }
    if (!settled)
        co_return stopForStore(settled.error());
    tellPending();
    co_return Step::goOn;
}

Task<Outbox::Step> Outbox::handleFailure(Sending sending, CallError error)
{
    if (auto lost = lostFirstAnswer(sending.row.change, sending.base, error))
        co_return co_await handleAccepted(std::move(sending), std::move(lost->entry), lost->isOursAlone);
    switch (classify(error)) {
    case FailureKind::conflict:
        co_return handleConflict(std::move(sending.row), *std::get<APIError>(error).current);
    case FailureKind::transient:
        handleTransient();
        co_return Step::stop;
    case FailureKind::refusal:
        break;
    }
    if (sending.stop)
        co_return co_await sendAlone(std::move(sending));
    co_return co_await handleRefusal(std::move(sending.row), std::move(error));
}

/// What refuses a creation together with its stop (an entry that may not end as it is) may still take the
/// creation.
Task<Outbox::Step> Outbox::sendAlone(Sending sending)
{
    const QPointer<Outbox> self(this);
    const auto noted = co_await noteTry(m_parts.store, {sending.row.seq, sending.row.change}, {});
    if (!self)
        co_return Step::stop;
    if (!noted)
        co_return stopForStore(noted.error());
    sending.stop.reset();
    co_return co_await sendOne(std::move(sending));
}

Outbox::Step Outbox::handleConflict(Pending row, const TimeEntryResponse &current)
{
    m_failures = 0;
    setOffline(false);
    m_queue.setConflict(row.seq, current);
    if (onConflict)
        onConflict(row, current);
    tellPending();
    resume(row.seq, Queued{row.seq});
    return Step::goOn;
}

void Outbox::handleTransient()
{
    ++m_failures;
    setOffline(true);
    scheduleRetry();
}

Task<Outbox::Step> Outbox::handleRefusal(Pending row, CallError error)
{
    const QPointer<Outbox> self(this);
    const bool callerWaits = m_waiters.contains(row.seq);
    std::optional<Refusal> kept;
    const bool isCreation = std::holds_alternative<EntryChange::Create>(row.change.action);
    if (!callerWaits || (m_parts.keepsRefusals && !isCreation)) {
        const auto &answer = std::get<APIError>(error);
        kept = Refusal{row.seq, row.change, refusalText(answer), answer.status};
    }
    const auto settled = co_await settleRefused(m_parts.store, {row.seq, row.change}, std::move(kept));
    if (!self)
        co_return Step::stop;
    m_failures = 0;
    setOffline(false);
    if (!settled)
        co_return stopForStore(settled.error());
    m_queue.remove(row.seq);
    m_queue.adopt(*settled);
    if (onRejected)
        onRejected(row, error, callerWaits);
    tellPending();
    resume(row.seq, Rejected{row.seq, std::move(error)});
    co_return Step::goOn;
}

Outbox::Step Outbox::stopForStore(const StoreError &error)
{
    qCWarning(outboxLog) << "the pass stopped at the store:" << error.message.c_str();
    ++m_failures;
    scheduleRetry();
    return Step::stop;
}

/// Changes between two rows of the store that are no longer there were settled by another process. The store
/// answers in order, so a change that this process added after the question is not known here yet.
Task<> Outbox::catchUp(std::int64_t after, std::int64_t before)
{
    const QPointer<Outbox> self(this);
    const std::vector<Pending> gone = m_queue.between(after, before);
    if (gone.empty())
        co_return;
    std::vector<PendingChange> rows;
    for (const Pending &row : gone)
        rows.push_back({row.seq, row.change});
    const auto settled = co_await settledElsewhere(m_parts.store, std::move(rows));
    if (!self)
        co_return;
    std::vector<std::int64_t> told;
    for (const Pending &row : gone) {
        if (m_waiters.contains(row.seq))
            told.push_back(row.seq);
        reportSettledElsewhere(row, settled ? *settled : SettledElsewhere{});
    }
    tellPending();
    const bool isRefused = settled && !settled->refusals.empty();
    if (isRefused && !told.empty())
        co_await noteShown(m_parts.store, std::move(told));
}

void Outbox::reportSettledElsewhere(const Pending &row, const SettledElsewhere &settled)
{
    const bool callerWaits = m_waiters.contains(row.seq);
    m_queue.remove(row.seq);
    const auto refusal = std::ranges::find(settled.refusals, row.seq, &Refusal::seq);
    if (refusal == settled.refusals.end()) {
        const auto entry = std::ranges::find(settled.entries, row.change.entryId(), &TimeEntryResponse::id);
        const bool isKnown = entry != settled.entries.end();
        const auto answer = isKnown ? std::optional{*entry} : std::nullopt;
        if (onSent)
            onSent(row, answer);
        resume(row.seq, Sent{row.seq, answer});
        return;
    }
    const CallError error = APIError{.status = refusal->status, .title = refusal->message};
    // Who did not ask for it learns of it where refusals are shown.
    if (onRejected && callerWaits)
        onRejected(row, error, callerWaits);
    resume(row.seq, Rejected{row.seq, error});
}

// Small pieces

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
    if (m_isClosing)
        return;
    const auto delay = retryDelay(m_failures);
    m_parts.retry->schedule(delay, [this] { pass(); });
    setNextTry(AppClock::now() + delay);
}

void Outbox::cancelRetry()
{
    m_parts.retry->cancel();
    setNextTry(std::nullopt);
}

void Outbox::setNextTry(std::optional<Instant> nextTry)
{
    if (std::exchange(m_nextTry, nextTry) != nextTry)
        Q_EMIT nextTryChanged();
}

void Outbox::setHeldBack(bool isHeldBack)
{
    if (std::exchange(m_isHeldBack, isHeldBack) != isHeldBack)
        Q_EMIT isHeldBackChanged();
}

void Outbox::tellPending()
{
    Q_EMIT pendingChanged(m_queue.takeTouched());
}

void Outbox::setOffline(bool isOffline)
{
    if (std::exchange(m_isOffline, isOffline) != isOffline)
        Q_EMIT isOfflineChanged();
}

} // namespace orvane
