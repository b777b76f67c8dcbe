// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/StoredStatus.h"

#include "Account/Installation.h"
#include "Account/PreferredTime.h"
#include "Account/ProfileDocument.h"
#include "Account/StoredAccount.h"
#include "Catalog/EntrySeconds.h"
#include "LocalStore/StoreSteps.h"
#include "OrvaneAPI/SchemaFields.h"
#include "Support/JsonImpl.h"
#include "Tracker/Overlay.h"
#include "Tracker/Snapshot.h"

#include <algorithm>
#include <set>

namespace orvane {

namespace {

/// Somebody's bar is drawn while this waits for another process's transaction.
constexpr std::chrono::milliseconds lockPatience{200};

/// What adding up needs of an entry.
struct BriefEntry {
    std::string id;
    Instant start;
    std::optional<Instant> stop;
};

struct BriefProject {
    std::string id;
    std::string name;
};

/// What is read of a snapshot: of thousands of entries the texts are passed over.
struct BriefSnapshot {
    std::vector<BriefEntry> entries;
    std::optional<TimeEntryResponse> running;
    std::vector<BriefProject> projects;
};

} // namespace

template <>
struct JsonFields<BriefEntry> {
    static constexpr auto list =
        JsonFieldList{jsonField<"id">(&BriefEntry::id), jsonField<"start">(&BriefEntry::start),
                      jsonField<"stop">(&BriefEntry::stop)};
};
template <>
struct JsonFields<BriefProject> {
    static constexpr auto list =
        JsonFieldList{jsonField<"id">(&BriefProject::id), jsonField<"name">(&BriefProject::name)};
};
template <>
struct JsonFields<BriefSnapshot> {
    static constexpr auto list = JsonFieldList{jsonField<"entries">(&BriefSnapshot::entries),
                                               jsonField<"running">(&BriefSnapshot::running),
                                               jsonField<"projects">(&BriefSnapshot::projects)};
};

namespace {

/// The entries that today, or a waiting change, is about; the others change nothing.
std::vector<TimeEntryResponse> entriesInQuestion(BriefSnapshot &snapshot,
                                                 const std::vector<EntryChange> &changes,
                                                 InstantInterval today, const std::string &workspaceId)
{
    std::set<std::string_view> changed;
    for (const EntryChange &change : changes)
        changed.insert(change.entryId());
    std::vector<TimeEntryResponse> entries;
    for (BriefEntry &brief : snapshot.entries) {
        const bool isRunning = snapshot.running && snapshot.running->id == brief.id;
        if (isRunning || (!today.contains(brief.start) && brief.stop && !changed.contains(brief.id)))
            continue;
        TimeEntryResponse &entry = entries.emplace_back();
        entry.id = std::move(brief.id);
        entry.workspaceId = workspaceId;
        entry.start = brief.start;
        entry.stop = brief.stop;
    }
    return entries;
}

std::vector<std::string> projectNames(const TimeEntryResponse &entry, const BriefSnapshot &snapshot)
{
    std::vector<std::string> names;
    const auto add = [&](const std::optional<std::string> &id) {
        const auto found = std::ranges::find(snapshot.projects, id.value_or(""), &BriefProject::id);
        if (found != snapshot.projects.end())
            names.push_back(found->name);
    };
    for (const TimeShareResponse &share : entry.shares)
        add(share.projectId);
    if (entry.shares.empty())
        add(entry.projectId);
    return names;
}

StoredStatus statusOf(BriefSnapshot snapshot, const ChangeRows &rows, const std::string &workspaceId,
                      UserTime time, Instant now)
{
    std::vector<EntryChange> changes;
    for (const PendingChange &row : rows)
        changes.push_back(row.change);
    const InstantInterval today = time.dayInterval(time.dayKey(now));
    std::vector<TimeEntryResponse> entries = entriesInQuestion(snapshot, changes, today, workspaceId);
    ShownEntries shown = overlay(std::move(entries), snapshot.running, changes, workspaceId);
    StoredStatus status{.time = std::move(time),
                        .running = std::move(shown.running),
                        .waiting = static_cast<std::int64_t>(rows.size())};
    if (status.running) {
        status.projects = projectNames(*status.running, snapshot);
        status.elapsed = entrySeconds(*status.running, now);
    }
    std::erase_if(shown.entries, [&](const auto &entry) { return !today.contains(entry.start); });
    status.today = entrySeconds(shown.entries, now);
    return status;
}

} // namespace

std::optional<StoredStatus> StoredStatus::read(const Installation &installation, const Place &place,
                                               Instant now)
{
    const auto account = StoredAccount::find(installation, place.server);
    if (!account)
        return std::nullopt;
    const auto store = Connection::open(account->storePath, {.busyTimeout = lockPatience});
    if (!store)
        return std::nullopt;
    StoreSteps steps(**store);
    std::optional<ProfileDocument> profile;
    steps.read(ProfileDocument::key, profile);
    const auto usedLast = installation.workspace(account->server, account->id);
    const WorkspaceSummary *workspace =
        profile ? workspaceInUse(profile->me, place.workspace, usedLast) : nullptr;
    if (workspace == nullptr)
        return std::nullopt;
    std::optional<BriefSnapshot> snapshot;
    ChangeRows rows;
    steps.read(Snapshot::key(workspace->id), snapshot).readRows(0, rows);
    if (!steps || !snapshot)
        return std::nullopt;
    return statusOf(*std::move(snapshot), rows, workspace->id, preferredTime(profile->me, place.zone).time,
                    now);
}

} // namespace orvane

ORVANE_JSON(orvane::BriefSnapshot)
