// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Handlers/WorkspaceAccess.h"
#include "Records/CatalogRecords.h"
#include "Records/EntryRecords.h"

#include <optional>

namespace orvane::server {

/// Whether the caller may not delete a project, task or tag: entries lose their reference to it, and those of
/// locked time may not change.
std::optional<HttpResponse> refusedRelease(Call &call, const WorkspaceAccess &workspace,
                                           EntryRecords::Reference kind, const std::string &id);

HttpResponse nameTaken(std::string_view what);

} // namespace orvane::server
