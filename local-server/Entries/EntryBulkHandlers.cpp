// SPDX-License-Identifier: GPL-3.0-or-later
#include "Entries/EntryAccess.h"
#include "Http/Problems.h"
#include "Requests/Router.h"

#include <algorithm>
#include <set>

namespace orvane::server {

namespace {

void setProject(TimeEntryResponse &entry, const ProjectChoice &choice)
{
    entry.projectId = choice.projectId;
    entry.taskId = choice.taskId;
    // An entry put on one project is not split between several any more.
    entry.shares.clear();
}

void setBillable(TimeEntryResponse &entry, bool isBillable)
{
    entry.isBillable = isBillable;
    for (TimeShareResponse &share : entry.shares)
        share.isBillable = isBillable;
}

void apply(TimeEntryResponse &entry, const BulkUpdateTimeEntriesRequest &changes)
{
    if (changes.description)
        entry.description = *changes.description;
    if (changes.project)
        setProject(entry, *changes.project);
    if (changes.isBillable)
        setBillable(entry, *changes.isBillable);
    for (const std::string &tagId : changes.addTagIds) {
        if (std::ranges::find(entry.tagIds, tagId) == entry.tagIds.end())
            entry.tagIds.push_back(tagId);
    }
    for (const std::string &tagId : changes.removeTagIds)
        std::erase(entry.tagIds, tagId);
}

/// All of them or, when one cannot be changed, none.
HttpResponse bulkUpdate(Call &call, const WorkspaceAccess &workspace,
                        const operations::BulkUpdateTimeEntries::Input &input)
{
    std::vector<TimeEntryResponse> changed;
    std::set<std::string> seen;
    for (const std::string &id : input.body.ids) {
        if (!seen.insert(id).second)
            continue;
        const auto before = findEntry(call, workspace, id);
        if (!before)
            return before.error();
        EntryRecord after = *before;
        apply(after.entry, input.body);
        auto kept = keepEntry(call, workspace, *before, std::move(after));
        if (!kept)
            return kept.error();
        changed.push_back(std::move(*kept));
    }
    return jsonAnswer(200, changed);
}

/// What is not there (any more) is passed over, so that a request delivered twice does no harm.
HttpResponse bulkDelete(Call &call, const WorkspaceAccess &workspace,
                        const operations::BulkDeleteTimeEntries::Input &input)
{
    for (const std::string &id : input.body.ids) {
        const auto found = findEntry(call, workspace, id);
        if (!found)
            continue;
        if (auto removed = removeEntry(call, workspace, *found); !removed)
            return std::move(removed.error());
    }
    return noBody(204);
}

} // namespace

void addEntryBulkHandlers(Router &router)
{
    router.add<operations::BulkUpdateTimeEntries>(bulkUpdate);
    router.add<operations::BulkDeleteTimeEntries>(bulkDelete);
}

} // namespace orvane::server
