// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Entries/EntryChecks.h"

#include <string>

namespace orvane::server {

/// The caller's entry in a workspace; 404 for anyone else's.
Result<EntryRecord, HttpResponse> findEntry(Call &call, const WorkspaceAccess &workspace,
                                            const std::string &entryId);

/// Keeps a new entry of the caller's, under the identifier that it has, if nothing speaks against it. Another
/// one of the user's that runs is stopped when this one runs.
Result<TimeEntryResponse, HttpResponse> addEntry(Call &call, const WorkspaceAccess &workspace,
                                                 EntryRecord record);

/// Keeps a changed entry if nothing speaks against it; one that stays as it was keeps its version. Whatever
/// else of the user's runs is stopped when this one runs.
Result<TimeEntryResponse, HttpResponse> keepEntry(Call &call, const WorkspaceAccess &workspace,
                                                  const EntryRecord &before, EntryRecord after);

/// Deletes the caller's entry unless its time is locked.
Result<void, HttpResponse> removeEntry(Call &call, const WorkspaceAccess &workspace,
                                       const EntryRecord &record);

} // namespace orvane::server
