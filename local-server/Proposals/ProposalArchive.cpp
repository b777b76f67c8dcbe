// SPDX-License-Identifier: GPL-3.0-or-later
#include "Proposals/ProposalArchive.h"

#include "OrvaneAPI/SchemaFields.h"
#include "Proposals/ProposalRecords.h"
#include "Support/JsonImpl.h"

namespace orvane::server {

struct ArchivedProposal {
    AgentProposalResponse proposal;
    std::optional<std::string> answerNote;
};

} // namespace orvane::server

namespace orvane {

template <>
struct JsonFields<server::ArchivedProposal> {
    static constexpr auto list =
        JsonFieldList{jsonField<"proposal">(&server::ArchivedProposal::proposal),
                      jsonField<"answerNote">(&server::ArchivedProposal::answerNote)};
};

} // namespace orvane

ORVANE_JSON(std::vector<orvane::server::ArchivedProposal>)

namespace orvane::server {

std::string proposalArchive(Database &database, const std::string &userId, const std::string &workspaceId)
{
    std::vector<ArchivedProposal> all;
    for (ProposalRecord &record : ProposalRecords(database).list(userId, workspaceId, earliestInstant))
        all.push_back({std::move(record.shown), std::move(record.answerNote)});
    return encodeJson(all);
}

} // namespace orvane::server
