// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Database/Database.h"

#include <string>

namespace orvane::server {

/// All that agents proposed to a user in a workspace, and what the user said to it, as JSON for the archive
/// of their data.
std::string proposalArchive(Database &database, const std::string &userId, const std::string &workspaceId);

} // namespace orvane::server
