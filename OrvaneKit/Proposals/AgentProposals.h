// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/CallError.h"
#include "Http/CallScope.h"
#include "Http/ServerCalls.h"
#include "OrvaneAPI/Schemas.h"
#include "Support/Task.h"

#include <QObject>
#include <QPointer>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orvane {

class OrvaneClient;
class Tracker;

/// What agents proposed to the user in one workspace: what waits for an answer, and what was settled lately,
/// the newest first. Nothing is asked for until somebody wants to see them.
///
/// Answers go to the server at once and cannot wait in the outbox: whether a proposal still fits is decided
/// there. A refusal comes with the list as it is by then. An answer that was sent but not confirmed can be
/// given again without harm.
///
/// Owner: the account, beside the tracker of the workspace. Main thread. A call whose object goes meanwhile
/// ends with a ConnectionError.
class AgentProposals final : public QObject {
    Q_OBJECT
    Q_PROPERTY(int pendingCount READ pendingCount NOTIFY changed)

public:
    AgentProposals(std::shared_ptr<OrvaneClient> api, Tracker &tracker);

    const std::vector<AgentProposalResponse> &proposals() const { return m_proposals; }
    /// Those that wait, oldest first: in the order in which one settles them.
    std::vector<AgentProposalResponse> pending() const;
    int pendingCount() const;
    /// Null when there is none of that identifier, valid until the list changes.
    const AgentProposalResponse *find(const std::string &id) const;

    /// From now on the list is kept up to date.
    Task<CallResult<void>> load();
    /// The list again, without a word; nothing while nobody has asked for it.
    Task<> refresh();

    /// Carries it out. The tracker knows of the entries by the time this answers.
    Task<CallResult<AppliedAgentProposalResponse>> apply(std::string id);
    Task<CallResult<AgentProposalResponse>> dismiss(std::string id);
    /// The user did it by hand, in these entries.
    Task<CallResult<AgentProposalResponse>> noteHandled(std::string id, std::vector<std::string> entryIds);
    /// Has it wait again. What an applied one did is taken back, unless its entry has changed since.
    Task<CallResult<AgentProposalResponse>> reopen(std::string id);

Q_SIGNALS:
    void changed();

private:
    Task<CallResult<AgentProposalResponse>> settle(std::string id, ResolveAgentProposalRequest request);
    Task<> refreshEntries();
    void put(AgentProposalResponse proposal);
    void replace(std::vector<AgentProposalResponse> proposals);
    ServerCalls api() const;

    std::shared_ptr<OrvaneClient> m_api;
    QPointer<Tracker> m_tracker;
    std::string m_workspaceId;
    std::vector<AgentProposalResponse> m_proposals;
    /// Counts what the list took, so that an answer from before is not taken for news.
    std::uint64_t m_taken = 0;
    bool m_isWanted = false;
    CallScope m_calls;
};

/// Why a proposal could not be settled, for people.
std::string proposalFailure(const CallError &error);

} // namespace orvane
