// SPDX-License-Identifier: GPL-3.0-or-later
#include "Projects/TaskRecords.h"

#include "Database/SqlTable.h"
#include "Names/NameText.h"

namespace orvane::server {

namespace {

const auto taskTable = sqlTable<TaskResponse>(
    "tasks", fixedColumn("id", &TaskResponse::id), fixedColumn("project_id", &TaskResponse::projectId),
    column("name", &TaskResponse::name),
    derivedColumn("name_key", [](const TaskResponse &task) { return nameKey(task.name); }),
    column("is_active", &TaskResponse::isActive));

} // namespace

std::vector<TaskResponse> TaskRecords::ofProject(const std::string &projectId)
{
    return taskTable.all(m_database, "WHERE project_id = ? ORDER BY name_key", projectId);
}

std::vector<TaskResponse> TaskRecords::ofWorkspace(const std::string &workspaceId)
{
    return taskTable.all(
        m_database, "WHERE project_id IN (SELECT id FROM projects WHERE workspace_id = ?) ORDER BY name_key",
        workspaceId);
}

std::optional<TaskResponse> TaskRecords::find(const std::string &projectId, const std::string &id)
{
    return taskTable.first(m_database, "WHERE id = ? AND project_id = ?", id, projectId);
}

bool TaskRecords::isNameTaken(const TaskResponse &task)
{
    return m_database.exists("SELECT 1 FROM tasks WHERE project_id = ? AND name_key = ? AND id <> ?",
                             task.projectId, nameKey(task.name), task.id);
}

void TaskRecords::add(const TaskResponse &task)
{
    taskTable.insert(m_database, task);
}

void TaskRecords::update(const TaskResponse &task)
{
    taskTable.update(m_database, task);
}

void TaskRecords::remove(const std::string &id)
{
    m_database.run("DELETE FROM tasks WHERE id = ?", id);
}

} // namespace orvane::server
