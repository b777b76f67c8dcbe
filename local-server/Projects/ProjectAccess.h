// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Workspaces/WorkspaceAccess.h"

namespace orvane::server {

/// The right to change a workspace's projects and their tasks.
struct ChangeProjects {
    static bool isHeldBy(const WorkspaceAccess &workspace)
    {
        return workspace.isAdmin() || !workspace.settings().onlyAdminsCreateProjects;
    }
    static constexpr std::string_view refusal = "Only the workspace's administrators change its projects.";
};
using ProjectEditor = WorkspaceRight<ChangeProjects>;

} // namespace orvane::server
