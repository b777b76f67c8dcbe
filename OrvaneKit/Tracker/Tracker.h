// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "Catalog/DayGroup.h"
#include "Catalog/EntryChange.h"
#include "Catalog/EntryDetails.h"
#include "Catalog/EntryRules.h"
#include "Http/CallError.h"
#include "Http/CallScope.h"
#include "LocalStore/LocalStore.h"
#include "OrvaneAPI/Schemas.h"
#include "Outbox/Outbox.h"
#include "Outbox/OutboxOutcomes.h"
#include "Support/Eventual.h"
#include "Time/UserTime.h"
#include "Tracker/EntriesChange.h"
#include "Tracker/EntryHistory.h"
#include "Tracker/KnownEntries.h"
#include "Tracker/StoredStep.h"

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orvane {

class OrvaneClient;
class ServerCalls;

enum class LoadState { loading, loaded, failed };

/// How a save or a stop ended. `saved`: the server accepted it. `waiting`: it is in the outbox until the
/// server can be reached. `rejected`: the server, or a rule that needs no server, refused it. `stopped`: a
/// stop was taken (see `isQueued`). `needsDetails`: the workspace requires details that the entry lacks;
/// nothing was sent. `failed`: it could not even be stored, or there was nothing to act on.
enum class SaveOutcome { saved, waiting, rejected, stopped, needsDetails, failed };

struct SaveResult {
    SaveOutcome outcome = SaveOutcome::failed;
    /// The change is in the outbox, not yet at the server.
    bool isQueued = false;
    /// The entry as it is shown now; none when nothing was recorded, or after a delete.
    std::optional<TimeEntryResponse> entry;
    /// A sentence for the user; empty when all is well.
    std::string message;
    /// The server's refusal, when there is one.
    std::optional<CallError> error;
    /// The numbers of the changes in the outbox, in order; empty when nothing was recorded.
    std::vector<std::int64_t> seqs;
    /// With `needsDetails`: which.
    std::vector<RequiredDetail> missing;
    /// What was changed, for taking it back; empty when nothing was.
    std::vector<EntryTurn> turns;
    /// Deleted entries that an action taken back has made again: their identifiers then and now.
    RenamedEntries renamed;
};

/// What a quiet refresh asks the server for.
enum class Topic { entries = 1, running = 2, settings = 4, catalog = 8 };
Q_DECLARE_FLAGS(Topics, Topic)
Q_DECLARE_OPERATORS_FOR_FLAGS(Topics)
inline constexpr Topics allTopics =
    Topics(Topic::entries) | Topic::running | Topic::settings | Topic::catalog;

/// One workspace's entries of the signed-in user: the weeks loaded so far, the running entry, the workspace's
/// settings and catalog. What the server said is kept apart (`KnownEntries`) from what is shown, which also
/// reflects the changes waiting in the outbox, in order. Every change of the user goes through here: it shows
/// at once and is handed to the outbox.
///
/// It may live for weeks: what is known changes with the server's answers and never by the clock, and its
/// owner tells it when a day turns or the user's choices about time change.
///
/// Owner: the account. Thread: the main thread. A call whose tracker goes meanwhile ends with a
/// ConnectionError.
class Tracker final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isLoadingMore READ isLoadingMore NOTIFY stateChanged)
    Q_PROPERTY(int weeksLoaded READ weeksLoaded NOTIFY stateChanged)
    Q_PROPERTY(QString workspaceName READ workspaceName NOTIFY workspaceChanged)

