// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

class Database;

/// The projects of workspaces, read with their tasks. Names are compared without regard to case; archived
/// projects leave theirs free.
class ProjectRecords {
public:
    explicit ProjectRecords(Database &database) : m_database(database) {}

    /// In the order of names.
    std::vector<ProjectResponse> list(const std::string &workspaceId, bool withArchived);
    /// Those of another workspace are not there.
    std::optional<ProjectResponse> find(const std::string &workspaceId, const std::string &id);
    bool exists(const std::string &workspaceId, const std::string &id);
    /// Whether another one has the name that this one needs.
    bool isNameTaken(const ProjectResponse &project);
    /// Neither touches its tasks.
    void add(const ProjectResponse &project);
    void update(const ProjectResponse &project);
    /// Its tasks go with it. No entry may refer to either any more.
    void remove(const std::string &id);

private:
    Database &m_database;
};

} // namespace orvane::server
