// SPDX-License-Identifier: GPL-3.0-or-later
#include "Proposals/ProposalSettling.h"

#include "Entries/EntryAccess.h"
#include "Http/Problems.h"
#include "Proposals/ProposalPlans.h"
#include "Proposals/ProposedEntryCheck.h"
#include "Requests/Call.h"
#include "Security/RandomText.h"

namespace orvane::server {

namespace {

using Kept = Result<TimeEntryResponse, HttpResponse>;

std::optional<HttpResponse> refusedContents(Call &call, const WorkspaceAccess &workspace,
                                            const EntryRecord &record)
{
    auto faults = entryFaults(call, workspace, record);
    if (faults.empty())
        return std::nullopt;
    return invalid(400, std::move(faults));
}

HttpResponse cannotBeApplied(std::string why)
{
    return problem(409, "This can't be applied any more.", std::move(why));
}

HttpResponse cannotBeTakenBack(std::string why)
{
    return problem(409, "This can't be taken back.", std::move(why));
}

/// The entry of a proposal, provided that it is still of that version; else what happened to it "since ...".
Result<EntryRecord, std::string> entryAsOf(Call &call, const WorkspaceAccess &workspace,
                                           const std::string &entryId, const std::string &version,
                                           const std::string &since)
{
    auto found = findEntry(call, workspace, entryId);
    if (!found)
        return failure("The entry was deleted since " + since + ".");
    if (found->entry.version != version)
        return failure("The entry has changed since " + since + ".");
    return std::move(*found);
}

Kept createEntry(Call &call, const WorkspaceAccess &workspace, ProposalRecord &record)
{
    EntryRecord entry;
    entry.userId = call.caller.userId;
    entry.entry.id = newIdentifier();
    entry.entry.workspaceId = workspace.id();
    takeWork(entry, *record.shown.plan.work);
    if (auto refusal = refusedContents(call, workspace, entry))
        return failure(std::move(*refusal));
    // Time that was tracked since it was proposed would count twice.
    const auto refusal = proposedEntryRefusal(call, workspace, std::nullopt, entry);
    if (refusal && refusal->code == overlapRefusal)
        return failure(cannotBeApplied(refusal->detail));
    auto added = addEntry(call, workspace, std::move(entry));
    if (added)
        record.shown.entryId = added->id;
    return added;
}

Kept changeEntry(Call &call, const WorkspaceAccess &workspace, ProposalRecord &record,
                 const EntryRecord &before)
{
    EntryRecord after = before;
    takeFields(after, *record.shown.plan.changes);
    if (auto refusal = refusedContents(call, workspace, after))
        return failure(std::move(*refusal));
    return keepEntry(call, workspace, before, std::move(after));
}

Result<std::vector<TimeEntryResponse>, HttpResponse> carryOut(Call &call, const WorkspaceAccess &workspace,
                                                              ProposalRecord &record)
{
    const ProposalPlanResponse &plan = record.shown.plan;
    if (plan.action == createAction && plan.work) {
        auto made = createEntry(call, workspace, record);
        if (!made)
            return failure(std::move(made.error()));
        record.undoVersion = made->version;
        return std::vector{std::move(*made)};
    }
    if (!plan.before || !plan.changes)
        return failure(cannotBeApplied("It does not say what to change."));
    const auto before =
        entryAsOf(call, workspace, plan.before->id, plan.before->version, "this was proposed");
    if (!before)
        return failure(cannotBeApplied(before.error()));
    record.undoDescribeParts = before->describeParts;
    record.undoCreationDigest = before->creationDigest;
    if (plan.action == removeAction) {
        if (auto removed = removeEntry(call, workspace, *before); !removed)
            return failure(std::move(removed.error()));
        return std::vector<TimeEntryResponse>();
    }
    auto changed = changeEntry(call, workspace, record, *before);
    if (!changed)
        return failure(std::move(changed.error()));
    record.undoVersion = changed->version;
    return std::vector{std::move(*changed)};
}

void settle(Call &call, const WorkspaceAccess &workspace, ProposalRecord &record, std::string_view status)
{
    record.shown.status = status;
    record.shown.resolvedAt = call.now;
    ProposalRecords(call.database).update(record);
    call.changedForCaller(ChangeTopic::proposals, workspace.id());
}

HttpResponse settledAlready(const ProposalRecord &record)
{
    return problem(409, "This proposal no longer waits.",
                   record.is(withdrawnProposal) ? "The agent has withdrawn it."
                                                : "It was settled before; open it again first.");
}

// Taking an applied one back

/// The entry as it stood before a proposal changed or deleted it.
EntryRecord entryBefore(const ProposalRecord &record)
{
    EntryRecord entry;
    entry.userId = record.userId;
    entry.describeParts = record.undoDescribeParts;
    entry.creationDigest = record.undoCreationDigest;
    entry.entry.id = record.shown.plan.before->id;
    entry.entry.workspaceId = record.shown.workspaceId;
    takeSnapshot(entry, *record.shown.plan.before);
    return entry;
}

/// What keeps an entry from being as it was: a project that is gone since, or another timer that runs, which
/// nobody asked to stop.
std::optional<HttpResponse> refusedReturn(Call &call, const WorkspaceAccess &workspace,
                                          const EntryRecord &entry)
{
    const auto faults = entryFaults(call, workspace, entry);
    if (!faults.empty())
        return cannotBeTakenBack("The entry can't be as it was before. " + faults.begin()->second.front());
    if (entry.entry.stop)
        return std::nullopt;
    const auto running = EntryRecords(call.database).running(call.caller.userId);
    if (running && running->entry.id != entry.entry.id)
        return cannotBeTakenBack("The entry ran before, and another one runs now.");
    return std::nullopt;
}

Kept bringBack(Call &call, const WorkspaceAccess &workspace, const ProposalRecord &record)
{
    EntryRecord entry = entryBefore(record);
    EntryRecords entries(call.database);
    if (entries.find(entry.entry.id))
        return failure(cannotBeTakenBack("The entry is there again."));
    if (auto refusal = refusedReturn(call, workspace, entry))
        return failure(std::move(*refusal));
    entries.forgetRemoval(entry.entry.id);
    return addEntry(call, workspace, std::move(entry));
}

Kept changeBack(Call &call, const WorkspaceAccess &workspace, const ProposalRecord &record,
                const EntryRecord &present)
{
    EntryRecord entry = entryBefore(record);
    entry.entry.version = present.entry.version;
    if (auto refusal = refusedReturn(call, workspace, entry))
        return failure(std::move(*refusal));
    return keepEntry(call, workspace, present, std::move(entry));
}

Result<void, HttpResponse> takeBack(Call &call, const WorkspaceAccess &workspace, ProposalRecord &record)
{
    const std::string &action = record.shown.plan.action;
    Kept back;
    if (action == removeAction) {
        back = bringBack(call, workspace, record);
    } else {
        const auto present = entryAsOf(call, workspace, record.shown.entryId.value_or(""),
                                       record.undoVersion.value_or(""), "this was applied");
        if (!present)
            return failure(cannotBeTakenBack(present.error()));
        if (action == createAction)
            return removeEntry(call, workspace, *present);
        back = changeBack(call, workspace, record, *present);
    }
    if (!back)
        return failure(std::move(back.error()));
    // The entry is as the plan found it, under a version of its own.
    record.shown.plan.before->version = back->version;
    return {};
}

} // namespace

Result<std::vector<TimeEntryResponse>, HttpResponse>
applyProposal(Call &call, const WorkspaceAccess &workspace, ProposalRecord &record)
{
    if (record.is(appliedProposal)) {
        const auto entry = findEntry(call, workspace, record.shown.entryId.value_or(""));
        return entry ? std::vector{entry->entry} : std::vector<TimeEntryResponse>();
    }
    if (!record.is(pendingProposal))
        return failure(settledAlready(record));
    auto entries = carryOut(call, workspace, record);
    if (entries)
        settle(call, workspace, record, appliedProposal);
    return entries;
}

Result<void, HttpResponse> resolveProposal(Call &call, const WorkspaceAccess &workspace,
                                           ProposalRecord &record, const ResolveAgentProposalRequest &request)
{
    if (record.is(request.resolution))
        return {};
    if (!record.is(pendingProposal))
        return failure(settledAlready(record));
    for (const std::string &entryId : request.entryIds) {
        if (!findEntry(call, workspace, entryId))
            return failure(invalid(400, {{"entryIds", {"There is no such time entry."}}}));
    }
    if (!record.shown.entryId && !request.entryIds.empty())
        record.shown.entryId = request.entryIds.front();
    record.answerNote = request.note;
    settle(call, workspace, record, request.resolution);
    return {};
}

Result<void, HttpResponse> reopenProposal(Call &call, const WorkspaceAccess &workspace,
                                          ProposalRecord &record)
{
    if (record.is(pendingProposal))
        return {};
    if (record.is(withdrawnProposal))
        return failure(settledAlready(record));
    if (record.is(appliedProposal)) {
        if (auto taken = takeBack(call, workspace, record); !taken)
            return taken;
    }
    ProposalPlanResponse &plan = record.shown.plan;
    record.shown.entryId = plan.before ? std::optional(plan.before->id) : std::nullopt;
    record.shown.status = pendingProposal;
    record.shown.resolvedAt.reset();
    record.answerNote.reset();
    record.undoVersion.reset();
    ProposalRecords(call.database).update(record);
    call.changedForCaller(ChangeTopic::proposals, workspace.id());
    return {};
}

} // namespace orvane::server