public:
    struct Parts {
        WorkspaceSummary workspace;
        UserTime time;
        std::shared_ptr<OrvaneClient> api;
        std::shared_ptr<LocalStore> store;
        /// Outlives the tracker, and so do its outcomes.
        Outbox *outbox = nullptr;
        OutboxOutcomes *outcomes = nullptr;
        /// Names new entries; empty: with random identifiers.
        std::function<std::string()> newIdentifier = {};
    };

    explicit Tracker(Parts parts);
    ~Tracker() override;

    const WorkspaceSummary &workspace() const { return m_parts.workspace; }
    QString workspaceName() const { return QString::fromStdString(m_parts.workspace.name); }
    const UserTime &time() const { return m_parts.time; }
    Catalog &catalog() { return m_catalog; }
    const Catalog &catalog() const { return m_catalog; }
    Outbox &outbox() { return *m_parts.outbox; }
    const std::optional<WorkspaceSettingsResponse> &settings() const { return m_settings; }
    /// How many weeks before the current one are kept loaded.
    int weeksLoaded() const { return m_weeksLoaded; }
    LoadState state() const { return m_state; }
    bool isLoadingMore() const { return m_loadingMore.has_value(); }
    /// Why the last load failed; none while it has not.
    const std::optional<CallError> &loadError() const { return m_loadError; }

    /// As the server last said.
    const std::vector<TimeEntryResponse> &serverEntries() const { return m_known.entries(); }
    const std::optional<TimeEntryResponse> &serverRunning() const { return m_known.running(); }
    const KnownDays &knownDays() const { return m_known.days(); }
    /// The days that were asked for beside the loaded weeks.
    std::set<DayKey> calendarDays() const;

    /// Reads the snapshot and shows it. True when there was one.
    Task<bool> loadSnapshot();
    /// Snapshot first (unless it was read already), then the server's current week, running entry, settings
    /// and catalog, and a new snapshot. Ends with `state` Loaded or Failed.
    Task<> load();
    /// The same topics without a word: `state` stays. One refresh at a time; who asks meanwhile gets the next
    /// one's answer. What could not be had is asked for again by `refreshMissed`.
    Task<CallResult<void>> refresh(Topics topics);
    /// What earlier refreshes, or a turn of the day, still lack. Nothing is asked when nothing lacks.
    Task<> refreshMissed();
    Topics missed() const { return m_missed; }
    /// One more week before the loaded ones; a failure leaves them as they were.
    Task<CallResult<void>> loadWeekBefore();
    /// Makes the entries of any days known, beside the loaded weeks too.
    Task<CallResult<void>> loadDays(DayKey first, int count);
    /// The catalog alone, after it was changed.
    Task<CallResult<void>> reloadCatalog();

    /// Takes over other choices about time, or another summary of the workspace (its name, the user's role).
    void setTime(UserTime time);
    void setWorkspace(WorkspaceSummary workspace);
    /// A new day has begun, or the clock was set: what depends on the current day is asked for anew.
    void turnDay();

    /// What is shown, newest start first; the running entry included.
    const std::vector<TimeEntryResponse> &entries() const;
    const std::optional<TimeEntryResponse> &running() const;
    std::optional<TimeEntryResponse> entry(const std::string &id) const;
    /// The entries that start on the days from `first`, each day with its entries in order of start; every
    /// day is there.
    std::vector<DayGroup> days(DayKey first, int count) const;
    /// What is missing in `details` by the workspace's rules.
    EntryRules rules() const;
    /// What the workspace requires before this entry may end.
    std::vector<RequiredDetail> missingTo(const TimeEntryResponse &running) const;
    /// The refusal of such an entry that needs no server, if there is one.
    std::optional<SaveResult> checkRules(const EntryRequest &request) const;
    /// Why `create` would not even send it, if there is a reason: the rules, or the timer that runs.
    std::optional<SaveResult> refusalOf(const EntryRequest &request) const;

    /// Stops a running entry at `at`, then starts a new one; `needsDetails` when the running one cannot be
    /// stopped yet.
    Task<SaveResult> start(EntryDetails details, Instant at);
    Task<SaveResult> stop(Instant at);
    /// Stops the timer with other details: one change, checked as such.
    Task<SaveResult> stop(Instant at, EntryDetails details, bool describeParts);
    /// The entry that ended last, of the weeks loaded and up to eight before them.
    Task<Result<TimeEntryResponse, SaveResult>> lastStopped();
    /// Starts a new entry with the details of the last one.
    Task<SaveResult> continueLast(Instant at);
    /// Records an entry; one without a stop starts the timer as `start` does.
    Task<SaveResult> create(EntryRequest request);
    Task<SaveResult> update(std::string id, EntryRequest request);
    Task<SaveResult> duplicate(std::string id);
    /// Divides an entry's time between projects; the shares sum to 100.
    Task<SaveResult> split(std::string id, std::vector<SplitPart> shares);
    /// Divides an entry in time: it ends at `at`, and a second one with `second` has the rest; of a running
    /// one the second runs on. The first stays as it was, or becomes `first`. One action.
    Task<SaveResult> splitAt(std::string id, Instant at, EntryDetails second,
                             std::optional<EntryDetails> first = {});
    Task<SaveResult> remove(std::string id);
    /// Several entries, each once, as one action: all are stored, or none. Refused as a whole for what needs
    /// no server; when the server refuses some, the message says how many, and `turns` has the others.
    Task<SaveResult> updateAll(std::vector<std::pair<std::string, EntryRequest>> requests);
    Task<SaveResult> removeAll(std::vector<std::string> ids);
    /// Takes an action back: each entry becomes what it was before. Refused as a whole when one of them is
    /// no longer what the action made of it. A deleted entry comes back under a new identifier, since no
    /// server takes a used one: `renamed` of the answer tells which.
    Task<SaveResult> takeBack(EntryStep step);
    /// Settles a conflict of an entry of this workspace as the outbox does, as an action: taking it back
    /// brings what was given up, their entry, or all of one's own where nothing of it was kept. `theirs` is
    /// what its user saw. Answers the action, or nothing when no conflict has that number.
    Task<Result<std::optional<EntryStep>, StoreError>> settle(std::int64_t seq, Settlement settlement,
                                                              TimeEntryResponse theirs);
    /// Makes the entries of an action known that lie beside the loaded days.
    Task<CallResult<void>> loadDaysOf(EntryStep step);
    /// Whether taking it back would start a timer while another runs, which only lasts until that is stopped.
    bool wouldRunBeside(const EntryStep &step) const;

    /// Saves what a change has brought since the last snapshot.
    Task<> close();

