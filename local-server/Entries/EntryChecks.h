// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Entries/EntryRecords.h"
#include "OrvaneAPI/Checks.h"
#include "Workspaces/WorkspaceAccess.h"

#include <optional>

namespace orvane::server {

/// The contents that a request to create has in common with one to rewrite.
TimeEntryRequest contentsOf(const CreateTimeEntryRequest &request);
/// Puts contents into a record, a repeated tag only once.
void takeContents(EntryRecord &record, const TimeEntryRequest &contents);

/// What speaks against an entry as it would be: times, shares, references that the workspace does not have,
/// and, once it is stopped, the details that the workspace requires. For a split entry a project or task is
/// there when each share has one, and a description when it has one itself or each share has.
FieldErrors entryFaults(Call &call, const WorkspaceAccess &workspace, const EntryRecord &record);

/// Whether changing `before` to `after` (creating without the one, deleting without the other) changes time
/// before the workspace's lock. What reaches over the lock may still get another end behind it.
bool changesLockedTime(const WorkspaceAccess &workspace, const TimeEntryResponse *before,
                       const TimeEntryResponse *after);
HttpResponse timeLocked();

} // namespace orvane::server
