// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Problems.h"
#include "Proposals/ProposalRecords.h"
#include "Proposals/ProposalSettling.h"
#include "Proposals/Proposing.h"
#include "Requests/Router.h"

#include <algorithm>

namespace orvane::server {

namespace {

constexpr std::chrono::days settledShown{30};

Result<ProposalRecord, HttpResponse> findProposal(Call &call, const WorkspaceAccess &workspace,
                                                  const std::string &id)
{
    auto found = ProposalRecords(call.database).find(call.caller.userId, workspace.id(), id);
    if (!found)
        return failure(noSuch("proposal"));
    return std::move(*found);
}

HttpResponse listProposals(Call &call, const WorkspaceAccess &workspace,
                           const operations::ListAgentProposals::Input &)
{
    AgentProposalsResponse answer;
    for (ProposalRecord &record :
         ProposalRecords(call.database).list(call.caller.userId, workspace.id(), call.now - settledShown)) {
        answer.pendingCount += record.is(pendingProposal) ? 1 : 0;
        answer.proposals.push_back(std::move(record.shown));
    }
    return jsonAnswer(200, answer);
}

/// Who proposes by a session of their own does so under the name of its device.
std::string nameOfDevice(Call &call)
{
    const auto sessions = call.sessions.list(call.caller.userId, call.now);
    const auto own = std::ranges::find(sessions, call.caller.sessionId, &SessionRecord::id);
    return own == sessions.end() ? std::string() : own->deviceName.value_or("");
}

HttpResponse answered(const ProposalOutcomes &outcomes)
{
    return outcomes ? jsonAnswer(201, *outcomes) : outcomes.error();
}

HttpResponse proposeEntries(Call &call, const WorkspaceAccess &workspace,
                            const operations::ProposeEntries::Input &input)
{
    return answered(propose(call, workspace, nameOfDevice(call), input.body));
}

HttpResponse proposeChanges(Call &call, const WorkspaceAccess &workspace,
                            const operations::ProposeChanges::Input &input)
{
    return answered(propose(call, workspace, nameOfDevice(call), input.body));
}

HttpResponse withdraw(Call &call, const WorkspaceAccess &workspace,
                      const operations::WithdrawAgentProposals::Input &input)
{
    return jsonAnswer(200, WithdrawAgentProposalsResponse{
                               withdrawProposals(call, workspace, std::nullopt, input.body.ids)});
}

HttpResponse apply(Call &call, const WorkspaceAccess &workspace,
                   const operations::ApplyAgentProposal::Input &input)
{
    auto record = findProposal(call, workspace, input.proposalId);
    if (!record)
        return std::move(record.error());
    auto entries = applyProposal(call, workspace, *record);
    if (!entries)
        return std::move(entries.error());
    return jsonAnswer(200, AppliedAgentProposalResponse{std::move(record->shown), std::move(*entries)});
}

HttpResponse resolve(Call &call, const WorkspaceAccess &workspace,
                     const operations::ResolveAgentProposal::Input &input)
{
    auto record = findProposal(call, workspace, input.proposalId);
    if (!record)
        return std::move(record.error());
    auto resolved = resolveProposal(call, workspace, *record, input.body);
    return resolved ? jsonAnswer(200, record->shown) : std::move(resolved.error());
}

HttpResponse reopen(Call &call, const WorkspaceAccess &workspace,
                    const operations::ReopenAgentProposal::Input &input)
{
    auto record = findProposal(call, workspace, input.proposalId);
    if (!record)
        return std::move(record.error());
    auto reopened = reopenProposal(call, workspace, *record);
    return reopened ? jsonAnswer(200, record->shown) : std::move(reopened.error());
}

} // namespace

void addProposalHandlers(Router &router)
{
    router.add<operations::ListAgentProposals>(listProposals);
    router.add<operations::ProposeEntries>(proposeEntries);
    router.add<operations::ProposeChanges>(proposeChanges);
    router.add<operations::WithdrawAgentProposals>(withdraw);
    router.add<operations::ApplyAgentProposal>(apply);
    router.add<operations::ResolveAgentProposal>(resolve);
    router.add<operations::ReopenAgentProposal>(reopen);
}

} // namespace orvane::server
