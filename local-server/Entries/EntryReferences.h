// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"
#include "Workspaces/WorkspaceAccess.h"

#include <optional>
#include <string>

namespace orvane::server {

/// What time entries and their shares refer to, and others can delete.
enum class EntryReference { project, task, tag };

/// Takes a reference that is about to be deleted out of all entries that hold it: their time stays. Refused
/// when entries of locked time hold it, which may not change, and when a finished entry would be left without
/// a detail that the workspace requires.
std::optional<HttpResponse> releaseReferences(Call &call, const WorkspaceAccess &workspace,
                                              EntryReference kind, const std::string &id);

} // namespace orvane::server
