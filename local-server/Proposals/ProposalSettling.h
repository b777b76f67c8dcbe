// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"
#include "Proposals/ProposalRecords.h"
#include "Workspaces/WorkspaceAccess.h"

/// The user's answers to proposals. Each leaves the record as it is to be shown, and keeps it. One that is
/// delivered twice comes to the same as once.
namespace orvane::server {

/// Carries a pending proposal out, under the rules of any change of an entry, and answers the entries that it
/// made or changed. 409 when it no longer fits what is there.
Result<std::vector<TimeEntryResponse>, HttpResponse>
applyProposal(Call &call, const WorkspaceAccess &workspace, ProposalRecord &record);

/// Settles a pending proposal without carrying it out.
Result<void, HttpResponse> resolveProposal(Call &call, const WorkspaceAccess &workspace,
                                           ProposalRecord &record,
                                           const ResolveAgentProposalRequest &request);

/// Has a settled proposal wait again. What an applied one did is taken back; 409 when its entry is no longer
/// as that left it, or can't be as it was.
Result<void, HttpResponse> reopenProposal(Call &call, const WorkspaceAccess &workspace,
                                          ProposalRecord &record);

} // namespace orvane::server
