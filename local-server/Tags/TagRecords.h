// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

class Database;

/// The tags of workspaces. No two of a workspace have one name, without regard to case.
class TagRecords {
public:
    explicit TagRecords(Database &database) : m_database(database) {}

    /// In the order of names.
    std::vector<TagResponse> list(const std::string &workspaceId);
    /// Those of another workspace are not there.
    std::optional<TagResponse> find(const std::string &workspaceId, const std::string &id);
    /// Whether another one has the name that this one needs.
    bool isNameTaken(const TagResponse &tag);
    void add(const TagResponse &tag);
    void update(const TagResponse &tag);
    /// No entry may refer to it any more.
    void remove(const std::string &id);

private:
    Database &m_database;
};

} // namespace orvane::server
