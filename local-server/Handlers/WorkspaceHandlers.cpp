// SPDX-License-Identifier: GPL-3.0-or-later
#include "Handlers/Router.h"
#include "Handlers/WorkspaceAccess.h"
#include "Http/Problems.h"
#include "Records/NameText.h"

#include <algorithm>

namespace orvane::server {

Result<WorkspaceAccess, HttpResponse> enterWorkspace(Call &call, const std::string &workspaceId)
{
    const auto role = call.services.workspaces.role(workspaceId, call.caller.userId);
    auto settings = role ? call.services.workspaces.settings(workspaceId) : std::nullopt;
    if (!settings)
        return failure(noSuch("workspace"));
    return WorkspaceAccess{*role, std::move(*settings)};
}

std::string nameFault(const std::string &name)
{
    if (trimmed(name).empty())
        return "Enter a name.";
    return hasControlCharacter(name) ? "The name holds characters that cannot be shown." : "";
}

namespace {

HttpResponse createWorkspace(Call &call, const operations::CreateWorkspace::Input &input)
{
    Workspaces &workspaces = call.services.workspaces;
    const std::string &userId = call.caller.userId;
    if (auto fault = nameFault(input.body.name); !fault.empty())
        return invalid("name", std::move(fault));
    const std::string name = trimmed(input.body.name);
    std::string organizationId = input.body.organizationId.value_or("");
    if (organizationId.empty()) {
        organizationId = workspaces.createOrganization(name, userId);
    } else {
        const auto role = workspaces.roleInOrganization(organizationId, userId);
        if (!role)
            return noSuch("organization");
        if (*role == OrganizationRole::member)
            return forbidden("Only the organization's administrators add workspaces.");
    }
    const std::string id = workspaces.create(name, organizationId, userId, call.now);
    return jsonAnswer(201, WorkspaceSummary{id, organizationId, name, WorkspaceRole::owner});
}

HttpResponse getSettings(Call &call, const operations::GetWorkspaceSettings::Input &input)
{
    const auto workspace = enterWorkspace(call, input.workspaceId);
    return workspace ? jsonAnswer(200, workspace->settings) : workspace.error();
}

WorkspaceSettingsResponse asKept(const WorkspaceSettingsRequest &request)
{
    WorkspaceSettingsResponse settings;
    settings.name = trimmed(request.name);
    settings.currency = request.currency;
    settings.defaultHourlyRate = request.defaultHourlyRate;
    settings.onlyAdminsCreateProjects = request.onlyAdminsCreateProjects;
    settings.onlyAdminsCreateTags = request.onlyAdminsCreateTags;
    settings.lockedBefore = request.lockedBefore;
    settings.requireDescription = request.requireDescription;
    settings.requireProject = request.requireProject;
    settings.requireTask = request.requireTask;
    settings.requireTag = request.requireTag;
    return settings;
}

HttpResponse updateSettings(Call &call, const operations::UpdateWorkspaceSettings::Input &input)
{
    const auto workspace = enterWorkspace(call, input.workspaceId);
    if (!workspace)
        return workspace.error();
    if (!workspace->isAdmin())
        return forbidden("Only the workspace's administrators change its settings.");
    if (auto fault = nameFault(input.body.name); !fault.empty())
        return invalid("name", std::move(fault));
    if (!std::ranges::all_of(input.body.currency, [](char c) { return c >= 'A' && c <= 'Z'; }))
        return invalid("currency", "Enter the three letters of a currency, such as EUR.");
    const WorkspaceSettingsResponse settings = asKept(input.body);
    call.services.workspaces.setSettings(input.workspaceId, settings);
    return jsonAnswer(200, settings);
}

} // namespace

void addWorkspaceHandlers(Router &router)
{
    router.add<operations::CreateWorkspace>(createWorkspace);
    router.add<operations::GetWorkspaceSettings>(getSettings);
    router.add<operations::UpdateWorkspaceSettings>(updateSettings);
}

} // namespace orvane::server
