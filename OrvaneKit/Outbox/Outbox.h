// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryChange.h"
#include "Http/CallError.h"
#include "LocalStore/LocalStore.h"
#include "OrvaneAPI/Schemas.h"
#include "Outbox/OutboxStore.h"
#include "Outbox/QueuedChanges.h"
#include "Outbox/Refusal.h"
#include "Support/FileLock.h"
#include "Support/Instant.h"
#include "Support/RetryTimer.h"
#include "Support/Task.h"

#include <QObject>
#include <functional>
#include <map>
#include <memory>
#include <variant>
#include <vector>

namespace orvane {

class OrvaneClient;

/// The queue of changes that the server has not yet answered for good. A change is stored before anything
/// else happens to it, is sent in the order in which it was queued, and leaves the queue only when the server
/// has accepted or refused it.
///
/// Owner: the signed-in account. Thread: the main thread. Several processes may hold an outbox on one store:
/// a lock file lets one of them send at a time, and the row to send is read anew before each send, so no
/// change is sent twice and none is forgotten.
class Outbox final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOffline READ isOffline NOTIFY isOfflineChanged)
    Q_PROPERTY(bool isHeldBack READ isHeldBack NOTIFY isHeldBackChanged)

public:
    using Pending = QueuedChange;

    /// What became of one submitted change; `seq` is its number in the queue.
    struct Sent {
        std::int64_t seq = 0;
        /// The entry as the server answered; none for a delete, or when another process sent the change.
        std::optional<TimeEntryResponse> entry;
    };
    struct Rejected {
        std::int64_t seq = 0;
        CallError error;
    };
    /// Still in the outbox: the server is away, or the user has a conflict to settle.
    struct Queued {
        std::int64_t seq = 0;
    };
    using Outcome = std::variant<Sent, Rejected, Queued>;

    /// Whether the queue may be sent: yes; not now, since the server cannot be asked; no, since the account
    /// signed in to is not the one whose changes these are.
    enum class SendVerdict { allowed, away, notOurs };
    using SendCheck = std::function<Task<SendVerdict>()>;

    /// The right to send, among the processes of one store; given back when the last copy goes. Null: another
    /// process has it.
    using Turn = std::shared_ptr<void>;
    /// Waits that long for the turn. The error says why it can never be had.
    using TakeTurn = std::function<Task<Result<Turn, std::string>>(std::chrono::milliseconds patience)>;

    struct Parts {
        std::shared_ptr<OrvaneClient> api;
        std::shared_ptr<LocalStore> store;
        /// Empty path: no other process can have this store.
        std::string lockPath;
        /// Instead of the lock file.
        TakeTurn takeTurn;
        /// Null: a system timer.
        std::unique_ptr<RetryTimer> retry;
        /// Asked at the start of each pass; empty: always.
        SendCheck mayBeSent;
        /// Refusals of changes whose caller waits are kept too, since what was typed may be gone from where
        /// it was typed; but for creations, which their caller still has.
        bool keepsRefusals = false;
        /// How long a pass waits for another process that is sending.
        std::chrono::milliseconds lockPatience{60'000};
    };

    /// Makes the outbox and reads the stored queue. Nothing is sent before the first `submit` or `flush`.
    static Task<std::unique_ptr<Outbox>> make(Parts parts);
    ~Outbox() override;

    /// Stores the change, starts a pass and answers what became of the change. The error is the store's: then
    /// the change was not taken at all.
    Task<Result<Outcome, StoreError>> submit(EntryChange change);
    /// The same for changes that belong together: all are stored in one transaction, or none. Answers their
    /// outcomes in order.
    Task<Result<std::vector<Outcome>, StoreError>> submit(std::vector<EntryChange> changes);
    /// The same with what the user saw of each entry. What another process queued for it meanwhile is not
    /// overwritten: the change is put on top of it, or becomes a conflict. `onStored` is called with the
    /// numbers of the changes once they are stored and shown, before anything becomes of them.
    using StoredHandler = std::function<void(const std::vector<std::int64_t> &seqs)>;
    Task<Result<std::vector<Outcome>, StoreError>> submit(std::vector<Submission> submissions,
                                                          StoredHandler onStored = {});
    /// A pass over the whole queue; when one runs already, waits for its end.
    Task<> flush();
    /// Reads what other processes have queued, without sending anything.
    Task<> readStored();
    /// Ends a running pass after the request in flight and schedules nothing more; every waiting caller is
    /// answered.
    Task<> close();

    const std::deque<Pending> &pending() const { return m_queue.rows(); }
    std::vector<EntryChange> changes() const { return m_queue.changes(); }
    std::vector<Pending> conflicts() const { return m_queue.conflicts(); }
    bool isOffline() const { return m_isOffline; }
    bool isFlushing() const { return m_isFlushing; }
    /// The number of the change that is in flight.
    const std::optional<std::int64_t> &sending() const { return m_sending; }
    /// True when the last pass was held back because the server says this is another account than the
    /// store's.
    bool isHeldBack() const { return m_isHeldBack; }

    /// Settles a conflict with the user's change: what it changed is changed anew in the server's current
    /// entry. False when no conflict has that number. `onStored` of each way is called once it is settled,
    /// stored and shown, before the server is asked.
    using SettledHandler = std::function<void()>;
    Task<Result<bool, StoreError>> keepMine(std::int64_t seq, SettledHandler onStored = {});
    /// Settles a conflict by dropping the user's change. What was made on top of it is put on top of the
    /// server's current entry, and asks again where both changed the same field.
    Task<Result<bool, StoreError>> keepTheirs(std::int64_t seq, SettledHandler onStored = {});
    /// Settles a conflict with the entry as its user put it together from both sides, having seen `theirs`.
    /// It is sent as made on that; what the server has beyond it is a conflict again, and never overwritten.
    Task<Result<bool, StoreError>> keepMerged(std::int64_t seq, EntryRequest request,
                                              TimeEntryResponse theirs, SettledHandler onStored = {});

    /// Both sides of a conflict, as its user is asked about them.
    struct ConflictSides {
        std::int64_t seq = 0;
        /// What the user wants, made anew on theirs: what they did not change says what theirs does.
        EntryChange mine;
        /// What `mine` would replace.
        TimeEntryResponse theirs;
        /// The change asks to stop the entry, and nothing else.
        bool isStop = false;
    };
    /// None when no conflict has that number (any more).
    Task<std::optional<ConflictSides>> sides(std::int64_t seq);

    /// Refusals that nobody was waiting for and that have not been shown yet, oldest first; they survive
    /// restarts.
    Task<std::vector<Refusal>> unshownRefusals();
    Task<StoreStatus> markShown(std::vector<Refusal> refusals);
    /// For a window: sets refusals that have not been shown aside until their user answers each. Answers all
    /// that are set aside, oldest first; they survive restarts.
    Task<Result<std::vector<Refusal>, StoreError>> setRefusalsAside();
    Task<StoreStatus> markAnswered(std::int64_t seq);

    /// When the next pass starts by itself; none while nothing is scheduled.
    const std::optional<Instant> &nextTry() const { return m_nextTry; }

    /// The handlers through which outcomes leave; `OutboxOutcomes` takes them and passes each outcome on to
    /// everybody who listens.
    std::function<void(const Pending &, const std::optional<TimeEntryResponse> &)> onSent;
    std::function<void(const Pending &, const CallError &, bool callerWaits)> onRejected;
    std::function<void(const Pending &, const TimeEntryResponse &current)> onConflict;

Q_SIGNALS:
    /// The queue is another one. The entries whose changes came, went, or got or lost a conflict.
    void pendingChanged(const orvane::TouchedEntries &touched);
    void isOfflineChanged();
    void isHeldBackChanged();
    void nextTryChanged();
    void passEnded();

private:
    using Answer = std::function<void(Outcome)>;
    using Delivered = Result<std::optional<TimeEntryResponse>, CallError>;
    enum class Step { goOn, stop };
    /// What goes out in one request: a change, with a creation perhaps the stop of its entry.
    struct Sending {
        Pending row;
        std::optional<TimeEntryResponse> base;
        std::optional<std::string> carried;
        std::optional<Pending> stop;
    };

    explicit Outbox(Parts parts);
    Task<> pass();
    Task<Turn> waitForTurn();
    Task<Step> takeTurnAndSend();
    Task<Step> sendAll();
    Task<bool> readNewRows();
    void noteEnd();
    Task<bool> isAllowed();
    Task<Step> sendNext(StoredRow stored);
    Task<Result<Sending, StoreError>> prepared(StoredRow stored);
    Task<Step> sendOne(Sending sending);
    Task<Delivered> deliver(EntryChange change);
    Task<Step> handleAccepted(Sending sending, std::optional<TimeEntryResponse> entry, bool isOursAlone);
    Task<Step> handleFailure(Sending sending, CallError error);
    Task<Step> handleRefusal(Pending row, CallError error);
    Task<Step> sendAlone(Sending sending);
    Step handleConflict(Pending row, const TimeEntryResponse &current);
    void handleTransient();
    Step stopForStore(const StoreError &error);
    Task<> catchUp(std::int64_t after, std::int64_t before);
    void reportSettledElsewhere(const Pending &row, const SettledElsewhere &settled);
    Task<Result<bool, StoreError>> settle(std::int64_t seq, Settlement settlement, SettledHandler onStored,
                                          std::optional<TimeEntryResponse> seen = {});
    void resume(std::int64_t seq, const Outcome &outcome);
    void resumeAllQueued();
    void scheduleRetry();
    void cancelRetry();
    void setOffline(bool isOffline);
    void setHeldBack(bool isHeldBack);
    void setNextTry(std::optional<Instant> nextTry);
    void tellPending();

    Parts m_parts;
    QueuedChanges m_queue;
    /// Every row of the store up to this number has been read.
    std::int64_t m_readUpTo = 0;

    std::map<std::int64_t, Answer> m_waiters;
    bool m_isOffline = false;
    bool m_isFlushing = false;
    /// Something came while a pass ran that it may have passed by already.
    bool m_isWanted = false;
    /// A conflict was settled while a pass ran: its row lies behind the pass, and goes before those that
    /// waited.
    bool m_startsOver = false;

    std::optional<std::int64_t> m_sending;
    bool m_isHeldBack = false;
    std::optional<Instant> m_nextTry;
    bool m_isClosing = false;
    int m_failures = 0;
};

} // namespace orvane
