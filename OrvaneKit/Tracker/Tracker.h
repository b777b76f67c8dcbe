// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "Catalog/DayGroup.h"
#include "Catalog/EntryChange.h"
#include "Catalog/EntryDetails.h"
#include "Catalog/EntryRules.h"
#include "LocalStore/LocalStore.h"
#include "OrvaneAPI/Schemas.h"
#include "Outbox/Outbox.h"
#include "Time/UserTime.h"
#include "Tracker/Snapshot.h"

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orvane {

class OrvaneClient;

enum class LoadState { Loading, Loaded, Failed };

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
};

/// One workspace's entries of the signed-in user: the weeks loaded so far, the running entry, the workspace's
/// settings and catalog. What the server said is kept apart from what is shown, which also reflects the
/// changes waiting in the outbox, in order. Every change of the user goes through here: it shows at once and
/// is handed to the outbox.
///
/// Owner: the account. Thread: the main thread.
class Tracker final : public QObject {
    Q_OBJECT

public:
    struct Parts {
        WorkspaceSummary workspace;
        UserTime time;
        std::shared_ptr<OrvaneClient> api;
        std::shared_ptr<LocalStore> store;
        /// Outlives the tracker.
        Outbox *outbox = nullptr;
        /// Names new entries; empty: with random identifiers.
        std::function<std::string()> newIdentifier = {};
    };

    explicit Tracker(Parts parts);
    ~Tracker() override;

    const WorkspaceSummary &workspace() const { return m_parts.workspace; }
    const UserTime &time() const { return m_parts.time; }
    Catalog &catalog() { return m_catalog; }
    const Catalog &catalog() const { return m_catalog; }
    Outbox &outbox() { return *m_parts.outbox; }
    const std::optional<WorkspaceSettingsResponse> &settings() const { return m_settings; }
    int weeksLoaded() const { return m_weeksLoaded; }
    LoadState state() const { return m_state; }
    bool isLoadingMore() const { return m_isLoadingMore; }
    /// Why the last load failed; none while it has not.
    const std::optional<CallError> &loadError() const { return m_loadError; }

    /// Reads the snapshot and shows it. True when there was one.
    Task<bool> loadSnapshot();
    /// Snapshot first (unless it was read already), then the server's current week, running entry, settings
    /// and catalog, and a new snapshot. Ends with `state` Loaded or Failed.
    Task<> load();
    /// One more week before the window; false leaves the window as it was.
    Task<bool> loadWeekBefore();
    /// Makes the entries of any days known, outside the window too. False when the server could not be asked.
    Task<bool> loadDays(DayKey first, int count);
    /// The catalog alone, after it was changed.
    Task<bool> reloadCatalog();

    /// What is shown, newest start first; the running entry included.
    const std::vector<TimeEntryResponse> &entries() const;
    const std::optional<TimeEntryResponse> &running() const;
    std::optional<TimeEntryResponse> entry(const std::string &id) const;
    /// The entries that start on the days from `first`, each day with its entries in order of start; every
    /// day is there.
    std::vector<DayGroup> days(DayKey first, int count) const;
    /// What is missing in `details` by the workspace's rules.
    EntryRules rules() const;

    /// Stops a running entry at `at`, then starts a new one; `needsDetails` when the running one cannot be
    /// stopped yet.
    Task<SaveResult> start(EntryDetails details, Instant at);
    Task<SaveResult> stop(Instant at);
    /// Starts a new entry with the details of the last one.
    Task<SaveResult> continueLast(Instant at);
    /// Records an entry; one without a stop starts the timer as `start` does.
    Task<SaveResult> create(EntryRequest request);
    Task<SaveResult> update(std::string id, EntryRequest request);
    Task<SaveResult> duplicate(std::string id);
    /// Divides an entry's time between projects; the shares sum to 100.
    Task<SaveResult> split(std::string id, std::vector<SplitPart> shares);
    Task<SaveResult> remove(std::string id);

    /// Saves what a change has brought since the last snapshot.
    Task<> close();

Q_SIGNALS:
    void entriesChanged();
    void stateChanged();
    /// A change that nobody waits for any more was refused.
    void refused(const orvane::EntryChange &change, const QString &message);

private:
    struct Fetched;
    Task<Result<Fetched, CallError>> fetch(Instant from, Instant to);
    void apply(Fetched fetched, InstantInterval window);
    void replaceServerEntries(InstantInterval range, std::vector<TimeEntryResponse> entries);
    Task<> saveSnapshot();
    Task<> refresh(std::string workspaceId, std::string id);
    void show();
    void workOutShown() const;
    bool isRunningElsewhere() const;
    void takeServerEntry(const TimeEntryResponse &entry);
    void dropServerEntry(const std::string &id);
    void handleSent(const Outbox::Pending &row, const std::optional<TimeEntryResponse> &entry);
    Task<SaveResult> submit(std::vector<Submission> changes, std::string id, SaveOutcome whenDone);
    Submission made(EntryChange change, const TimeEntryResponse &shown) const;
    SaveResult refusedHere(SaveOutcome outcome, std::string message) const;
    std::optional<SaveResult> checkRules(const EntryRequest &request) const;
    bool isLackingDetails(const TimeEntryResponse &running) const;
    InstantInterval window() const;
    DayKey windowStart() const;
    bool isInWindow(DayKey day) const;
    void setState(LoadState state);

    Parts m_parts;
    Catalog m_catalog;
    std::optional<WorkspaceSettingsResponse> m_settings;
    /// Of the window and of the days asked for; of the snapshot before the first load.
    mutable std::vector<TimeEntryResponse> m_serverEntries; ///< sorted when somebody looks
    std::optional<TimeEntryResponse> m_serverRunning;
    /// Days outside the window that were asked for and whose entries are known.
    std::set<DayKey> m_calendarDays;
    /// The server's entries with the pending changes over them; empty while there is no change, when the
    /// server's are shown as they are. Worked out when somebody looks, since a long queue is drained by
    /// thousands of steps.
    mutable std::vector<TimeEntryResponse> m_shown;
    mutable bool m_showsServerEntries = true;
    mutable std::optional<TimeEntryResponse> m_shownRunning;
    mutable bool m_isShownStale = true;
    std::optional<CallError> m_loadError;
    /// What the store holds, as far as this process knows; the entries only as their digest, since a week can
    /// have thousands.
    std::optional<Snapshot> m_saved;
    std::uint64_t m_savedEntries = 0;
    /// Counts the changes that were accepted, so that an answer from before one of them is not taken for the
    /// last word.
    std::uint64_t m_generation = 0;
    int m_weeksLoaded = 0;
    LoadState m_state = LoadState::Loading;
    bool m_isLoadingMore = false;
    bool m_isSnapshotRead = false;
    bool m_isSnapshotStale = false;
    bool m_hasServerState = false;
};

} // namespace orvane