Q_SIGNALS:
    /// What is shown may be otherwise: which entries, and on which days.
    void entriesChanged(const orvane::EntriesChange &change);
    /// An action of the user is stored and shown; what the server says to it comes later.
    void stepStored(const orvane::StoredStep &step);
    /// `state`, `loadError`, `isLoadingMore` or `weeksLoaded`.
    void stateChanged();
    void missedChanged();
    void settingsChanged();
    void workspaceChanged();
    /// The user's choices about time: every label, day and week may be another.
    void timeChanged();
    /// Today is another day.
    void dayTurned();
    /// A change that nobody waits for any more was refused.
    void refused(const orvane::EntryChange &change, const QString &message);

private:
    struct Fetched;
    struct Wanted;
    Task<> runRefreshes(Eventual<CallResult<void>> running);
    Task<CallResult<void>> fetchAndApply(Topics topics);
    static Task<CallResult<Fetched>> fetch(ServerCalls api, std::string workspaceId, Wanted wanted);
    Wanted wanted(Topics topics) const;
    void apply(Fetched fetched);
    Task<CallResult<std::vector<TimeEntryResponse>>> listDays(DaySpan days);
    void setSettings(WorkspaceSettingsResponse settings);
    Task<> saveSnapshot();
    Task<> refreshEntry(std::string workspaceId, std::string id);
    void show(const TouchedEntries &touched);
    void showQueued(const TouchedEntries &touched);
    void workOutShown() const;
    bool isRunningElsewhere() const;
    void handleSent(const QueuedChange &row, const std::optional<TimeEntryResponse> &entry);
    void handleRejected(const QueuedChange &row, const CallError &error, bool callerWaits);
    Task<SaveResult> submit(std::vector<Submission> changes, std::string id, SaveOutcome whenDone,
                            StoredStep step = {});
    Task<SaveResult> submitAll(std::vector<Submission> changes);
    Result<Submission, SaveResult> updated(const std::string &id, EntryRequest request) const;
    Result<Submission, SaveResult> removed(const std::string &id) const;
    Result<std::vector<Submission>, SaveResult> dividedAt(const TimeEntryResponse &entry, Instant at,
                                                          EntryDetails second,
                                                          std::optional<EntryDetails> first) const;
    Result<Submission, SaveResult> endedAt(const TimeEntryResponse &entry, Instant at,
                                           std::optional<EntryDetails> details) const;
    Submission made(EntryChange change, const TimeEntryResponse &shown) const;
    EntryStep noteSettled(std::int64_t seq, EntryTurn turn);
    SaveResult refusedHere(SaveOutcome outcome, std::string message) const;
    SaveResult lacking(std::vector<RequiredDetail> missing, std::string message) const;
    struct TakenBack {
        std::vector<Submission> changes;
        RenamedEntries renamed;
    };
    Result<TakenBack, SaveResult> takenBack(const EntryStep &step) const;
    std::string nextIdentifier() const;
    DaySpan currentWeeks() const;
    ServerCalls api() const;
    void setState(LoadState state);
    void setMissed(Topics missed);

    Parts m_parts;
    Catalog m_catalog;
    std::optional<WorkspaceSettingsResponse> m_settings;
    KnownEntries m_known;
    /// The server's entries with the pending changes over them; empty while there is no change, when the
    /// server's are shown as they are. Worked out when somebody looks, since a long queue is drained by
    /// thousands of steps.
    mutable std::vector<TimeEntryResponse> m_shown;
    mutable bool m_showsServerEntries = true;
    mutable std::optional<TimeEntryResponse> m_shownRunning;
    mutable bool m_isShownStale = true;
    std::optional<CallError> m_loadError;
    /// What is asked for the tracker ends with it.
    CallScope m_calls;
    Topics m_asked;
    Topics m_missed;
    /// The refreshes that are under way.
    std::optional<Eventual<CallResult<void>>> m_refreshing;
    std::optional<Eventual<CallResult<void>>> m_loadingMore;
    int m_weeksLoaded = 0;
    LoadState m_state = LoadState::loading;
    bool m_isSnapshotRead = false;
};

} // namespace orvane
