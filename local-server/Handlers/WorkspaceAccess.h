// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Handlers/Call.h"
#include "OrvaneAPI/HttpMessage.h"
#include "Support/Result.h"

namespace orvane::server {

/// A workspace as its caller may use it.
struct WorkspaceAccess {
    WorkspaceRole role = WorkspaceRole::member;
    WorkspaceSettingsResponse settings;

    bool isAdmin() const { return role == WorkspaceRole::owner || role == WorkspaceRole::admin; }
};

/// 404 for a workspace that the caller does not belong to: whether it exists is none of their business.
Result<WorkspaceAccess, HttpResponse> enterWorkspace(Call &call, const std::string &workspaceId);

/// Why a name cannot be one (blank, or with control characters); empty when it can.
std::string nameFault(const std::string &name);

} // namespace orvane::server
