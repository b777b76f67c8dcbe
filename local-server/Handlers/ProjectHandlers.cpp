// SPDX-License-Identifier: GPL-3.0-or-later
#include "Handlers/CatalogAccess.h"
#include "Handlers/Router.h"
#include "Http/Problems.h"
#include "Records/NameText.h"
#include "Security/RandomText.h"

namespace orvane::server {

std::optional<HttpResponse> refusedRelease(Call &call, const WorkspaceAccess &workspace,
                                           EntryRecords::Reference kind, const std::string &id)
{
    const auto &lockedBefore = workspace.settings.lockedBefore;
    if (lockedBefore && EntryRecords(call.services.database).isUsedBefore(kind, id, *lockedBefore))
        return problem(403, "This is in use in locked time.", "Locked time keeps its details.",
                       timeLockedProblemType);
    return std::nullopt;
}

HttpResponse nameTaken(std::string_view what)
{
    return conflict("There is already a " + std::string(what) + " of that name.");
}

namespace {

CatalogRecords catalog(Call &call)
{
    return CatalogRecords(call.services.database);
}

Result<WorkspaceAccess, HttpResponse> enterToChange(Call &call, const std::string &workspaceId)
{
    auto workspace = enterWorkspace(call, workspaceId);
    if (workspace && workspace->settings.onlyAdminsCreateProjects && !workspace->isAdmin())
        return failure(forbidden("Only the workspace's administrators change its projects."));
    return workspace;
}

std::optional<HttpResponse> refusedProject(Call &call, const ProjectResponse &project)
{
    if (auto fault = nameFault(project.name); !fault.empty())
        return invalid("name", std::move(fault));
    if (hasControlCharacter(project.color))
        return invalid("color", "This is not a color.");
    if (project.clientId && !catalog(call).client(project.workspaceId, *project.clientId))
        return invalid("clientId", "There is no such client.");
    if (!project.isArchived &&
        catalog(call).isProjectNameTaken(project.workspaceId, project.name, project.id))
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

HttpResponse listProjects(Call &call, const operations::ListProjects::Input &input)
{
    if (const auto workspace = enterWorkspace(call, input.workspaceId); !workspace)
        return workspace.error();
    const auto archived = input.includeArchived.value_or(false) ? CatalogRecords::Archived::Included
                                                                : CatalogRecords::Archived::Excluded;
    return jsonAnswer(200, catalog(call).projects(input.workspaceId, archived));
}

HttpResponse createProject(Call &call, const operations::CreateProject::Input &input)
{
    if (const auto workspace = enterToChange(call, input.workspaceId); !workspace)
        return workspace.error();
    ProjectResponse project;
    project.id = newIdentifier();
    project.workspaceId = input.workspaceId;
    take(project, input.body);
    if (auto refusal = refusedProject(call, project))
        return std::move(*refusal);
    catalog(call).addProject(project);
    return jsonAnswer(201, project);
}

HttpResponse getProject(Call &call, const operations::GetProject::Input &input)
{
    if (const auto workspace = enterWorkspace(call, input.workspaceId); !workspace)
        return workspace.error();
    const auto project = catalog(call).project(input.workspaceId, input.projectId);
    return project ? jsonAnswer(200, *project) : noSuch("project");
}

/// Changes a project through `change` and keeps it if nothing speaks against it.
template <class Change>
HttpResponse changeProject(Call &call, const std::string &workspaceId, const std::string &projectId,
                           Change change)
{
    if (const auto workspace = enterToChange(call, workspaceId); !workspace)
        return workspace.error();
    auto project = catalog(call).project(workspaceId, projectId);
    if (!project)
        return noSuch("project");
    change(*project);
    if (auto refusal = refusedProject(call, *project))
        return std::move(*refusal);
    catalog(call).updateProject(*project);
    return jsonAnswer(200, *project);
}

HttpResponse updateProject(Call &call, const operations::UpdateProject::Input &input)
{
    return changeProject(call, input.workspaceId, input.projectId,
                         [&](ProjectResponse &project) { take(project, input.body); });
}

HttpResponse archiveProject(Call &call, const operations::ArchiveProject::Input &input)
{
    return changeProject(call, input.workspaceId, input.projectId,
                         [](ProjectResponse &project) { project.isArchived = true; });
}

HttpResponse restoreProject(Call &call, const operations::RestoreProject::Input &input)
{
    return changeProject(call, input.workspaceId, input.projectId,
                         [](ProjectResponse &project) { project.isArchived = false; });
}

HttpResponse deleteProject(Call &call, const operations::DeleteProject::Input &input)
{
    const auto workspace = enterToChange(call, input.workspaceId);
    if (!workspace)
        return workspace.error();
    if (!catalog(call).hasProject(input.workspaceId, input.projectId))
        return noSuch("project");
    constexpr auto kind = EntryRecords::Reference::Project;
    if (auto refusal = refusedRelease(call, *workspace, kind, input.projectId))
        return std::move(*refusal);
    EntryRecords(call.services.database).release(kind, input.projectId);
    catalog(call).removeProject(input.projectId);
    return noBody(204);
}

std::optional<HttpResponse> refusedTask(Call &call, const TaskResponse &task)
{
    if (auto fault = nameFault(task.name); !fault.empty())
        return invalid("name", std::move(fault));
    if (catalog(call).isTaskNameTaken(task.projectId, task.name, task.id))
        return nameTaken("task");
    return std::nullopt;
}

HttpResponse createTask(Call &call, const operations::CreateTask::Input &input)
{
    if (const auto workspace = enterToChange(call, input.workspaceId); !workspace)
        return workspace.error();
    if (!catalog(call).hasProject(input.workspaceId, input.projectId))
        return noSuch("project");
    const TaskResponse task{newIdentifier(), input.projectId, trimmed(input.body.name),
                            input.body.isActive.value_or(true)};
    if (auto refusal = refusedTask(call, task))
        return std::move(*refusal);
    catalog(call).addTask(task);
    return jsonAnswer(201, task);
}

HttpResponse updateTask(Call &call, const operations::UpdateTask::Input &input)
{
    if (const auto workspace = enterToChange(call, input.workspaceId); !workspace)
        return workspace.error();
    auto task = catalog(call).hasProject(input.workspaceId, input.projectId)
                    ? catalog(call).task(input.projectId, input.taskId)
                    : std::nullopt;
    if (!task)
        return noSuch("task");
    task->name = trimmed(input.body.name);
    task->isActive = input.body.isActive.value_or(task->isActive);
    if (auto refusal = refusedTask(call, *task))
        return std::move(*refusal);
    catalog(call).updateTask(*task);
    return jsonAnswer(200, *task);
}

HttpResponse deleteTask(Call &call, const operations::DeleteTask::Input &input)
{
    const auto workspace = enterToChange(call, input.workspaceId);
    if (!workspace)
        return workspace.error();
    if (!catalog(call).hasProject(input.workspaceId, input.projectId) ||
        !catalog(call).task(input.projectId, input.taskId))
        return noSuch("task");
    constexpr auto kind = EntryRecords::Reference::Task;
    if (auto refusal = refusedRelease(call, *workspace, kind, input.taskId))
        return std::move(*refusal);
    EntryRecords(call.services.database).release(kind, input.taskId);
    catalog(call).removeTask(input.taskId);
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
    router.add<operations::CreateTask>(createTask);
    router.add<operations::UpdateTask>(updateTask);
    router.add<operations::DeleteTask>(deleteTask);
}

} // namespace orvane::server
