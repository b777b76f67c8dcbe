// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/Tracker.h"

#include "Client/OrvaneClient.h"
#include "Support/Require.h"
#include "Tracker/Overlay.h"

#include <QPointer>
#include <algorithm>
#include <ranges>
#include <unordered_set>

namespace orvane {

namespace {

/// Fetches are repeated when a change was accepted meanwhile, since their answer may be from before it.
constexpr int fetchTries = 3;

template <class T>
bool take(T &into, CallResult<T> result, std::optional<CallError> &error)
{
    if (!result) {
        error = std::move(result.error());
        return false;
    }
    into = std::move(*result);
    return true;
}

/// Tells one set of entries from another, whatever their order. The server gives an entry another version
/// with each change; what is shown before the server answered differs in the rest.
template <std::ranges::input_range Entries>
std::uint64_t digest(Entries &&entries)
{
    const auto text = [](const std::string &value) { return std::uint64_t{std::hash<std::string>{}(value)}; };
    std::uint64_t sum = 0;
    for (const TimeEntryResponse &entry : entries) {
        std::uint64_t one = text(entry.id);
        for (const std::uint64_t part :
             {text(entry.version), text(entry.description),
              static_cast<std::uint64_t>(millisecondsSinceEpoch(entry.start)),
              entry.stop ? static_cast<std::uint64_t>(millisecondsSinceEpoch(*entry.stop)) : 0})
            one = (one ^ part) * 0x9E37'79B9'7F4A'7C15U;
        sum += one ^ (one >> 29U);
    }
    return sum;
}

} // namespace

Tracker::Tracker(Parts parts) : m_parts(std::move(parts))
{
    Outbox *outbox = m_parts.outbox;
    ORVANE_REQUIRE(outbox != nullptr, "a tracker needs an outbox");
    outbox->onSent = [this](const Outbox::Pending &row, const auto &entry) { handleSent(row, entry); };
    outbox->onConflict = [this](const Outbox::Pending &, const TimeEntryResponse &current) {
        takeServerEntry(current);
    };
    outbox->onRejected = [this](const Outbox::Pending &row, const CallError &error, bool callerWaits) {
        if (!callerWaits)
            Q_EMIT refused(row.change, QString::fromStdString(describe(error)));
    };
    connect(outbox, &Outbox::pendingChanged, this, &Tracker::show);
    connect(outbox, &Outbox::passEnded, this, [this] {
        if (m_isSnapshotStale && (m_hasServerState || m_saved))
            saveSnapshot();
    });
    show();
}

Tracker::~Tracker()
{
    m_parts.outbox->onSent = {};
    m_parts.outbox->onConflict = {};
    m_parts.outbox->onRejected = {};
}

// Loading

Task<bool> Tracker::loadSnapshot()
{
    const QPointer<Tracker> self(this);
    auto snapshot = co_await m_parts.store->load<Snapshot>(Snapshot::key(m_parts.workspace.id));
    if (!self)
        co_return false;
    m_isSnapshotRead = true;
    if (!snapshot || m_hasServerState)
        co_return snapshot.has_value();
    m_savedEntries = digest(snapshot->entries);
    m_serverEntries = std::exchange(snapshot->entries, {});
    m_saved = std::move(*snapshot);
    m_serverRunning = m_saved->running;
    m_settings = m_saved->settings;
    m_catalog.replace(m_saved->projects, m_saved->clients, m_saved->tags);
    show();
    co_return true;
}

struct Tracker::Fetched {
    std::vector<TimeEntryResponse> entries;
    std::optional<TimeEntryResponse> running;
    std::optional<WorkspaceSettingsResponse> settings;
    std::vector<ProjectResponse> projects;
    std::vector<ClientResponse> clients;
    std::vector<TagResponse> tags;
};

/// All of a workspace that the screens show; the requests are under way together.
Task<Result<Tracker::Fetched, CallError>> Tracker::fetch(Instant from, Instant to)
{
    const auto api = m_parts.api;
    const std::string workspace = m_parts.workspace.id;
    auto entries = api->listTimeEntries(workspace, from, to);
    auto running = api->getCurrentTimeEntry();
    auto settings = api->getWorkspaceSettings(workspace);
    auto projects = api->listProjects(workspace, true);
    auto clients = api->listClients(workspace, true);
    auto tags = api->listTags(workspace);
    Fetched fetched;
    WorkspaceSettingsResponse fetchedSettings;
    std::optional<CallError> error;
    // Each is awaited even after a failure: a task is never left behind.
    bool isWhole = take(fetched.entries, co_await entries, error);
    isWhole &= take(fetched.running, co_await running, error);
    isWhole &= take(fetchedSettings, co_await settings, error);
    isWhole &= take(fetched.projects, co_await projects, error);
    isWhole &= take(fetched.clients, co_await clients, error);
    isWhole &= take(fetched.tags, co_await tags, error);
    if (!isWhole)
        co_return failure(std::move(*error));
    fetched.settings = std::move(fetchedSettings);
    co_return fetched;
}

Task<> Tracker::load()
{
    const QPointer<Tracker> self(this);
    setState(LoadState::Loading);
    if (!m_isSnapshotRead)
        co_await loadSnapshot();
    for (int tried = 1; self; ++tried) {
        const InstantInterval window = this->window();
        const std::uint64_t generation = m_generation;
        auto fetched = co_await fetch(window.from, window.to);
        if (!self)
            co_return;
        if (!fetched) {
            m_loadError = std::move(fetched.error());
            setState(LoadState::Failed);
            co_return;
        }
        if (generation != m_generation && tried < fetchTries)
            continue;
        apply(std::move(*fetched), window);
        break;
    }
    co_await saveSnapshot();
    if (self)
        setState(LoadState::Loaded);
}

Task<bool> Tracker::loadWeekBefore()
{
    if (m_isLoadingMore)
        co_return false;
    const QPointer<Tracker> self(this);
    m_isLoadingMore = true;
    Q_EMIT stateChanged();
    const Instant end = window().from;
    const Instant from = m_parts.time.startOfDay(windowStart().adding(-7));
    auto entries = co_await m_parts.api->listTimeEntries(m_parts.workspace.id, from, end);
    if (!self)
        co_return false;
    m_isLoadingMore = false;
    if (entries) {
        ++m_weeksLoaded;
        replaceServerEntries({from, end}, std::move(*entries));
        m_isSnapshotStale = true;
        show();
    }
    Q_EMIT stateChanged();
    co_return entries.has_value();
}

Task<bool> Tracker::loadDays(DayKey first, int count)
{
    const QPointer<Tracker> self(this);
    bool isKnown = m_hasServerState && m_state == LoadState::Loaded;
    for (int i = 0; i < count; ++i)
        isKnown = isKnown && (isInWindow(first.adding(i)) || m_calendarDays.contains(first.adding(i)));
    if (isKnown)
        co_return true;
    const InstantInterval range{m_parts.time.startOfDay(first), m_parts.time.startOfDay(first.adding(count))};
    auto entries = co_await m_parts.api->listTimeEntries(m_parts.workspace.id, range.from, range.to);
    if (!self || !entries)
        co_return false;
    for (int i = 0; i < count; ++i)
        m_calendarDays.insert(first.adding(i));
    replaceServerEntries(range, std::move(*entries));
    show();
    co_return true;
}

Task<bool> Tracker::reloadCatalog()
{
    const QPointer<Tracker> self(this);
    const std::string workspace = m_parts.workspace.id;
    auto projects = m_parts.api->listProjects(workspace, true);
    auto clients = m_parts.api->listClients(workspace, true);
    auto tags = m_parts.api->listTags(workspace);
    auto projectList = co_await projects;
    auto clientList = co_await clients;
    auto tagList = co_await tags;
    if (!self || !projectList || !clientList || !tagList)
        co_return false;
    m_catalog.replace(std::move(*projectList), std::move(*clientList), std::move(*tagList));
    co_await saveSnapshot();
    co_return true;
}

void Tracker::apply(Fetched fetched, InstantInterval window)
{
    m_hasServerState = true;
    m_loadError.reset();
    m_settings = std::move(fetched.settings);
    m_catalog.replace(std::move(fetched.projects), std::move(fetched.clients), std::move(fetched.tags));
    // What the snapshot held outside the window is not known to be so any more.
    std::erase_if(m_serverEntries, [&](const TimeEntryResponse &entry) {
        return !window.contains(entry.start) && !m_calendarDays.contains(m_parts.time.dayKey(entry.start));
    });
    m_serverRunning = std::move(fetched.running);
    replaceServerEntries(window, std::move(fetched.entries));
    show();
}

/// Takes the server's word for all entries that start in the range.
void Tracker::replaceServerEntries(InstantInterval range, std::vector<TimeEntryResponse> entries)
{
    std::erase_if(m_serverEntries,
                  [&](const TimeEntryResponse &entry) { return range.contains(entry.start); });
    std::unordered_set<std::string> kept;
    kept.reserve(m_serverEntries.size() + entries.size());
    for (const TimeEntryResponse &entry : m_serverEntries)
        kept.insert(entry.id);
    m_serverEntries.reserve(m_serverEntries.size() + entries.size());
    for (TimeEntryResponse &entry : entries) {
        if (kept.insert(entry.id).second)
            m_serverEntries.push_back(std::move(entry));
    }
}

Task<> Tracker::saveSnapshot()
{
    m_isSnapshotStale = false;
    const InstantInterval window = this->window();
    Snapshot snapshot{
        window.from,     {}, m_serverRunning, m_settings, m_catalog.projects(), m_catalog.clients(),
        m_catalog.tags()};
    const auto isInWindow = [&](const TimeEntryResponse &entry) { return window.contains(entry.start); };
    const std::uint64_t entries = digest(m_serverEntries | std::views::filter(isInWindow));
    if (m_saved == snapshot && m_savedEntries == entries)
        co_return;
    m_saved = snapshot;
    m_savedEntries = entries;
    std::ranges::copy_if(m_serverEntries, std::back_inserter(snapshot.entries), isInWindow);
    sortNewestFirst(snapshot.entries);
    const QPointer<Tracker> self(this);
    const auto saved = co_await m_parts.store->save(Snapshot::key(m_parts.workspace.id), std::move(snapshot));
    // A snapshot is a convenience: without it the next start waits for the server. What must not be lost is
    // the outbox's.
    if (self && !saved)
        m_saved.reset();
}

Task<> Tracker::close()
{
    if (m_isSnapshotStale && (m_hasServerState || m_saved))
        co_await saveSnapshot();
    // A snapshot that a pass left under way ends too: the store answers in the order in which it was asked.
    co_await m_parts.store->inspect([](Connection &) { return true; });
}

InstantInterval Tracker::window() const
{
    const DayKey today = m_parts.time.weekStartContaining(m_parts.time.today());
    return {m_parts.time.startOfDay(windowStart()), m_parts.time.startOfDay(today.adding(7))};
}

DayKey Tracker::windowStart() const
{
    return m_parts.time.weekStartContaining(m_parts.time.today()).adding(std::int64_t{-7} * m_weeksLoaded);
}

bool Tracker::isInWindow(DayKey day) const
{
    const DayKey start = windowStart();
    return day >= start && day < start.adding(std::int64_t{7} * (m_weeksLoaded + 1));
}

void Tracker::setState(LoadState state)
{
    m_state = state;
    Q_EMIT stateChanged();
}

// What is shown

void Tracker::show()
{
    m_isShownStale = true;
    Q_EMIT entriesChanged();
}

const std::vector<TimeEntryResponse> &Tracker::entries() const
{
    workOutShown();
    return m_showsServerEntries ? m_serverEntries : m_shown;
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
    m_showsServerEntries = changes.empty() && !isRunningElsewhere();
    if (m_showsServerEntries) {
        m_shown = {};
        sortNewestFirst(m_serverEntries);
        const auto running = std::ranges::find_if(
            m_serverEntries, [](const TimeEntryResponse &entry) { return !entry.stop.has_value(); });
        m_shownRunning = running == m_serverEntries.end() ? std::nullopt : std::optional{*running};
    } else {
        ShownEntries shown = overlay(m_serverEntries, m_serverRunning, changes, m_parts.workspace.id);
        m_shown = std::move(shown.entries);
        m_shownRunning = std::move(shown.running);
    }
}

/// Whether the running entry is none of those that are known, but of another workspace or long ago.
bool Tracker::isRunningElsewhere() const
{
    return m_serverRunning && std::ranges::find(m_serverEntries, m_serverRunning->id,
                                                &TimeEntryResponse::id) == m_serverEntries.end();
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
    std::vector<DayGroup> groups;
    std::vector<Instant> starts;
    groups.reserve(static_cast<std::size_t>(count));
    starts.reserve(static_cast<std::size_t>(count) + 1);
    for (int i = 0; i <= count; ++i)
        starts.push_back(m_parts.time.startOfDay(first.adding(i)));
    for (int i = 0; i < count; ++i)
        groups.push_back({first.adding(i), {}});
    // Shown newest first; a day reads from its morning on.
    for (auto entry = entries().rbegin(); entry != entries().rend(); ++entry) {
        const auto next = std::ranges::upper_bound(starts, entry->start);
        if (next != starts.begin() && next != starts.end())
            groups[static_cast<std::size_t>(next - starts.begin() - 1)].entries.push_back(*entry);
    }
    return groups;
}

EntryRules Tracker::rules() const
{
    const bool isAdmin =
        m_parts.workspace.role == WorkspaceRole::owner || m_parts.workspace.role == WorkspaceRole::admin;
    return EntryRules{m_settings.value_or(WorkspaceSettingsResponse{}), isAdmin};
}

void Tracker::takeServerEntry(const TimeEntryResponse &entry)
{
    ++m_generation;
    m_isSnapshotStale = true;
    m_isShownStale = true;
    const auto known = std::ranges::find(m_serverEntries, entry.id, &TimeEntryResponse::id);
    if (entry.workspaceId != m_parts.workspace.id) {
        if (known != m_serverEntries.end())
            m_serverEntries.erase(known);
    } else if (known != m_serverEntries.end()) {
        *known = entry;
    } else {
        m_serverEntries.push_back(entry);
    }
    if (entry.stop) {
        if (m_serverRunning && m_serverRunning->id == entry.id)
            m_serverRunning.reset();
        return;
    }
    // The server lets one entry run: whatever ran before ended where this one starts.
    for (TimeEntryResponse &other : m_serverEntries) {
        if (other.id != entry.id && !other.stop)
            other.stop = std::max(entry.start, other.start);
    }
    m_serverRunning = entry;
}

void Tracker::dropServerEntry(const std::string &id)
{
    ++m_generation;
    m_isSnapshotStale = true;
    m_isShownStale = true;
    std::erase_if(m_serverEntries, [&](const TimeEntryResponse &known) { return known.id == id; });
    if (m_serverRunning && m_serverRunning->id == id)
        m_serverRunning.reset();
}

void Tracker::handleSent(const Outbox::Pending &row, const std::optional<TimeEntryResponse> &entry)
{
    if (entry) {
        takeServerEntry(*entry);
        return;
    }
    if (std::holds_alternative<EntryChange::Delete>(row.change.action)) {
        dropServerEntry(row.change.entryId());
        return;
    }
    // Another process sent it: shown as it was asked for until the server says how it is.
    const std::vector<EntryChange> change{row.change};
    const ShownEntries after = overlay(m_serverEntries, m_serverRunning, change, m_parts.workspace.id);
    const auto found = std::ranges::find(after.entries, row.change.entryId(), &TimeEntryResponse::id);
    if (found != after.entries.end())
        takeServerEntry(*found);
    refresh(row.change.workspaceId(), row.change.entryId());
}

Task<> Tracker::refresh(std::string workspaceId, std::string id)
{
    const QPointer<Tracker> self(this);
    auto entry = co_await m_parts.api->getTimeEntry(std::move(workspaceId), std::move(id));
    if (!self || !entry)
        co_return;
    takeServerEntry(*entry);
    show();
}

} // namespace orvane
