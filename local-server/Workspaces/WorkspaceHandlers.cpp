// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Requests/Router.h"

#include <algorithm>

namespace orvane::server {

namespace {

struct ChangeSettings {
    static bool isHeldBy(const WorkspaceAccess &workspace) { return workspace.isAdmin(); }
    static constexpr std::string_view refusal = "Only the workspace's administrators change its settings.";
};

HttpResponse createWorkspace(Call &call, const operations::CreateWorkspace::Input &input)
{
    Workspaces &workspaces = call.workspaces;
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
    call.changedMe();
    return jsonAnswer(201, WorkspaceSummary{id, organizationId, name, WorkspaceRole::owner});
}

HttpResponse getSettings(Call &, const WorkspaceAccess &workspace,
                         const operations::GetWorkspaceSettings::Input &)
{
    return jsonAnswer(200, workspace.settings());
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

HttpResponse updateSettings(Call &call, const WorkspaceRight<ChangeSettings> &workspace,
                            const operations::UpdateWorkspaceSettings::Input &input)
{
    if (auto fault = nameFault(input.body.name); !fault.empty())
        return invalid("name", std::move(fault));
    if (!std::ranges::all_of(input.body.currency, [](char c) { return c >= 'A' && c <= 'Z'; }))
        return invalid("currency", "Enter the three letters of a currency, such as EUR.");
    const WorkspaceSettingsResponse settings = asKept(input.body);
    call.workspaces.setSettings(workspace.id(), settings);
    call.changedInWorkspace(ChangeTopic::settings, workspace.id());
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
