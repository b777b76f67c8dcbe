// SPDX-License-Identifier: GPL-3.0-or-later
#include "Clients/ClientRecords.h"
#include "Entries/EntryReferences.h"
#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Projects/ProjectAccess.h"
#include "Projects/ProjectRecords.h"
#include "Requests/Router.h"
#include "Security/RandomText.h"

namespace orvane::server {

namespace {

ProjectRecords projects(Call &call)
{
    return ProjectRecords(call.database);
}

std::optional<HttpResponse> refusedProject(Call &call, const ProjectResponse &project)
{
    if (auto fault = nameFault(project.name); !fault.empty())
        return invalid("name", std::move(fault));
    if (hasControlCharacter(project.color))
        return invalid("color", "This is not a color.");
    if (project.clientId && !ClientRecords(call.database).find(project.workspaceId, *project.clientId))
        return invalid("clientId", "There is no such client.");
    if (projects(call).isNameTaken(project))
        return nameTaken("project");
    return std::nullopt;
}

void take(ProjectResponse &project, const ProjectRequest &fields)
{
    project.name = trimmed(fields.name);
    project.clientId = fields.clientId;
    project.color = fields.color;
    project.isPrivate = fields.isPrivate;
    project.isBillable = fields.isBillable;
    project.estimateSeconds = fields.estimateSeconds;
    project.hourlyRate = fields.hourlyRate;
}

HttpResponse listProjects(Call &call, const WorkspaceAccess &workspace,
                          const operations::ListProjects::Input &input)
{
    return jsonAnswer(200, projects(call).list(workspace.id(), input.includeArchived.value_or(false)));
}

HttpResponse createProject(Call &call, const ProjectEditor &workspace,
                           const operations::CreateProject::Input &input)
{
    ProjectResponse project;
    project.id = newIdentifier();
    project.workspaceId = workspace.id();
    take(project, input.body);
    if (auto refusal = refusedProject(call, project))
        return std::move(*refusal);
    projects(call).add(project);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return jsonAnswer(201, project);
}

HttpResponse getProject(Call &call, const WorkspaceAccess &workspace,
                        const operations::GetProject::Input &input)
{
    const auto project = projects(call).find(workspace.id(), input.projectId);
    return project ? jsonAnswer(200, *project) : noSuch("project");
}

/// Changes a project through `change` and keeps it if nothing speaks against it.
template <class Change>
HttpResponse changeProject(Call &call, const ProjectEditor &workspace, const std::string &projectId,
                           Change change)
{
    auto project = projects(call).find(workspace.id(), projectId);
    if (!project)
        return noSuch("project");
    change(*project);
    if (auto refusal = refusedProject(call, *project))
        return std::move(*refusal);
    projects(call).update(*project);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return jsonAnswer(200, *project);
}

HttpResponse updateProject(Call &call, const ProjectEditor &workspace,
                           const operations::UpdateProject::Input &input)
{
    return changeProject(call, workspace, input.projectId,
                         [&](ProjectResponse &project) { take(project, input.body); });
}

HttpResponse archiveProject(Call &call, const ProjectEditor &workspace,
                            const operations::ArchiveProject::Input &input)
{
    return changeProject(call, workspace, input.projectId,
                         [](ProjectResponse &project) { project.isArchived = true; });
}

HttpResponse restoreProject(Call &call, const ProjectEditor &workspace,
                            const operations::RestoreProject::Input &input)
{
    return changeProject(call, workspace, input.projectId,
                         [](ProjectResponse &project) { project.isArchived = false; });
}

HttpResponse deleteProject(Call &call, const ProjectEditor &workspace,
                           const operations::DeleteProject::Input &input)
{
    if (!projects(call).exists(workspace.id(), input.projectId))
        return noSuch("project");
    if (auto refusal = releaseReferences(call, workspace, EntryReference::project, input.projectId))
        return std::move(*refusal);
    projects(call).remove(input.projectId);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return noBody(204);
}

} // namespace

void addProjectHandlers(Router &router)
{
    router.add<operations::ListProjects>(listProjects);
    router.add<operations::CreateProject>(createProject);
    router.add<operations::GetProject>(getProject);
    router.add<operations::UpdateProject>(updateProject);
    router.add<operations::ArchiveProject>(archiveProject);
    router.add<operations::RestoreProject>(restoreProject);
    router.add<operations::DeleteProject>(deleteProject);
}

} // namespace orvane::server
