// SPDX-License-Identifier: GPL-3.0-or-later
#include "Proposals/SettledProposal.h"

#include "Proposals/AgentProposals.h"
#include "Proposals/ProposalText.h"

#include <QPointer>

namespace orvane {

namespace {

using Outcome = UndoableChange::Outcome;

Outcome outcomeOf(const std::optional<CallError> &error)
{
    if (!error)
        return {};
    using Ending = UndoableChange::Ending;
    const auto *refusal = std::get_if<APIError>(&*error);
    const Ending ending = refusal == nullptr       ? Ending::away
                          : refusal->status == 409 ? Ending::changedSince
                                                   : Ending::refused;
    return {ending, proposalFailure(*error)};
}

template <class T>
Outcome outcomeOf(const CallResult<T> &result)
{
    return outcomeOf(result ? std::nullopt : std::optional(result.error()));
}

Outcome nobodyThere()
{
    return {UndoableChange::Ending::away, "Nobody is signed in."};
}

// They stand alone since a call may outlive the change.

Task<Outcome> reopened(QPointer<AgentProposals> proposals, std::string id)
{
    if (!proposals)
        co_return nobodyThere();
    co_return outcomeOf(co_await proposals->reopen(std::move(id)));
}

Task<Outcome> settledAgain(QPointer<AgentProposals> proposals, std::string id, bool isApplied)
{
    if (!proposals)
        co_return nobodyThere();
    if (isApplied)
        co_return outcomeOf(co_await proposals->apply(std::move(id)));
    co_return outcomeOf(co_await proposals->dismiss(std::move(id)));
}

class SettledProposal final : public UndoableChange {
public:
    SettledProposal(AgentProposals &proposals, AgentProposalResponse settled)
        : m_proposals(&proposals), m_settled(std::move(settled))
    {
    }

    std::string sentence() const override
    {
        return (isApplied() ? "Accepted a proposal for " : "Declined a proposal for ") +
               proposedEntry(m_settled);
    }
    Task<Outcome> undo() override { return reopened(m_proposals, m_settled.id); }
    Task<Outcome> redo() override { return settledAgain(m_proposals, m_settled.id, isApplied()); }

private:
    bool isApplied() const { return m_settled.status == "applied"; }

    QPointer<AgentProposals> m_proposals;
    AgentProposalResponse m_settled;
};

} // namespace

std::shared_ptr<UndoableChange> undoableSettling(AgentProposals &proposals, AgentProposalResponse settled)
{
    return std::make_shared<SettledProposal>(proposals, std::move(settled));
}

} // namespace orvane
