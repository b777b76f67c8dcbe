// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

class Database;

/// Organizations, their workspaces and who belongs to them.
class Workspaces {
public:
    explicit Workspaces(Database &database) : m_database(database) {}

    /// Both make the user its owner and answer the new identifier.
    std::string createOrganization(const std::string &name, const std::string &userId);
    std::string create(const std::string &name, const std::string &organizationId, const std::string &userId,
                       Instant now);

    std::vector<OrganizationSummary> organizationsOf(const std::string &userId);
    std::optional<OrganizationRole> roleInOrganization(const std::string &organizationId,
                                                       const std::string &userId);
    /// Whether anybody beside the user belongs to it, and an owner among them.
    struct Others {
        bool hasMembers = false;
        bool hasOwner = false;
    };
    Others othersIn(const std::string &organizationId, const std::string &userId);
    /// With its workspaces and all that is in them.
    void removeOrganization(const std::string &organizationId);
    /// In the order in which they were made.
    std::vector<WorkspaceSummary> of(const std::string &userId);
    /// Nothing for who does not belong to it, or when there is no such workspace.
    std::optional<WorkspaceRole> role(const std::string &workspaceId, const std::string &userId);

    std::optional<WorkspaceSettingsResponse> settings(const std::string &workspaceId);
    void setSettings(const std::string &workspaceId, const WorkspaceSettingsResponse &settings);

private:
    Database &m_database;
};

} // namespace orvane::server
