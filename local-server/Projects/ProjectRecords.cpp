// SPDX-License-Identifier: GPL-3.0-or-later
#include "Projects/ProjectRecords.h"

#include "Database/SqlTable.h"
#include "Names/NameText.h"
#include "Projects/TaskRecords.h"

#include <map>

namespace orvane::server {

namespace {

const auto projectTable = sqlTable<ProjectResponse>(
    "projects", fixedColumn("id", &ProjectResponse::id),
    fixedColumn("workspace_id", &ProjectResponse::workspaceId), column("name", &ProjectResponse::name),
    derivedColumn("name_key", [](const ProjectResponse &project) { return nameKey(project.name); }),
    column("client_id", &ProjectResponse::clientId), column("color", &ProjectResponse::color),
    column("is_private", &ProjectResponse::isPrivate), column("is_billable", &ProjectResponse::isBillable),
    column("estimate_seconds", &ProjectResponse::estimateSeconds),
    column("hourly_rate", &ProjectResponse::hourlyRate), column("is_archived", &ProjectResponse::isArchived));

} // namespace

std::vector<ProjectResponse> ProjectRecords::list(const std::string &workspaceId, bool withArchived)
{
    auto found =
        projectTable.all(m_database, "WHERE workspace_id = ? AND is_archived <= ? ORDER BY name_key, id",
                         workspaceId, withArchived);
    std::map<std::string, std::vector<TaskResponse>> tasks;
    for (TaskResponse &task : TaskRecords(m_database).ofWorkspace(workspaceId))
        tasks[task.projectId].push_back(std::move(task));
    for (ProjectResponse &project : found)
        project.tasks = std::move(tasks[project.id]);
    return found;
}

std::optional<ProjectResponse> ProjectRecords::find(const std::string &workspaceId, const std::string &id)
{
    auto project = projectTable.first(m_database, "WHERE id = ? AND workspace_id = ?", id, workspaceId);
    if (project)
        project->tasks = TaskRecords(m_database).ofProject(id);
    return project;
}

bool ProjectRecords::exists(const std::string &workspaceId, const std::string &id)
{
    return m_database.exists("SELECT 1 FROM projects WHERE id = ? AND workspace_id = ?", id, workspaceId);
}

bool ProjectRecords::isNameTaken(const ProjectResponse &project)
{
    return !project.isArchived &&
           m_database.exists("SELECT 1 FROM projects WHERE workspace_id = ? AND name_key = ? AND "
                             "is_archived = 0 AND id <> ?",
                             project.workspaceId, nameKey(project.name), project.id);
}

void ProjectRecords::add(const ProjectResponse &project)
{
    projectTable.insert(m_database, project);
}

void ProjectRecords::update(const ProjectResponse &project)
{
    projectTable.update(m_database, project);
}

void ProjectRecords::remove(const std::string &id)
{
    m_database.run("DELETE FROM projects WHERE id = ?", id);
}

} // namespace orvane::server
