// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentEntry.h"
#include "Agents/ProposalShapes.h"
#include "Agents/ToolMaking.h"
#include "OrvaneAPI/SchemaChecks.h"
#include "OrvaneAPI/SchemaFields.h"
#include "Proposals/ProposalRecords.h"
#include "Proposals/Proposing.h"

namespace orvane::server {

namespace {

constexpr std::size_t mostListedProposals = 500;
constexpr std::chrono::days settledListed{30};

constexpr MemberNote proposalNotes[] = {
    {"workspaceId", "From list_workspaces; left out, the user's default workspace."},
    {"entries", "Up to 100 at a time."},
    {"changes", "Up to 100 at a time."},
    {"note", "Why, in a sentence for the user; for every item that gives no reason of its own."},
    {"reason", "Why, in a sentence for the user: what the proposal rests on."},
    {"reference", "Any name of your own for the item; the outcome repeats it."},
    {"start", "With its offset from UTC, such as 2026-03-01T09:30:00+01:00."},
    {"stop", "With its offset from UTC, after start and not in the future."},
    {"description", "What was done, as the user would write it in a line."},
    {"projectId", "From list_projects."},
    {"taskId", "A task of that project, from list_projects."},
    {"project", "Where the entry goes; an empty object takes it off its project."},
    {"tagIds", "From list_tags. In a change they replace the entry's tags."},
    {"isBillable", "Left out, as the project has it."},
    {"parts", "Splits the entry between projects, instead of projectId; the percents come to 100."},
    {"percent", "A whole number from 1 to 100."},
    {"entryId", "The entry's id, from list_entries."},
    {"version",
     "The entry's version, from list_entries; a change of an entry that was changed since is refused."},
    {"remove", "Proposes to delete the entry; nothing else is read then."},
};

constexpr MemberNote ownNotes[] = {
    {"workspaceId", "From list_workspaces; left out, the user's default workspace."},
    {"ids", "The proposalIds, up to 100."},
    {"status", "Only those; left out, all."},
};

/// The API document's rules on what is proposed, as a sentence when one is broken.
template <class Request>
std::optional<std::string> brokenRule(const Request &request)
{
    Checks checks;
    check(request, checks);
    const FieldErrors errors = checks.takeErrors();
    if (errors.empty())
        return std::nullopt;
    const auto &[path, sentences] = *errors.begin();
    return "The argument " + path + ": " + (sentences.empty() ? "" : sentences.front());
}

ToolOutcomes toldOutcomes(std::vector<ProposalOutcomeResponse> outcomes)
{
    ToolOutcomes out;
    for (ProposalOutcomeResponse &outcome : outcomes) {
        ToolOutcome &told = out.outcomes.emplace_back();
        told.index = static_cast<std::int64_t>(out.outcomes.size()) - 1;
        told.reference = std::move(outcome.reference);
        if (outcome.proposal)
            told.proposalId = std::move(outcome.proposal->id);
        told.refusal = std::move(outcome.refusal);
        ++(told.refusal ? out.refused : out.waiting);
    }
    return out;
}

template <class Request>
Result<ToolOutcomes, std::string> proposeAll(AgentCall &agent, const std::optional<std::string> &workspaceId,
                                             const Request &request)
{
    if (auto fault = brokenRule(request))
        return failure(std::move(*fault));
    const auto workspace = enterWorkspace(agent, workspaceId);
    if (!workspace)
        return failure(workspace.error());
    auto outcomes = propose(agent.call, *workspace, agent.access.agentName, request);
    if (!outcomes)
        return failure(refusalSentence(outcomes.error()));
    return toldOutcomes(std::move(*outcomes));
}

Result<ToolOutcomes, std::string> proposeNewEntries(AgentCall &agent, const EntriesToPropose &arguments)
{
    return proposeAll(agent, arguments.workspaceId, ProposeEntriesRequest{arguments.entries, arguments.note});
}

ProposedChangeRequest asRequest(const ChangeToPropose &change)
{
    ProposedChangeRequest request;
    request.reference = change.reference;
    request.entryId = change.entryId;
    request.version = change.version;
    request.remove = change.remove.value_or(false);
    request.description = change.description;
    request.project = change.project;
    request.replaceTags = change.tagIds.has_value();
    request.tagIds = change.tagIds;
    request.isBillable = change.isBillable;
    request.start = change.start;
    request.stop = change.stop;
    request.parts = change.parts;
    request.reason = change.reason;
    return request;
}

Result<ToolOutcomes, std::string> proposeEntryChanges(AgentCall &agent, const ChangesToPropose &arguments)
{
    ProposeChangesRequest request;
    for (const ChangeToPropose &change : arguments.changes)
        request.changes.push_back(asRequest(change));
    request.note = arguments.note;
    return proposeAll(agent, arguments.workspaceId, request);
}

Result<WithdrawnProposals, std::string> withdrawOwn(AgentCall &agent, const ProposalsToWithdraw &arguments)
{
    if (auto fault = brokenRule(WithdrawAgentProposalsRequest{arguments.ids}))
        return failure(std::move(*fault));
    const auto workspace = enterWorkspace(agent, arguments.workspaceId);
    if (!workspace)
        return failure(workspace.error());
    WithdrawnProposals out{withdrawProposals(agent.call, *workspace, agent.access.agentName, arguments.ids),
                           {}};
    if (out.withdrawnIds.size() < arguments.ids.size())
        out.notice = "What is answered already, or is none of yours, stays as it is. See list_proposals.";
    return out;
}

OwnProposal describedProposal(AgentProposalResponse &proposal, const UserZone &zone)
{
    const auto &[action, work, before, changes] = proposal.plan;
    OwnProposal out;
    out.id = std::move(proposal.id);
    out.action = action;
    out.status = std::move(proposal.status);
    out.proposedAt = zone.time(proposal.createdAt);
    if (proposal.resolvedAt)
        out.answeredAt = zone.time(*proposal.resolvedAt);
    out.entryId = std::move(proposal.entryId);
    if (work) {
        out.description = work->description;
        out.start = zone.time(work->range.start);
        out.stop = zone.time(work->range.end);
    } else if (before) {
        out.description = before->description;
        out.start = zone.time(before->start);
        if (before->stop)
            out.stop = zone.time(*before->stop);
    }
    if (!proposal.note.empty())
        out.note = std::move(proposal.note);
    return out;
}

Result<OwnProposals, std::string> listOwnProposals(AgentCall &agent, const ProposalQuestion &question)
{
    const auto workspace = enterWorkspace(agent, question.workspaceId);
    if (!workspace)
        return failure(workspace.error());
    const UserZone zone = zoneOf(agent.call);
    const std::string name = shownAgentName(agent.access.agentName);
    OwnProposals out;
    for (ProposalRecord &record :
         ProposalRecords(agent.call.database)
             .list(agent.call.caller.userId, workspace->id(), agent.call.now - settledListed)) {
        if (record.shown.agentName != name || (question.status && !record.is(jsonText(*question.status))))
            continue;
        if (out.proposals.size() == mostListedProposals) {
            out.notice = "Only the newest " + std::to_string(mostListedProposals) +
                         " are listed. Ask for one status at a time.";
            break;
        }
        out.proposals.push_back(describedProposal(record.shown, zone));
    }
    return out;
}

} // namespace

void addProposalTools(std::vector<AgentTool> &tools)
{
    tools.push_back(
        agentTool({.name = "propose_entries",
                   .title = "Propose Entries",
                   .description =
                       "Proposes new entries for time that nobody tracked. They wait until the user applies "
                       "or dismisses them: nothing is tracked by this. Propose only what you have grounds "
                       "for, and say them as the reason. Look at list_entries first; what overlaps a tracked "
                       "time is refused. Each item has an outcome of its own: a proposalId, or a refusal "
                       "that says what to mend.",
                   .lane = Lane::writing,
                   .isIdempotent = false,
                   .notes = proposalNotes},
                  proposeNewEntries));
    tools.push_back(agentTool(
        {.name = "propose_changes",
         .title = "Propose Changes",
         .description = "Proposes to change or delete entries of the user. They wait until the user applies "
                        "or dismisses them: the entries stay as they are until then. Give what is to be "
                        "different; everything else stays. Each item has an outcome of its own: a "
                        "proposalId, or a refusal that says what to mend.",
         .lane = Lane::writing,
         .isIdempotent = false,
         .notes = proposalNotes},
        proposeEntryChanges));
    tools.push_back(
        agentTool({.name = "list_proposals",
                   .title = "List Proposals",
                   .description =
                       "Your own proposals, the newest first, and what became of them: pending ones wait for "
                       "the user; applied, dismissed, handled (the user did it by hand) and withdrawn ones "
                       "are listed for 30 days. Do not propose again what was dismissed.",
                   .notes = ownNotes},
                  listOwnProposals));
    tools.push_back(agentTool(
        {.name = "withdraw_proposals",
         .title = "Withdraw Proposals",
         .description = "Takes back proposals of yours that still wait, such as ones that turned out wrong.",
         .lane = Lane::writing,
         .notes = ownNotes},
        withdrawOwn));
}

} // namespace orvane::server
