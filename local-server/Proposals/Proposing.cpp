// SPDX-License-Identifier: GPL-3.0-or-later
#include "Proposals/Proposing.h"

#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Proposals/ProposalPlans.h"
#include "Proposals/ProposalRecords.h"
#include "Proposals/ProposedEntryCheck.h"
#include "Requests/Call.h"
#include "Security/RandomText.h"

#include <set>

namespace orvane::server {

namespace {

/// Of a plan as text. Five hundred of them still make an answer that a client takes.
constexpr std::size_t largestPlan = 32UL * 1024;
constexpr std::size_t longestAgentName = 100;
/// Settled proposals that are kept; the user is shown those of some weeks.
constexpr std::int64_t mostSettled = 1000;
constexpr std::chrono::days settledKept{30};

/// One request's items on their way to proposals.
class Proposing {
public:
    Proposing(Call &call, const WorkspaceAccess &workspace, std::string_view kind,
              const std::string &agentName, const std::optional<std::string> &note)
        : m_call(call)
        , m_workspace(workspace)
        , m_kind(kind)
        , m_agentName(shownAgentName(agentName))
        , m_note(note.value_or(""))
        , m_records(call.database)
    {
        for (std::string &plan : m_records.pendingPlans(call.caller.userId, workspace.id()))
            m_pending.insert(std::move(plan));
    }

    template <class Item>
    ProposalOutcomes run(const std::vector<Item> &items)
    {
        if (m_pending.size() + items.size() > mostPendingProposals)
            return failure(problem(429, "Too many proposals wait for an answer.",
                                   "Nothing was taken: up to " + std::to_string(mostPendingProposals) +
                                       " can wait, and " + std::to_string(m_pending.size()) + " do."));
        m_records.dropSettled(m_call.caller.userId, m_workspace.id(), m_call.now - settledKept, mostSettled);
        std::vector<ProposalOutcomeResponse> outcomes;
        outcomes.reserve(items.size());
        for (const Item &item : items) {
            ProposalOutcomeResponse &outcome = outcomes.emplace_back();
            outcome.reference = item.reference;
            if (auto made = propose(item))
                outcome.proposal = std::move(*made);
            else
                outcome.refusal = std::move(made.error());
        }
        if (m_made > 0)
            m_call.changedForCaller(ChangeTopic::proposals, m_workspace.id());
        return outcomes;
    }

private:
    template <class Item>
    Result<AgentProposalResponse, ProposalRefusalResponse> propose(const Item &item)
    {
        const std::string &note = item.reason ? *item.reason : m_note;
        if (hasControlCharacter(note))
            return failure(
                proposalRefusal("unreadableText", "The reason holds characters that cannot be shown."));
        auto plan = planOf(m_call, m_workspace, item);
        if (!plan)
            return failure(std::move(plan.error()));
        std::string text = encodeJson(*plan);
        if (text.size() > largestPlan)
            return failure(proposalRefusal("tooLarge", "This is too much for one proposal; split it."));
        if (!m_pending.insert(std::move(text)).second)
            return failure(proposalRefusal("duplicate", "This is proposed already and waits for an answer."));
        return add(std::move(*plan), note);
    }

    AgentProposalResponse add(ProposalPlanResponse plan, const std::string &note)
    {
        ProposalRecord record;
        record.userId = m_call.caller.userId;
        record.position = m_made++;
        record.shown.id = newIdentifier();
        record.shown.workspaceId = m_workspace.id();
        record.shown.agentName = m_agentName;
        record.shown.kind = m_kind;
        record.shown.status = pendingProposal;
        record.shown.note = note;
        if (plan.before)
            record.shown.entryId = plan.before->id;
        record.shown.plan = std::move(plan);
        record.shown.createdAt = m_call.now;
        m_records.add(record);
        return std::move(record.shown);
    }

    Call &m_call;
    const WorkspaceAccess &m_workspace;
    const std::string_view m_kind;
    const std::string m_agentName;
    const std::string m_note;
    ProposalRecords m_records;
    /// The plans that wait, as they are kept.
    std::set<std::string> m_pending;
    std::int64_t m_made = 0;
};

} // namespace

ProposalOutcomes propose(Call &call, const WorkspaceAccess &workspace, const std::string &agentName,
                         const ProposeEntriesRequest &request)
{
    return Proposing(call, workspace, "entry", agentName, request.note).run(request.entries);
}

ProposalOutcomes propose(Call &call, const WorkspaceAccess &workspace, const std::string &agentName,
                         const ProposeChangesRequest &request)
{
    return Proposing(call, workspace, "change", agentName, request.note).run(request.changes);
}

std::vector<std::string> withdrawProposals(Call &call, const WorkspaceAccess &workspace,
                                           const std::optional<std::string> &agentName,
                                           const std::vector<std::string> &ids)
{
    ProposalRecords records(call.database);
    std::vector<std::string> withdrawn;
    for (const std::string &id : ids) {
        auto record = records.find(call.caller.userId, workspace.id(), id);
        if (!record || !record->is(pendingProposal) ||
            (agentName && shownAgentName(*agentName) != record->shown.agentName))
            continue;
        record->shown.status = withdrawnProposal;
        record->shown.resolvedAt = call.now;
        records.update(*record);
        withdrawn.push_back(id);
    }
    if (!withdrawn.empty())
        call.changedForCaller(ChangeTopic::proposals, workspace.id());
    return withdrawn;
}

std::string shownAgentName(const std::string &name)
{
    std::string shown = trimmed(name);
    for (char &c : shown) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            c = ' ';
    }
    if (shown.size() > longestAgentName) {
        std::size_t end = longestAgentName;
        while (end > 0 && (static_cast<unsigned char>(shown[end]) & 0xC0) == 0x80)
            --end;
        shown = trimmed(shown.substr(0, end));
    }
    return shown.empty() ? "An agent without a name" : shown;
}

} // namespace orvane::server
