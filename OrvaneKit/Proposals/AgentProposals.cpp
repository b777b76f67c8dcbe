// SPDX-License-Identifier: GPL-3.0-or-later
#include "Proposals/AgentProposals.h"

#include "Client/OrvaneClient.h"
#include "Tracker/Tracker.h"

#include <algorithm>

namespace orvane {

namespace {

bool isPending(const AgentProposalResponse &proposal)
{
    return proposal.status == "pending";
}

} // namespace

AgentProposals::AgentProposals(std::shared_ptr<OrvaneClient> api, Tracker &tracker)
    : m_api(std::move(api)), m_tracker(&tracker), m_workspaceId(tracker.workspace().id)
{
}

std::vector<AgentProposalResponse> AgentProposals::pending() const
{
    std::vector<AgentProposalResponse> waiting;
    for (const AgentProposalResponse &proposal : m_proposals) {
        if (!isPending(proposal))
            continue;
        // Of those that were proposed at once the first stays first.
        const auto after =
            std::ranges::upper_bound(waiting, proposal.createdAt, {}, &AgentProposalResponse::createdAt);
        waiting.insert(after, proposal);
    }
    return waiting;
}

int AgentProposals::pendingCount() const
{
    return static_cast<int>(std::ranges::count_if(m_proposals, isPending));
}

const AgentProposalResponse *AgentProposals::find(const std::string &id) const
{
    const auto found = std::ranges::find(m_proposals, id, &AgentProposalResponse::id);
    return found == m_proposals.end() ? nullptr : &*found;
}

Task<CallResult<void>> AgentProposals::load()
{
    const QPointer<AgentProposals> self(this);
    m_isWanted = true;
    for (;;) {
        const std::uint64_t taken = m_taken;
        auto listed = co_await api().listAgentProposals(m_workspaceId);
        if (!listed)
            co_return failure(std::move(listed.error()));
        if (!self)
            co_return failure(CallError(ConnectionError{}));
        // It may be from before an answer that came meanwhile.
        if (taken != m_taken)
            continue;
        replace(std::move(listed->proposals));
        co_return CallResult<void>{};
    }
}

Task<> AgentProposals::refresh()
{
    if (m_isWanted)
        co_await load();
}

Task<CallResult<AppliedAgentProposalResponse>> AgentProposals::apply(std::string id)
{
    const QPointer<AgentProposals> self(this);
    auto applied = co_await api().applyAgentProposal(m_workspaceId, std::move(id));
    if (self && applied)
        put(applied->proposal);
    else if (self && std::holds_alternative<APIError>(applied.error()))
        co_await refresh();
    if (self && applied)
        co_await refreshEntries();
    co_return std::move(applied);
}

Task<CallResult<AgentProposalResponse>> AgentProposals::dismiss(std::string id)
{
    return settle(std::move(id), {.resolution = "dismissed"});
}

Task<CallResult<AgentProposalResponse>> AgentProposals::noteHandled(std::string id,
                                                                    std::vector<std::string> entryIds)
{
    return settle(std::move(id), {.resolution = "handled", .entryIds = std::move(entryIds)});
}

Task<CallResult<AgentProposalResponse>> AgentProposals::settle(std::string id,
                                                               ResolveAgentProposalRequest request)
{
    const QPointer<AgentProposals> self(this);
    auto settled = co_await api().resolveAgentProposal(m_workspaceId, std::move(id), std::move(request));
    if (self && settled)
        put(*settled);
    else if (self && std::holds_alternative<APIError>(settled.error()))
        co_await refresh();
    co_return std::move(settled);
}

Task<CallResult<AgentProposalResponse>> AgentProposals::reopen(std::string id)
{
    const QPointer<AgentProposals> self(this);
    auto reopened = co_await api().reopenAgentProposal(m_workspaceId, std::move(id));
    if (self && reopened)
        put(*reopened);
    else if (self && std::holds_alternative<APIError>(reopened.error()))
        co_await refresh();
    if (self && reopened)
        co_await refreshEntries();
    co_return std::move(reopened);
}

/// What could not be had of them the account asks for again.
Task<> AgentProposals::refreshEntries()
{
    if (m_tracker)
        co_await m_tracker->refresh(Topics(Topic::entries) | Topic::running);
}

void AgentProposals::put(AgentProposalResponse proposal)
{
    auto proposals = m_proposals;
    const auto known = std::ranges::find(proposals, proposal.id, &AgentProposalResponse::id);
    if (known != proposals.end())
        *known = std::move(proposal);
    else
        proposals.insert(proposals.begin(), std::move(proposal));
    replace(std::move(proposals));
}

void AgentProposals::replace(std::vector<AgentProposalResponse> proposals)
{
    ++m_taken;
    if (m_proposals == proposals)
        return;
    m_proposals = std::move(proposals);
    Q_EMIT changed();
}

ServerCalls AgentProposals::api() const
{
    return m_api->within(m_calls);
}

std::string proposalFailure(const CallError &error)
{
    if (std::holds_alternative<ConnectionError>(error))
        return "The server can't be reached just now, and proposals are settled there. Nothing is lost: they "
               "wait.";
    return describe(error);
}

} // namespace orvane
