// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/Tracker.h"

#include "Catalog/EntryDays.h"
#include "Client/OrvaneClient.h"
#include "Outbox/OutboxRules.h"
#include "Support/Require.h"
#include "Tracker/Overlay.h"

#include <QMetaMethod>
#include <QPointer>
#include <algorithm>

namespace orvane {

namespace {

/// Lists are asked for again when a change was accepted meanwhile, since their answer may be from before it.
constexpr int fetchTries = 3;

CallError trackerIsGone()
{
    return ConnectionError{"nobody waits for the answer any more"};
}

template <class T>
Task<> await(std::optional<Task<CallResult<T>>> &task, std::optional<T> &into,
             std::optional<CallError> &error)
{
    if (!task)
        co_return;
    auto result = co_await *task;
    if (result)
        into = std::move(*result);
    else
        error = std::move(result.error());
}

} // namespace

Tracker::Tracker(Parts parts) : m_parts(std::move(parts)), m_known(m_parts.workspace.id)
{
    ORVANE_REQUIRE(m_parts.outbox != nullptr && m_parts.outcomes != nullptr,
                   "a tracker needs an outbox and its outcomes");
    connect(m_parts.outcomes, &OutboxOutcomes::sent, this, &Tracker::handleSent);
    connect(m_parts.outcomes, &OutboxOutcomes::rejected, this, &Tracker::handleRejected);
    connect(m_parts.outcomes, &OutboxOutcomes::conflicted, this,
            [this](const QueuedChange &, const TimeEntryResponse &current) { show(m_known.take(current)); });
    connect(m_parts.outbox, &Outbox::pendingChanged, this, &Tracker::showQueued);
    connect(m_parts.outbox, &Outbox::passEnded, this, [this] {
        if (m_known.isUnsaved())
            saveSnapshot();
    });
}

Tracker::~Tracker() = default;

// Loading

Task<bool> Tracker::loadSnapshot()
{
    const QPointer<Tracker> self(this);
    auto snapshot = co_await m_parts.store->load<Snapshot>(Snapshot::key(m_parts.workspace.id));
    if (!self)
        co_return false;
    m_isSnapshotRead = true;
    if (!snapshot || m_known.hasAnswer())
        co_return snapshot.has_value();
    m_catalog.replace(snapshot->projects, snapshot->clients, snapshot->tags);
    const bool hasOtherSettings = snapshot->settings && m_settings != snapshot->settings;
    if (hasOtherSettings)
        m_settings = snapshot->settings;
    show(m_known.takeSnapshot(std::move(*snapshot)));
    if (self && hasOtherSettings)
        Q_EMIT settingsChanged();
    co_return true;
}

Task<> Tracker::load()
{
    const QPointer<Tracker> self(this);
    setState(LoadState::loading);
    if (self && !m_isSnapshotRead)
        co_await loadSnapshot();
    if (!self)
        co_return;
    auto refreshed = co_await refresh(allTopics);
    if (!self)
        co_return;
    m_loadError.reset();
    if (!refreshed)
        m_loadError = std::move(refreshed.error());
    setState(refreshed ? LoadState::loaded : LoadState::failed);
}

Task<CallResult<void>> Tracker::refresh(Topics topics)
{
    m_asked |= topics;
    if (const auto running = m_refreshing)
        co_return co_await *running;
    Eventual<CallResult<void>> running;
    m_refreshing = running;
    runRefreshes(running);
    co_return co_await running;
}

Task<> Tracker::runRefreshes(Eventual<CallResult<void>> running)
{
    const QPointer<Tracker> self(this);
    CallResult<void> result;
    while (m_asked && result) {
        const Topics topics = std::exchange(m_asked, {});
        result = co_await fetchAndApply(topics);
        if (!self)
            break;
        // What the server refuses for good is not asked for again by itself.
        const bool isLater = !result && classify(result.error()) == FailureKind::transient;
        const Topics others = result ? Topics() : std::exchange(m_asked, {});
        setMissed(isLater ? m_missed | topics | others : m_missed & ~topics);
        if (!self)
            break;
    }
    if (self) {
        m_refreshing.reset();
        // A load that failed is made good.
        if (m_state == LoadState::failed && result && !m_missed) {
            m_loadError.reset();
            setState(LoadState::loaded);
        }
    }
    running.finish(std::move(result));
}

void Tracker::setMissed(Topics missed)
{
    if (std::exchange(m_missed, missed) != missed)
        Q_EMIT missedChanged();
}

Task<> Tracker::refreshMissed()
{
    if (m_missed)
        co_await refresh(m_missed);
}

Task<CallResult<void>> Tracker::reloadCatalog()
{
    return refresh(Topic::catalog);
}

/// What one refresh asks for.
struct Tracker::Wanted {
    Topics topics;
    DaySpan window;
    std::vector<DaySpan> beside;
};

struct Tracker::Fetched {
    Wanted wanted;
    std::optional<std::vector<TimeEntryResponse>> window;
    std::vector<std::vector<TimeEntryResponse>> beside;
    std::optional<std::optional<TimeEntryResponse>> running;
    std::optional<WorkspaceSettingsResponse> settings;
    std::optional<std::vector<ProjectResponse>> projects;
    std::optional<std::vector<ClientResponse>> clients;
    std::optional<std::vector<TagResponse>> tags;
};

ServerCalls Tracker::api() const
{
    return m_parts.api->within(m_calls);
}

DaySpan Tracker::currentWeeks() const
{
    return DaySpan::weeks(m_parts.time, m_parts.time.today(), m_weeksLoaded);
}

Tracker::Wanted Tracker::wanted(Topics topics) const
{
    Wanted wanted{topics, currentWeeks(), {}};
    for (const KnownDays::Asked &asked : m_known.days().beside()) {
        const DayKey last = asked.days.first.adding(asked.days.count - 1);
        if (!wanted.window.contains(asked.days.first) || !wanted.window.contains(last))
            wanted.beside.push_back(asked.days);
    }
    return wanted;
}

/// The requests are under way together.
Task<CallResult<Tracker::Fetched>> Tracker::fetch(ServerCalls api, std::string workspaceId, Wanted wanted)
{
    const auto entriesOf = [&](const DaySpan &days) {
        return api.listTimeEntries(workspaceId, days.interval.from, days.interval.to);
    };
    const auto list = [&](Topic topic, auto ask) {
        return wanted.topics.testFlag(topic) ? std::optional{ask()} : std::nullopt;
    };
    auto window = list(Topic::entries, [&] { return entriesOf(wanted.window); });
    std::vector<Task<CallResult<std::vector<TimeEntryResponse>>>> beside;
    if (wanted.topics.testFlag(Topic::entries))
        std::ranges::transform(wanted.beside, std::back_inserter(beside), entriesOf);
    auto running = list(Topic::running, [&] { return api.getCurrentTimeEntry(); });
    auto settings = list(Topic::settings, [&] { return api.getWorkspaceSettings(workspaceId); });
    auto projects = list(Topic::catalog, [&] { return api.listProjects(workspaceId, true); });
    auto clients = list(Topic::catalog, [&] { return api.listClients(workspaceId, true); });
    auto tags = list(Topic::catalog, [&] { return api.listTags(workspaceId); });
    Fetched fetched;
    std::optional<CallError> error;
    // Each is awaited even after a failure: a task is never left behind.
    co_await await(window, fetched.window, error);
    for (auto &task : beside) {
        auto entries = co_await task;
        if (entries)
            fetched.beside.push_back(std::move(*entries));
        else
            error = std::move(entries.error());
    }
    co_await await(running, fetched.running, error);
    co_await await(settings, fetched.settings, error);
    co_await await(projects, fetched.projects, error);
    co_await await(clients, fetched.clients, error);
    co_await await(tags, fetched.tags, error);
    if (error)
        co_return failure(std::move(*error));
    fetched.wanted = std::move(wanted);
    co_return fetched;
}

Task<CallResult<void>> Tracker::fetchAndApply(Topics topics)
{
    const QPointer<Tracker> self(this);
    for (int tried = 1;; ++tried) {
        const std::uint64_t generation = m_known.generation();
        auto fetched = co_await fetch(api(), m_parts.workspace.id, wanted(topics));
        if (!self)
            co_return failure(trackerIsGone());
        if (!fetched)
            co_return failure(std::move(fetched.error()));
        // Weeks that were loaded meanwhile, and days of another zone, are asked for anew as well.
        const bool isOutdated =
            generation != m_known.generation() || fetched->wanted.window != currentWeeks();
        if (isOutdated && tried < fetchTries)
            continue;
        apply(std::move(*fetched));
        break;
    }
    if (!self)
        co_return failure(trackerIsGone());
    co_await saveSnapshot();
    co_return CallResult<void>{};
}

void Tracker::apply(Fetched fetched)
{
    const QPointer<Tracker> self(this);
    TouchedEntries touched;
    const auto take = [&](TouchedEntries more) {
        touched.insert(touched.end(), std::make_move_iterator(more.begin()),
                       std::make_move_iterator(more.end()));
    };
    if (fetched.running)
        take(m_known.takeRunning(std::move(*fetched.running)));
    for (std::size_t i = 0; i < fetched.beside.size(); ++i)
        take(m_known.takeDays(fetched.wanted.beside[i], std::move(fetched.beside[i])));
    if (fetched.window)
        take(m_known.takeWindow(fetched.wanted.window, std::move(*fetched.window)));
    if (fetched.projects)
        m_catalog.replace(std::move(*fetched.projects), std::move(*fetched.clients),
                          std::move(*fetched.tags));
    if (self && fetched.settings)
        setSettings(std::move(*fetched.settings));
    if (self)
        show(touched);
}

void Tracker::setSettings(WorkspaceSettingsResponse settings)
{
    if (m_settings == settings)
        return;
    m_settings = std::move(settings);
    Q_EMIT settingsChanged();
}

Task<CallResult<void>> Tracker::loadWeekBefore()
{
    if (const auto other = m_loadingMore)
        co_return co_await *other;
    const QPointer<Tracker> self(this);
    Eventual<CallResult<void>> loading;
    m_loadingMore = loading;
    Q_EMIT stateChanged();
    const auto &window = m_known.days().window();
    const DaySpan before =
        DaySpan::of(m_parts.time, (window ? window->days : currentWeeks()).first.adding(-7), 7);
    auto entries = co_await listDays(before);
    if (self && entries && before != DaySpan::of(m_parts.time, before.first, before.count))
        entries = failure(CallError(ConnectionError{"The days are others now."}));
    CallResult<void> result;
    if (!entries)
        result = failure(std::move(entries.error()));
    if (self) {
        m_loadingMore.reset();
        if (entries) {
            ++m_weeksLoaded;
            show(m_known.takeWeekBefore(before, std::move(*entries)));
        }
        Q_EMIT stateChanged();
    }
    loading.finish(result);
    co_return result;
}

Task<CallResult<void>> Tracker::loadDays(DayKey first, int count)
{
    if (m_known.days().contains(first, count))
        co_return CallResult<void>{};
    const QPointer<Tracker> self(this);
    const DaySpan days = DaySpan::of(m_parts.time, first, count);
    auto entries = co_await listDays(days);
    if (!entries)
        co_return failure(std::move(entries.error()));
    if (!self)
        co_return CallResult<void>{};
    if (days != DaySpan::of(m_parts.time, first, count))
        co_return co_await loadDays(first, count); // of another zone meanwhile
    show(m_known.takeDays(days, std::move(*entries)));
    co_return CallResult<void>{};
}

/// The entries of some days as they are after everything that was accepted until the answer came.
Task<CallResult<std::vector<TimeEntryResponse>>> Tracker::listDays(DaySpan days)
{
    const QPointer<Tracker> self(this);
    for (int tried = 1;; ++tried) {
        const std::uint64_t generation = m_known.generation();
        auto entries =
            co_await api().listTimeEntries(m_parts.workspace.id, days.interval.from, days.interval.to);
        if (!self)
            co_return failure(trackerIsGone());
        if (!entries || generation == m_known.generation() || tried == fetchTries)
            co_return entries;
    }
}

Task<> Tracker::saveSnapshot()
{
    auto snapshot = m_known.unsaved(m_settings, m_catalog, currentWeeks().interval.from);
    if (!snapshot)
        co_return;
    const QPointer<Tracker> self(this);
    const auto saved =
        co_await m_parts.store->save(Snapshot::key(m_parts.workspace.id), std::move(*snapshot));
    // A snapshot is a convenience: without it the next start waits for the server. What must not be lost is
    // the outbox's.
    if (self && !saved)
        m_known.forgetSaved();
}

Task<> Tracker::close()
{
    const auto store = m_parts.store;
    if (m_known.isUnsaved())
        co_await saveSnapshot();
    // A snapshot that a pass left under way ends too: the store answers in the order in which it was asked.
    co_await store->inspect([](Connection &) { return true; });
}

void Tracker::setState(LoadState state)
{
    m_state = state;
    Q_EMIT stateChanged();
}

std::set<DayKey> Tracker::calendarDays() const
{
    std::set<DayKey> days;
    for (const KnownDays::Asked &asked : m_known.days().beside()) {
        for (int i = 0; i < asked.days.count; ++i)
            days.insert(asked.days.first.adding(i));
    }
    return days;
}

// What its owner tells

void Tracker::setTime(UserTime time)
{
    if (m_parts.time == time)
        return;
    const bool areDaysOthers =
        m_parts.time.timeZone() != time.timeZone() || m_parts.time.weekStart() != time.weekStart();
    m_parts.time = std::move(time);
    if (areDaysOthers) {
        m_known.forgetDays();
        if (m_known.hasAnswer())
            refresh(Topics(Topic::entries) | Topic::running);
    }
    Q_EMIT timeChanged();
}

void Tracker::setWorkspace(WorkspaceSummary workspace)
{
    ORVANE_REQUIRE(workspace.id == m_parts.workspace.id, "a tracker serves one workspace");
    if (m_parts.workspace == workspace)
        return;
    m_parts.workspace = std::move(workspace);
    Q_EMIT workspaceChanged();
}

void Tracker::turnDay()
{
    refresh(allTopics);
    Q_EMIT dayTurned();
}

// What is shown

/// Tells who looks; that nothing is known to be otherwise is no news.
void Tracker::show(const TouchedEntries &touched)
{
    m_isShownStale = true;
    if (touched.empty() || !isSignalConnected(QMetaMethod::fromSignal(&Tracker::entriesChanged)))
        return;
    EntriesChange change;
    for (const TouchedEntry &entry : touched) {
        change.entries.insert(entry.id);
        if (entry.start)
            change.days.insert(m_parts.time.dayKey(*entry.start));
    }
    Q_EMIT entriesChanged(change);
}

/// The queue knows of entries what its changes say; a start ends what was shown to run.
void Tracker::showQueued(const TouchedEntries &touched)
{
    m_isShownStale = true;
    if (touched.empty() || !isSignalConnected(QMetaMethod::fromSignal(&Tracker::entriesChanged)))
        return;
    TouchedEntries all = touched;
    for (const TouchedEntry &entry : touched) {
        if (const TimeEntryResponse *known = m_known.find(entry.id))
            all.push_back({known->id, known->start});
    }
    for (const auto &running : {m_known.running(), m_shownRunning}) {
        if (running)
            all.push_back({running->id, running->start});
    }
    show(all);
}

const std::vector<TimeEntryResponse> &Tracker::entries() const
{
    workOutShown();
    return m_showsServerEntries ? m_known.entries() : m_shown;
}

const std::optional<TimeEntryResponse> &Tracker::running() const
{
    workOutShown();
    return m_shownRunning;
}

void Tracker::workOutShown() const
{
    if (!std::exchange(m_isShownStale, false))
        return;
    const std::vector<EntryChange> changes = m_parts.outbox->changes();
    const std::vector<TimeEntryResponse> &entries = m_known.entries();
    m_showsServerEntries = changes.empty() && !isRunningElsewhere();
    if (m_showsServerEntries) {
        m_shown = {};
        const auto running = std::ranges::find_if(
            entries, [](const TimeEntryResponse &entry) { return !entry.stop.has_value(); });
        m_shownRunning = running == entries.end() ? std::nullopt : std::optional{*running};
    } else {
        ShownEntries shown = overlay(entries, m_known.running(), changes, m_parts.workspace.id);
        m_shown = std::move(shown.entries);
        m_shownRunning = std::move(shown.running);
    }
}

/// Whether the running entry is none of those that are known, but of another workspace or long ago.
bool Tracker::isRunningElsewhere() const
{
    const auto &running = m_known.running();
    return running && std::ranges::find(m_known.entries(), running->id, &TimeEntryResponse::id) ==
                          m_known.entries().end();
}

std::optional<TimeEntryResponse> Tracker::entry(const std::string &id) const
{
    if (running() && running()->id == id)
        return running();
    const auto found = std::ranges::find(entries(), id, &TimeEntryResponse::id);
    return found == entries().end() ? std::nullopt : std::optional{*found};
}

std::vector<DayGroup> Tracker::days(DayKey first, int count) const
{
    return entryDays(entries(), m_parts.time, first, count);
}

EntryRules Tracker::rules() const
{
    const bool isAdmin =
        m_parts.workspace.role == WorkspaceRole::owner || m_parts.workspace.role == WorkspaceRole::admin;
    return EntryRules{m_settings.value_or(WorkspaceSettingsResponse{}), isAdmin};
}

// What became of changes

void Tracker::handleSent(const QueuedChange &row, const std::optional<TimeEntryResponse> &entry)
{
    if (entry)
        return show(m_known.take(*entry));
    if (std::holds_alternative<EntryChange::Delete>(row.change.action))
        return show(m_known.drop(row.change.entryId()));
    const std::string workspaceId = row.change.workspaceId();
    const std::string id = row.change.entryId();
    refreshEntry(workspaceId, id);
    show(m_known.takeSent(row.change));
}

void Tracker::handleRejected(const QueuedChange &row, const CallError &error, bool callerWaits)
{
    if (!callerWaits && row.change.workspaceId() == m_parts.workspace.id)
        Q_EMIT refused(row.change, QString::fromStdString(describe(error)));
}

Task<> Tracker::refreshEntry(std::string workspaceId, std::string id)
{
    const QPointer<Tracker> self(this);
    auto entry = co_await api().getTimeEntry(std::move(workspaceId), std::move(id));
    if (self && entry)
        show(m_known.take(*entry));
}

} // namespace orvane
