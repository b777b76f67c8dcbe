// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

class Database;

/// The projects, tasks, clients and tags of workspaces. Identifiers are looked up together with the workspace
/// (or project) that they are asked for in: those of another are not there. Lists are in the order of names.
///
/// Names are compared without regard to case. Of projects and clients the archived ones leave their names
/// free; a project's tasks and a workspace's tags have no two alike.
class CatalogRecords {
public:
    explicit CatalogRecords(Database &database) : m_database(database) {}

    enum class Archived { Excluded, Included };

    std::vector<ProjectResponse> projects(const std::string &workspaceId, Archived archived);
    std::optional<ProjectResponse> project(const std::string &workspaceId, const std::string &id);
    bool hasProject(const std::string &workspaceId, const std::string &id);
    bool isProjectNameTaken(const std::string &workspaceId, const std::string &name,
                            const std::string &exceptId);
    void addProject(const ProjectResponse &project);
    void updateProject(const ProjectResponse &project);
    /// Its tasks go with it. No entry may refer to either any more.
    void removeProject(const std::string &id);

    std::optional<TaskResponse> task(const std::string &projectId, const std::string &id);
    bool isTaskNameTaken(const std::string &projectId, const std::string &name, const std::string &exceptId);
    void addTask(const TaskResponse &task);
    void updateTask(const TaskResponse &task);
    void removeTask(const std::string &id);

    std::vector<ClientResponse> clients(const std::string &workspaceId, Archived archived);
    std::optional<ClientResponse> client(const std::string &workspaceId, const std::string &id);
    bool isClientNameTaken(const std::string &workspaceId, const std::string &name,
                           const std::string &exceptId);
    void addClient(const ClientResponse &client);
    void updateClient(const ClientResponse &client);
    /// Its projects stay, without a client.
    void removeClient(const std::string &id);

    std::vector<TagResponse> tags(const std::string &workspaceId);
    std::optional<TagResponse> tag(const std::string &workspaceId, const std::string &id);
    bool isTagNameTaken(const std::string &workspaceId, const std::string &name, const std::string &exceptId);
    void addTag(const TagResponse &tag);
    void updateTag(const TagResponse &tag);
    void removeTag(const std::string &id);

private:
    std::vector<TaskResponse> tasksOf(const std::string &projectId);

    Database &m_database;
};

} // namespace orvane::server
