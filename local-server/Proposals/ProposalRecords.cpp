// SPDX-License-Identifier: GPL-3.0-or-later
#include "Proposals/ProposalRecords.h"

#include "Database/SqlTable.h"

namespace orvane::server {

namespace {

using Shown = AgentProposalResponse;

template <class T>
constexpr auto ofShown(T Shown::*member)
{
    return [member](auto &record) -> auto & { return record.shown.*member; };
}

const auto proposalTable = sqlTable<ProposalRecord>(
    "agent_proposals", fixedColumn("id", ofShown(&Shown::id)),
    fixedColumn("workspace_id", ofShown(&Shown::workspaceId)),
    fixedColumn("user_id", &ProposalRecord::userId), fixedColumn("agent_name", ofShown(&Shown::agentName)),
    fixedColumn("kind", ofShown(&Shown::kind)), column("status", ofShown(&Shown::status)),
    fixedColumn("note", ofShown(&Shown::note)), column("entry_id", ofShown(&Shown::entryId)),
    column("plan", &ProposalRecord::planText), fixedColumn("created_at", ofShown(&Shown::createdAt)),
    fixedColumn("position", &ProposalRecord::position), column("resolved_at", ofShown(&Shown::resolvedAt)),
    column("answer_note", &ProposalRecord::answerNote), column("undo_version", &ProposalRecord::undoVersion),
    column("undo_describe_parts", &ProposalRecord::undoDescribeParts),
    column("undo_creation_digest", &ProposalRecord::undoCreationDigest));

void readPlan(ProposalRecord &record)
{
    // The server wrote it: one that cannot be read has no action, and so does nothing when it is applied.
    record.shown.plan = decodeJson<ProposalPlanResponse>(record.planText).value_or(ProposalPlanResponse{});
}

} // namespace

std::optional<ProposalRecord> ProposalRecords::find(const std::string &userId, const std::string &workspaceId,
                                                    const std::string &id)
{
    auto found = proposalTable.first(m_database, "WHERE id = ? AND user_id = ? AND workspace_id = ?", id,
                                     userId, workspaceId);
    if (found)
        readPlan(*found);
    return found;
}

std::vector<ProposalRecord> ProposalRecords::list(const std::string &userId, const std::string &workspaceId,
                                                  Instant settledSince)
{
    auto found = proposalTable.all(m_database,
                                   "WHERE user_id = ? AND workspace_id = ? AND (status = ? OR "
                                   "resolved_at >= ?) ORDER BY created_at DESC, position, id",
                                   userId, workspaceId, pendingProposal, settledSince);
    for (ProposalRecord &record : found)
        readPlan(record);
    return found;
}

std::vector<std::string> ProposalRecords::pendingPlans(const std::string &userId,
                                                       const std::string &workspaceId)
{
    return m_database.rows(
        "SELECT plan FROM agent_proposals WHERE user_id = ? AND workspace_id = ? AND status = ?",
        [](const SqlRow &row) { return row.text(0); }, userId, workspaceId, pendingProposal);
}

void ProposalRecords::add(ProposalRecord &record)
{
    record.planText = encodeJson(record.shown.plan);
    proposalTable.insert(m_database, record);
}

void ProposalRecords::update(ProposalRecord &record)
{
    record.planText = encodeJson(record.shown.plan);
    proposalTable.update(m_database, record);
}

void ProposalRecords::dropSettled(const std::string &userId, const std::string &workspaceId, Instant before,
                                  std::int64_t most)
{
    m_database.run("DELETE FROM agent_proposals WHERE user_id = ? AND workspace_id = ? AND resolved_at < ?",
                   userId, workspaceId, before);
    m_database.run("DELETE FROM agent_proposals WHERE id IN (SELECT id FROM agent_proposals WHERE "
                   "user_id = ? AND workspace_id = ? AND resolved_at IS NOT NULL "
                   "ORDER BY resolved_at DESC, id LIMIT 1000000 OFFSET ?)",
                   userId, workspaceId, most);
}

} // namespace orvane::server
