// SPDX-License-Identifier: GPL-3.0-or-later
#include "Workspaces/WorkspaceAccess.h"

#include "Http/Problems.h"
#include "Requests/Call.h"

namespace orvane::server {

Result<WorkspaceAccess, HttpResponse> WorkspaceAccess::enter(Call &call, const std::string &workspaceId)
{
    const auto role = call.workspaces.role(workspaceId, call.caller.userId);
    auto settings = role ? call.workspaces.settings(workspaceId) : std::nullopt;
    if (!settings)
        return failure(noSuch("workspace"));
    return WorkspaceAccess(workspaceId, *role, std::move(*settings));
}

HttpResponse notPermitted(std::string_view who)
{
    return forbidden(std::string(who));
}

} // namespace orvane::server
