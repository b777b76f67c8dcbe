// SPDX-License-Identifier: GPL-3.0-or-later
#include "Entries/EntryReferences.h"
#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Projects/ProjectAccess.h"
#include "Projects/ProjectRecords.h"
#include "Projects/TaskRecords.h"
#include "Requests/Router.h"
#include "Security/RandomText.h"

namespace orvane::server {

namespace {

TaskRecords tasks(Call &call)
{
    return TaskRecords(call.database);
}

bool hasProject(Call &call, const WorkspaceAccess &workspace, const std::string &projectId)
{
    return ProjectRecords(call.database).exists(workspace.id(), projectId);
}

std::optional<HttpResponse> refusedTask(Call &call, const TaskResponse &task)
{
    if (auto fault = nameFault(task.name); !fault.empty())
        return invalid("name", std::move(fault));
    if (tasks(call).isNameTaken(task))
        return nameTaken("task");
    return std::nullopt;
}

HttpResponse createTask(Call &call, const ProjectEditor &workspace,
                        const operations::CreateTask::Input &input)
{
    if (!hasProject(call, workspace, input.projectId))
        return noSuch("project");
    const TaskResponse task{newIdentifier(), input.projectId, trimmed(input.body.name),
                            input.body.isActive.value_or(true)};
    if (auto refusal = refusedTask(call, task))
        return std::move(*refusal);
    tasks(call).add(task);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return jsonAnswer(201, task);
}

HttpResponse updateTask(Call &call, const ProjectEditor &workspace,
                        const operations::UpdateTask::Input &input)
{
    auto task = hasProject(call, workspace, input.projectId) ? tasks(call).find(input.projectId, input.taskId)
                                                             : std::nullopt;
    if (!task)
        return noSuch("task");
    task->name = trimmed(input.body.name);
    task->isActive = input.body.isActive.value_or(task->isActive);
    if (auto refusal = refusedTask(call, *task))
        return std::move(*refusal);
    tasks(call).update(*task);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return jsonAnswer(200, *task);
}

HttpResponse deleteTask(Call &call, const ProjectEditor &workspace,
                        const operations::DeleteTask::Input &input)
{
    if (!hasProject(call, workspace, input.projectId) || !tasks(call).find(input.projectId, input.taskId))
        return noSuch("task");
    if (auto refusal = releaseReferences(call, workspace, EntryReference::task, input.taskId))
        return std::move(*refusal);
    tasks(call).remove(input.taskId);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return noBody(204);
}

} // namespace

void addTaskHandlers(Router &router)
{
    router.add<operations::CreateTask>(createTask);
    router.add<operations::UpdateTask>(updateTask);
    router.add<operations::DeleteTask>(deleteTask);
}

} // namespace orvane::server
