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
    // What finds a finished entry that would be left without the detail, by the rules of EntryChecks; empty:
    // none would.
    std::string_view lastProject = {};
    std::string_view lastTask = {};
    std::string_view lastTag = {};
};

// The project and task of a split entry count nowhere, those of its shares do.
#define ORVANE_FINISHED_WITH(reference, detail)                                                              \
    "SELECT 1 FROM time_entries e WHERE e." reference " = ? AND e." detail " IS NOT NULL AND e.stop_at IS "  \
    "NOT NULL AND NOT EXISTS (SELECT 1 FROM entry_shares s WHERE s.entry_id = e.id) UNION ALL SELECT 1 "     \
    "FROM entry_shares s JOIN time_entries e ON e.id = s.entry_id WHERE s." reference " = ? AND s." detail   \
    " IS NOT NULL AND e.stop_at IS NOT NULL"

const ReferenceSql &sqlFor(EntryReference kind)
{
    static const ReferenceSql project{
        "SELECT id FROM time_entries WHERE project_id = ? UNION SELECT entry_id FROM entry_shares "
        "WHERE project_id = ?",
        "SELECT 1 FROM time_entries WHERE start_at < ? AND id IN (SELECT id FROM time_entries WHERE "
        "project_id = ? UNION SELECT entry_id FROM entry_shares WHERE project_id = ?)",
        {"UPDATE time_entries SET project_id = NULL, task_id = NULL WHERE project_id = ?",
         "UPDATE entry_shares SET project_id = NULL, task_id = NULL WHERE project_id = ?"},
        ORVANE_FINISHED_WITH("project_id", "project_id"),
        ORVANE_FINISHED_WITH("project_id", "task_id")};
    static const ReferenceSql task{
        "SELECT id FROM time_entries WHERE task_id = ? UNION SELECT entry_id FROM entry_shares "
        "WHERE task_id = ?",
        "SELECT 1 FROM time_entries WHERE start_at < ? AND id IN (SELECT id FROM time_entries WHERE "
        "task_id = ? UNION SELECT entry_id FROM entry_shares WHERE task_id = ?)",
        {"UPDATE time_entries SET task_id = NULL WHERE task_id = ?",
         "UPDATE entry_shares SET task_id = NULL WHERE task_id = ?"},
        {},
        ORVANE_FINISHED_WITH("task_id", "task_id")};
    static const ReferenceSql tag{
        "SELECT entry_id FROM entry_tags WHERE tag_id = ? UNION SELECT entry_id FROM entry_tags "
        "WHERE tag_id = ?",
        "SELECT 1 FROM time_entries WHERE start_at < ? AND id IN (SELECT entry_id FROM entry_tags WHERE "
        "tag_id = ? UNION SELECT entry_id FROM entry_tags WHERE tag_id = ?)",
        {"DELETE FROM entry_tags WHERE tag_id = ?"},
        {},
        {},
        "SELECT 1 FROM entry_tags t JOIN time_entries e ON e.id = t.entry_id WHERE t.tag_id = ? AND "
        "e.stop_at "
        "IS NOT NULL AND NOT EXISTS (SELECT 1 FROM entry_tags o WHERE o.entry_id = e.id AND o.tag_id <> ?)"};
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

HttpResponse detailRequired(const std::string &detail)
{
    const std::string way = detail == "project" ? "Archive it instead, or put them on another project first."
                            : detail == "task"
                                ? "Make it inactive instead, or put them on another task first."
                                : "Give them another tag first.";
    return problem(403, "Finished entries would lose the " + detail + " that this workspace requires.", way,
                   detailRequiredProblemType);
}

/// The refusal when the workspace requires what a finished entry would lose.
std::optional<HttpResponse> refusedLoss(Call &call, const WorkspaceSettingsResponse &settings,
                                        const ReferenceSql &sql, const std::string &id)
{
    const auto isLost = [&](bool isRequired, std::string_view last) {
        return isRequired && !last.empty() && call.database.exists(last, id, id);
    };
    if (isLost(settings.requireProject, sql.lastProject))
        return detailRequired("project");
    if (isLost(settings.requireTask, sql.lastTask))
        return detailRequired("task");
    if (isLost(settings.requireTag, sql.lastTag))
        return detailRequired("tag");
    return std::nullopt;
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
    if (auto refusal = refusedLoss(call, workspace.settings(), sql, id))
        return refusal;
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
