// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

class Database;

/// The tasks of projects. No two of a project have one name, without regard to case.
class TaskRecords {
public:
    explicit TaskRecords(Database &database) : m_database(database) {}

    /// Both in the order of names.
    std::vector<TaskResponse> ofProject(const std::string &projectId);
    std::vector<TaskResponse> ofWorkspace(const std::string &workspaceId);
    /// Those of another project are not there.
    std::optional<TaskResponse> find(const std::string &projectId, const std::string &id);
    /// Whether another one has the name that this one needs.
    bool isNameTaken(const TaskResponse &task);
    void add(const TaskResponse &task);
    void update(const TaskResponse &task);
    /// No entry may refer to it any more.
    void remove(const std::string &id);

private:
    Database &m_database;
};

} // namespace orvane::server
