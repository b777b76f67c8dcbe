// SPDX-License-Identifier: GPL-3.0-or-later
// The projects and tasks of CatalogRecords.
#include "Database/Database.h"
#include "Records/CatalogRecords.h"
#include "Records/NameText.h"

#include <map>

namespace orvane::server {

namespace {

ProjectResponse projectFrom(const SqlRow &row)
{
    ProjectResponse project;
    project.id = row.text(0);
    project.workspaceId = row.text(1);
    project.name = row.text(2);
    project.clientId = row.optionalText(3);
    project.color = row.text(4);
    project.isPrivate = row.boolean(5);
    project.isBillable = row.boolean(6);
    project.estimateSeconds = row.optionalInteger(7);
    project.hourlyRate = row.optionalReal(8);
    project.isArchived = row.boolean(9);
    return project;
}

TaskResponse taskFrom(const SqlRow &row)
{
    TaskResponse task;
    task.id = row.text(0);
    task.projectId = row.text(1);
    task.name = row.text(2);
    task.isActive = row.boolean(3);
    return task;
}

#define ORVANE_PROJECT_COLUMNS                                                                               \
    "SELECT id, workspace_id, name, client_id, color, is_private, is_billable, estimate_seconds, "           \
    "hourly_rate, is_archived FROM projects "
#define ORVANE_TASK_COLUMNS "SELECT t.id, t.project_id, t.name, t.is_active FROM tasks t "

} // namespace

std::vector<ProjectResponse> CatalogRecords::projects(const std::string &workspaceId, Archived archived)
{
    auto projects = m_database.rows(ORVANE_PROJECT_COLUMNS
                                    "WHERE workspace_id = ? AND is_archived <= ? ORDER BY name_key, id",
                                    projectFrom, workspaceId, archived == Archived::Included);
    std::map<std::string, std::vector<TaskResponse>> tasks;
    for (TaskResponse &task : m_database.rows(
             ORVANE_TASK_COLUMNS
             "JOIN projects p ON p.id = t.project_id WHERE p.workspace_id = ? ORDER BY t.name_key",
             taskFrom, workspaceId))
        tasks[task.projectId].push_back(std::move(task));
    for (ProjectResponse &project : projects)
        project.tasks = std::move(tasks[project.id]);
    return projects;
}

std::optional<ProjectResponse> CatalogRecords::project(const std::string &workspaceId, const std::string &id)
{
    auto project = m_database.row(ORVANE_PROJECT_COLUMNS "WHERE id = ? AND workspace_id = ?", projectFrom, id,
                                  workspaceId);
    if (project)
        project->tasks = tasksOf(id);
    return project;
}

std::vector<TaskResponse> CatalogRecords::tasksOf(const std::string &projectId)
{
    return m_database.rows(ORVANE_TASK_COLUMNS "WHERE t.project_id = ? ORDER BY t.name_key", taskFrom,
                           projectId);
}

bool CatalogRecords::hasProject(const std::string &workspaceId, const std::string &id)
{
    return m_database.exists("SELECT 1 FROM projects WHERE id = ? AND workspace_id = ?", id, workspaceId);
}

bool CatalogRecords::isProjectNameTaken(const std::string &workspaceId, const std::string &name,
                                        const std::string &exceptId)
{
    return m_database.exists(
        "SELECT 1 FROM projects WHERE workspace_id = ? AND name_key = ? AND is_archived = 0 AND id <> ?",
        workspaceId, nameKey(name), exceptId);
}

void CatalogRecords::addProject(const ProjectResponse &project)
{
    m_database.run("INSERT INTO projects (id, workspace_id, name, name_key, client_id, color, is_private, "
                   "is_billable, estimate_seconds, hourly_rate, is_archived) "
                   "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                   project.id, project.workspaceId, project.name, nameKey(project.name), project.clientId,
                   project.color, project.isPrivate, project.isBillable, project.estimateSeconds,
                   project.hourlyRate, project.isArchived);
}

void CatalogRecords::updateProject(const ProjectResponse &project)
{
    m_database.run("UPDATE projects SET name = ?, name_key = ?, client_id = ?, color = ?, is_private = ?, "
                   "is_billable = ?, estimate_seconds = ?, hourly_rate = ?, is_archived = ? WHERE id = ?",
                   project.name, nameKey(project.name), project.clientId, project.color, project.isPrivate,
                   project.isBillable, project.estimateSeconds, project.hourlyRate, project.isArchived,
                   project.id);
}

void CatalogRecords::removeProject(const std::string &id)
{
    m_database.run("DELETE FROM projects WHERE id = ?", id);
}

std::optional<TaskResponse> CatalogRecords::task(const std::string &projectId, const std::string &id)
{
    return m_database.row(ORVANE_TASK_COLUMNS "WHERE t.id = ? AND t.project_id = ?", taskFrom, id, projectId);
}

bool CatalogRecords::isTaskNameTaken(const std::string &projectId, const std::string &name,
                                     const std::string &exceptId)
{
    return m_database.exists("SELECT 1 FROM tasks WHERE project_id = ? AND name_key = ? AND id <> ?",
                             projectId, nameKey(name), exceptId);
}

void CatalogRecords::addTask(const TaskResponse &task)
{
    m_database.run("INSERT INTO tasks (id, project_id, name, name_key, is_active) VALUES (?, ?, ?, ?, ?)",
                   task.id, task.projectId, task.name, nameKey(task.name), task.isActive);
}

void CatalogRecords::updateTask(const TaskResponse &task)
{
    m_database.run("UPDATE tasks SET name = ?, name_key = ?, is_active = ? WHERE id = ?", task.name,
                   nameKey(task.name), task.isActive, task.id);
}

void CatalogRecords::removeTask(const std::string &id)
{
    m_database.run("DELETE FROM tasks WHERE id = ?", id);
}

} // namespace orvane::server
