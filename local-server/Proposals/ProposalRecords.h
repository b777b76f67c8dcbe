// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::server {

class Database;

// The statuses of a proposal, and what its plan does. All but the first are settled.
inline constexpr std::string_view pendingProposal = "pending";
inline constexpr std::string_view appliedProposal = "applied";
inline constexpr std::string_view dismissedProposal = "dismissed";
inline constexpr std::string_view handledProposal = "handled";
inline constexpr std::string_view withdrawnProposal = "withdrawn";

inline constexpr std::string_view createAction = "create";
inline constexpr std::string_view updateAction = "update";
inline constexpr std::string_view removeAction = "remove";

/// A proposal with what the server knows beside what it shows.
struct ProposalRecord {
    /// As listed. Its `entryId` is the entry that it changes, made, or was carried out in by hand.
    AgentProposalResponse shown;
    std::string userId;
    /// Among those proposed at once, in the agent's order.
    std::int64_t position = 0;
    /// What the user said when answering.
    std::optional<std::string> answerNote;

    // Of an applied one: what taking it back needs beside the plan, which says what stood before.

    /// The version of the entry that it made or changed; none when it deleted one.
    std::optional<std::string> undoVersion;
    bool undoDescribeParts = false;
    std::string undoCreationDigest;

    /// The plan as it is kept.
    std::string planText;

    bool is(std::string_view status) const { return shown.status == status; }
};

/// What agents proposed. Each belongs to one user in one workspace, and is nobody else's to see.
class ProposalRecords {
public:
    explicit ProposalRecords(Database &database) : m_database(database) {}

    /// Nothing for another user's, or another workspace's.
    std::optional<ProposalRecord> find(const std::string &userId, const std::string &workspaceId,
                                       const std::string &id);
    /// The pending ones and those settled since then, the newest first.
    std::vector<ProposalRecord> list(const std::string &userId, const std::string &workspaceId,
                                     Instant settledSince);
    /// The plans of the pending ones, as they are kept.
    std::vector<std::string> pendingPlans(const std::string &userId, const std::string &workspaceId);

    /// Both write the plan as `shown` has it.
    void add(ProposalRecord &record);
    void update(ProposalRecord &record);
    /// Drops those that were settled before then, and of the others all but the `most` settled last.
    void dropSettled(const std::string &userId, const std::string &workspaceId, Instant before,
                     std::int64_t most);

private:
    Database &m_database;
};

} // namespace orvane::server
