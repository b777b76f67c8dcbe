// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Entries/EntryRecords.h"
#include "Workspaces/WorkspaceAccess.h"

/// What a proposal would do, worked out and checked when it is made: an agent hears at once what the user
/// could not apply anyway. Applying checks again, since the world goes on.
namespace orvane::server {

/// A refusal's code is a stable word:
///
/// - `unreadableText`: a text holds control characters
/// - `timesNotInOrder`, `tooLong` (over a day), `inTheFuture`: its times
/// - `unknownProject`, `archivedProject`, `unknownTask`, `inactiveTask`, `unknownTag`: what it refers to
/// - `percents`: the parts do not come to 100 percent
/// - `locked`: the workspace no longer allows changes to that time
/// - `overlaps`: part of the time is tracked already
/// - `detailRequired`: a detail that the workspace requires of its entries is missing
/// - `unknownEntry`, `versionChanged`, `nothingToChange`: the entry to change
/// - `tooLarge`: it is over the size of one proposal
/// - `duplicate`: the same is proposed already and waits for an answer
using ProposalPlan = Result<ProposalPlanResponse, ProposalRefusalResponse>;

ProposalPlan planOf(Call &call, const WorkspaceAccess &workspace, const ProposedEntryRequest &request);
ProposalPlan planOf(Call &call, const WorkspaceAccess &workspace, const ProposedChangeRequest &request);

// A plan's halves as the contents of an entry.
void takeWork(EntryRecord &record, const ProposedWorkResponse &work);
void takeFields(EntryRecord &record, const ProposedFieldsResponse &fields);
void takeSnapshot(EntryRecord &record, const ProposedEntrySnapshotResponse &snapshot);

} // namespace orvane::server
