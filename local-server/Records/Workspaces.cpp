// SPDX-License-Identifier: GPL-3.0-or-later
#include "Records/Workspaces.h"

#include "Database/Database.h"
#include "Security/RandomText.h"

namespace orvane::server {

namespace {

template <class Role>
Role roleFrom(const std::string &text)
{
    for (const auto &[role, name] : JsonEnum<Role>::list) {
        if (name == text)
            return role;
    }
    return Role::member;
}

} // namespace

std::string Workspaces::createOrganization(const std::string &name, const std::string &userId)
{
    const std::string id = newIdentifier();
    m_database.run("INSERT INTO organizations (id, name) VALUES (?, ?)", id, name);
    m_database.run("INSERT INTO organization_members (organization_id, user_id, role) VALUES (?, ?, ?)", id,
                   userId, jsonText(OrganizationRole::owner));
    return id;
}

std::string Workspaces::create(const std::string &name, const std::string &organizationId,
                               const std::string &userId, Instant now)
{
    const std::string id = newIdentifier();
    m_database.run(
        "INSERT INTO workspaces (id, organization_id, name, currency, only_admins_create_projects, "
        "only_admins_create_tags, require_description, require_project, require_task, "
        "require_tag, created_at) VALUES (?, ?, ?, 'EUR', 0, 0, 0, 0, 0, 0, ?)",
        id, organizationId, name, millisecondsSinceEpoch(now));
    m_database.run("INSERT INTO workspace_members (workspace_id, user_id, role) VALUES (?, ?, ?)", id, userId,
                   jsonText(WorkspaceRole::owner));
    return id;
}

std::vector<OrganizationSummary> Workspaces::organizationsOf(const std::string &userId)
{
    return m_database.rows(
        "SELECT o.id, o.name, m.role FROM organization_members m JOIN organizations o "
        "ON o.id = m.organization_id WHERE m.user_id = ? ORDER BY o.name, o.id",
        [](const SqlRow &row) {
            return OrganizationSummary{row.text(0), row.text(1), roleFrom<OrganizationRole>(row.text(2))};
        },
        userId);
}

std::optional<OrganizationRole> Workspaces::roleInOrganization(const std::string &organizationId,
                                                               const std::string &userId)
{
    return m_database.row(
        "SELECT role FROM organization_members WHERE organization_id = ? AND user_id = ?",
        [](const SqlRow &row) { return roleFrom<OrganizationRole>(row.text(0)); }, organizationId, userId);
}

std::vector<WorkspaceSummary> Workspaces::of(const std::string &userId)
{
    return m_database.rows(
        "SELECT w.id, w.organization_id, w.name, m.role FROM workspace_members m JOIN workspaces w "
        "ON w.id = m.workspace_id WHERE m.user_id = ? ORDER BY w.created_at, w.id",
        [](const SqlRow &row) {
            return WorkspaceSummary{row.text(0), row.text(1), row.text(2),
                                    roleFrom<WorkspaceRole>(row.text(3))};
        },
        userId);
}

std::optional<WorkspaceRole> Workspaces::role(const std::string &workspaceId, const std::string &userId)
{
    return m_database.row(
        "SELECT role FROM workspace_members WHERE workspace_id = ? AND user_id = ?",
        [](const SqlRow &row) { return roleFrom<WorkspaceRole>(row.text(0)); }, workspaceId, userId);
}

std::optional<WorkspaceSettingsResponse> Workspaces::settings(const std::string &workspaceId)
{
    return m_database.row(
        "SELECT name, currency, default_hourly_rate, only_admins_create_projects, only_admins_create_tags, "
        "locked_before, require_description, require_project, require_task, require_tag FROM workspaces "
        "WHERE id = ?",
        [](const SqlRow &row) {
            WorkspaceSettingsResponse out;
            out.name = row.text(0);
            out.currency = row.text(1);
            out.defaultHourlyRate = row.optionalReal(2);
            out.onlyAdminsCreateProjects = row.boolean(3);
            out.onlyAdminsCreateTags = row.boolean(4);
            if (const auto lockedBefore = row.optionalInteger(5))
                out.lockedBefore = instantFromMilliseconds(*lockedBefore);
            out.requireDescription = row.boolean(6);
            out.requireProject = row.boolean(7);
            out.requireTask = row.boolean(8);
            out.requireTag = row.boolean(9);
            return out;
        },
        workspaceId);
}

void Workspaces::setSettings(const std::string &workspaceId, const WorkspaceSettingsResponse &settings)
{
    const auto lockedBefore =
        settings.lockedBefore ? std::optional{millisecondsSinceEpoch(*settings.lockedBefore)} : std::nullopt;
    m_database.run("UPDATE workspaces SET name = ?, currency = ?, default_hourly_rate = ?, "
                   "only_admins_create_projects = ?, only_admins_create_tags = ?, locked_before = ?, "
                   "require_description = ?, require_project = ?, require_task = ?, require_tag = ? "
                   "WHERE id = ?",
                   settings.name, settings.currency, settings.defaultHourlyRate,
                   settings.onlyAdminsCreateProjects, settings.onlyAdminsCreateTags, lockedBefore,
                   settings.requireDescription, settings.requireProject, settings.requireTask,
                   settings.requireTag, workspaceId);
}

} // namespace orvane::server
