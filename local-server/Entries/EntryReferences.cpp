// SPDX-License-Identifier: GPL-3.0-or-later
#include "Entries/EntryReferences.h"

#include "Entries/EntryRecords.h"
#include "Http/Problems.h"
#include "Requests/Call.h"

#include <vector>

namespace orvane::server {

namespace {

/// What finds and clears each kind of reference. `users` names its parameter twice: once for entries, once
/// for their shares.
struct ReferenceSql {
    std::string_view users;
    std::string_view usedBefore;
    std::vector<std::string_view> clearings;
};

const ReferenceSql &sqlFor(EntryReference kind)
{
    static const ReferenceSql project{
        "SELECT id FROM time_entries WHERE project_id = ? UNION SELECT entry_id FROM entry_shares "
        "WHERE project_id = ?",
        "SELECT 1 FROM time_entries WHERE start_at < ? AND id IN (SELECT id FROM time_entries WHERE "
        "project_id = ? UNION SELECT entry_id FROM entry_shares WHERE project_id = ?)",
        {"UPDATE time_entries SET project_id = NULL, task_id = NULL WHERE project_id = ?",
         "UPDATE entry_shares SET project_id = NULL, task_id = NULL WHERE project_id = ?"}};
    static const ReferenceSql task{
        "SELECT id FROM time_entries WHERE task_id = ? UNION SELECT entry_id FROM entry_shares "
        "WHERE task_id = ?",
        "SELECT 1 FROM time_entries WHERE start_at < ? AND id IN (SELECT id FROM time_entries WHERE "
        "task_id = ? UNION SELECT entry_id FROM entry_shares WHERE task_id = ?)",
        {"UPDATE time_entries SET task_id = NULL WHERE task_id = ?",
         "UPDATE entry_shares SET task_id = NULL WHERE task_id = ?"}};
    static const ReferenceSql tag{
        "SELECT entry_id FROM entry_tags WHERE tag_id = ? UNION SELECT entry_id FROM entry_tags "
        "WHERE tag_id = ?",
        "SELECT 1 FROM time_entries WHERE start_at < ? AND id IN (SELECT entry_id FROM entry_tags WHERE "
        "tag_id = ? UNION SELECT entry_id FROM entry_tags WHERE tag_id = ?)",
        {"DELETE FROM entry_tags WHERE tag_id = ?"}};
    switch (kind) {
    case EntryReference::project:
        return project;
    case EntryReference::task:
        return task;
    case EntryReference::tag:
        return tag;
    }
    return project;
}

} // namespace

std::optional<HttpResponse> releaseReferences(Call &call, const WorkspaceAccess &workspace,
                                              EntryReference kind, const std::string &id)
{
    const ReferenceSql &sql = sqlFor(kind);
    const auto &lockedBefore = workspace.settings().lockedBefore;
    if (lockedBefore && call.database.exists(sql.usedBefore, *lockedBefore, id, id))
        return problem(403, "This is in use in locked time.", "Locked time keeps its details.",
                       timeLockedProblemType);
    const auto users = call.database.rows(sql.users, [](const SqlRow &row) { return row.text(0); }, id, id);
    for (const auto clearing : sql.clearings)
        call.database.run(clearing, id);
    EntryRecords entries(call.database);
    for (const std::string &entryId : users)
        entries.renewVersion(entryId);
    if (!users.empty())
        call.changedInWorkspace(ChangeTopic::timeEntries, workspace.id());
    return std::nullopt;
}

} // namespace orvane::server
