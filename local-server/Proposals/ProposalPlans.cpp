// SPDX-License-Identifier: GPL-3.0-or-later
#include "Proposals/ProposalPlans.h"

#include "Entries/EntryAccess.h"
#include "Projects/ProjectRecords.h"
#include "Proposals/ProposalRecords.h"
#include "Proposals/ProposedEntryCheck.h"
#include "Requests/Call.h"

#include <algorithm>

namespace orvane::server {

namespace {

bool isBillableProject(Call &call, const WorkspaceAccess &workspace,
                       const std::optional<std::string> &projectId)
{
    const auto project =
        projectId ? ProjectRecords(call.database).find(workspace.id(), *projectId) : std::nullopt;
    return project && project->isBillable;
}

/// Who does not say whether work is billed means: as its project is.
std::vector<TimeShareResponse> sharesOf(Call &call, const WorkspaceAccess &workspace,
                                        const std::vector<ProposedPartRequest> &parts)
{
    std::vector<TimeShareResponse> shares;
    shares.reserve(parts.size());
    for (const ProposedPartRequest &part : parts)
        shares.push_back(
            {part.projectId, part.taskId,
             part.isBillable ? *part.isBillable : isBillableProject(call, workspace, part.projectId),
             part.percent, part.description.value_or("")});
    return shares;
}

std::vector<std::string> eachOnce(const std::vector<std::string> &ids)
{
    std::vector<std::string> once;
    for (const std::string &id : ids) {
        if (std::ranges::find(once, id) == once.end())
            once.push_back(id);
    }
    return once;
}

ProposedWorkResponse workOf(Call &call, const WorkspaceAccess &workspace, const ProposedEntryRequest &request)
{
    ProposedWorkResponse work;
    work.range = {millisecondsFloor(request.start), millisecondsFloor(request.stop)};
    work.description = request.description;
    work.projectId = request.projectId;
    work.taskId = request.taskId;
    work.tagIds = eachOnce(request.tagIds);
    work.isBillable =
        request.isBillable ? *request.isBillable : isBillableProject(call, workspace, request.projectId);
    work.shares = sharesOf(call, workspace, request.parts);
    return work;
}

ProposedEntrySnapshotResponse snapshotOf(const TimeEntryResponse &entry)
{
    ProposedEntrySnapshotResponse snapshot;
    snapshot.id = entry.id;
    snapshot.version = entry.version;
    snapshot.description = entry.description;
    snapshot.projectId = entry.projectId;
    snapshot.taskId = entry.taskId;
    snapshot.tagIds = entry.tagIds;
    snapshot.isBillable = entry.isBillable;
    snapshot.start = entry.start;
    snapshot.stop = entry.stop;
    snapshot.shares = entry.shares;
    return snapshot;
}

bool isBilledAs(const TimeEntryResponse &entry, bool isBillable)
{
    return entry.isBillable == isBillable &&
           std::ranges::all_of(entry.shares, [isBillable](const TimeShareResponse &share) {
               return share.isBillable == isBillable;
           });
}

/// The tags that the entry would have. Those of a request that does not replace them join the entry's.
std::vector<std::string> tagsAfter(const ProposedChangeRequest &request, const TimeEntryResponse &entry)
{
    std::vector<std::string> ids = request.replaceTags ? std::vector<std::string>() : entry.tagIds;
    const auto asked = request.tagIds.value_or(std::vector<std::string>());
    ids.insert(ids.end(), asked.begin(), asked.end());
    return eachOnce(ids);
}

/// What a request asks for beyond what the entry has.
ProposedFieldsResponse fieldsOf(Call &call, const WorkspaceAccess &workspace,
                                const ProposedChangeRequest &request, const TimeEntryResponse &entry)
{
    ProposedFieldsResponse fields;
    if (request.description != entry.description)
        fields.description = request.description;
    const ProjectChoice present{entry.projectId, entry.taskId};
    // Putting a split entry on one project ends the split, so there that says something even when the entry
    // names the project already.
    if (request.project && (*request.project != present || !entry.shares.empty()))
        fields.project = request.project;
    auto tags = tagsAfter(request, entry);
    if (tags != entry.tagIds) {
        fields.replaceTags = true;
        fields.tagIds = std::move(tags);
    }
    if (request.isBillable && !isBilledAs(entry, *request.isBillable))
        fields.isBillable = request.isBillable;
    if (request.start && millisecondsFloor(*request.start) != entry.start)
        fields.start = millisecondsFloor(*request.start);
    if (request.stop && millisecondsFloor(*request.stop) != entry.stop)
        fields.stop = millisecondsFloor(*request.stop);
    if (request.parts) {
        auto shares = sharesOf(call, workspace, *request.parts);
        if (shares != entry.shares || fields.project)
            fields.shares = std::move(shares);
    }
    return fields;
}

void setShares(EntryRecord &record, const std::vector<TimeShareResponse> &shares)
{
    record.entry.shares = shares;
    record.describeParts =
        std::ranges::any_of(shares, [](const auto &share) { return !share.description.empty(); });
}

ProposalPlanResponse changePlan(const TimeEntryResponse &entry, ProposedFieldsResponse fields)
{
    ProposalPlanResponse plan;
    plan.action = fields.remove ? removeAction : updateAction;
    plan.before = snapshotOf(entry);
    plan.changes = std::move(fields);
    return plan;
}

ProposalPlan removalOf(const WorkspaceAccess &workspace, const EntryRecord &record)
{
    if (changesLockedTime(workspace, &record.entry, nullptr))
        return failure(proposalRefusal("locked", "The workspace no longer allows changes to this time."));
    ProposedFieldsResponse fields;
    fields.remove = true;
    return changePlan(record.entry, std::move(fields));
}

} // namespace

ProposalPlan planOf(Call &call, const WorkspaceAccess &workspace, const ProposedEntryRequest &request)
{
    ProposalPlanResponse plan;
    plan.action = createAction;
    plan.work = workOf(call, workspace, request);
    EntryRecord record;
    record.userId = call.caller.userId;
    record.entry.workspaceId = workspace.id();
    takeWork(record, *plan.work);
    if (auto refusal = proposedEntryRefusal(call, workspace, std::nullopt, record))
        return failure(std::move(*refusal));
    return plan;
}

ProposalPlan planOf(Call &call, const WorkspaceAccess &workspace, const ProposedChangeRequest &request)
{
    const auto before = findEntry(call, workspace, request.entryId);
    if (!before)
        return failure(proposalRefusal("unknownEntry", "There is no such time entry."));
    if (before->entry.version != request.version)
        return failure(proposalRefusal("versionChanged",
                                       "The entry has changed since you read it; read it again first."));
    if (request.remove)
        return removalOf(workspace, *before);
    ProposedFieldsResponse fields = fieldsOf(call, workspace, request, before->entry);
    EntryRecord after = *before;
    takeFields(after, fields);
    if (after.entry == before->entry)
        return failure(proposalRefusal("nothingToChange", "The entry is like this already."));
    if (auto refusal = proposedEntryRefusal(call, workspace, *before, after))
        return failure(std::move(*refusal));
    return changePlan(before->entry, std::move(fields));
}

void takeWork(EntryRecord &record, const ProposedWorkResponse &work)
{
    TimeEntryResponse &entry = record.entry;
    entry.description = work.description;
    entry.projectId = work.projectId;
    entry.taskId = work.taskId;
    entry.tagIds = work.tagIds;
    entry.isBillable = work.isBillable;
    entry.start = work.range.start;
    entry.stop = work.range.end;
    setShares(record, work.shares);
}

void takeFields(EntryRecord &record, const ProposedFieldsResponse &fields)
{
    TimeEntryResponse &entry = record.entry;
    if (fields.description)
        entry.description = *fields.description;
    if (fields.project) {
        entry.projectId = fields.project->projectId;
        entry.taskId = fields.project->taskId;
        // An entry put on one project is not split between several any more.
        entry.shares.clear();
    }
    if (fields.replaceTags)
        entry.tagIds = fields.tagIds.value_or(std::vector<std::string>());
    if (fields.isBillable) {
        entry.isBillable = *fields.isBillable;
        for (TimeShareResponse &share : entry.shares)
            share.isBillable = *fields.isBillable;
    }
    if (fields.start)
        entry.start = *fields.start;
    if (fields.stop)
        entry.stop = *fields.stop;
    if (fields.shares)
        setShares(record, *fields.shares);
}

void takeSnapshot(EntryRecord &record, const ProposedEntrySnapshotResponse &snapshot)
{
    TimeEntryResponse &entry = record.entry;
    entry.description = snapshot.description;
    entry.projectId = snapshot.projectId;
    entry.taskId = snapshot.taskId;
    entry.tagIds = snapshot.tagIds;
    entry.isBillable = snapshot.isBillable;
    entry.start = snapshot.start;
    entry.stop = snapshot.stop;
    entry.shares = snapshot.shares;
}

} // namespace orvane::server
