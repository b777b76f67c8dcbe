// SPDX-License-Identifier: GPL-3.0-or-later
#include "Workspaces/Workspaces.h"

#include "Database/SqlTable.h"
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

struct OrganizationRecord {
    std::string id;
    std::string name;
};

const auto organizations = sqlTable<OrganizationRecord>(
    "organizations", fixedColumn("id", &OrganizationRecord::id), column("name", &OrganizationRecord::name));

struct WorkspaceRecord {
    std::string id;
    std::string organizationId;
    WorkspaceSettingsResponse settings;
    Instant createdAt;
};

template <class T>
constexpr auto setting(T WorkspaceSettingsResponse::*member)
{
    return [member](auto &record) -> auto & { return record.settings.*member; };
}

using Settings = WorkspaceSettingsResponse;
const auto workspaces = sqlTable<WorkspaceRecord>(
    "workspaces", fixedColumn("id", &WorkspaceRecord::id),
    fixedColumn("organization_id", &WorkspaceRecord::organizationId),
    column("name", setting(&Settings::name)), column("currency", setting(&Settings::currency)),
    column("default_hourly_rate", setting(&Settings::defaultHourlyRate)),
    column("only_admins_create_projects", setting(&Settings::onlyAdminsCreateProjects)),
    column("only_admins_create_tags", setting(&Settings::onlyAdminsCreateTags)),
    column("locked_before", setting(&Settings::lockedBefore)),
    column("require_description", setting(&Settings::requireDescription)),
    column("require_project", setting(&Settings::requireProject)),
    column("require_task", setting(&Settings::requireTask)),
    column("require_tag", setting(&Settings::requireTag)),
    fixedColumn("created_at", &WorkspaceRecord::createdAt));

} // namespace

std::string Workspaces::createOrganization(const std::string &name, const std::string &userId)
{
    const std::string id = newIdentifier();
    organizations.insert(m_database, {id, name});
    m_database.run("INSERT INTO organization_members (organization_id, user_id, role) VALUES (?, ?, ?)", id,
                   userId, jsonText(OrganizationRole::owner));
    return id;
}

std::string Workspaces::create(const std::string &name, const std::string &organizationId,
                               const std::string &userId, Instant now)
{
    WorkspaceRecord workspace{newIdentifier(), organizationId, {}, now};
    workspace.settings.name = name;
    workspace.settings.currency = "EUR";
    workspaces.insert(m_database, workspace);
    m_database.run("INSERT INTO workspace_members (workspace_id, user_id, role) VALUES (?, ?, ?)",
                   workspace.id, userId, jsonText(WorkspaceRole::owner));
    return workspace.id;
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

Workspaces::Others Workspaces::othersIn(const std::string &organizationId, const std::string &userId)
{
    Others others;
    for (const std::string &role : m_database.rows(
             "SELECT role FROM organization_members WHERE organization_id = ? AND user_id <> ?",
             [](const SqlRow &row) { return row.text(0); }, organizationId, userId)) {
        others.hasMembers = true;
        others.hasOwner = others.hasOwner || roleFrom<OrganizationRole>(role) == OrganizationRole::owner;
    }
    return others;
}

void Workspaces::removeOrganization(const std::string &organizationId)
{
    m_database.run("DELETE FROM organizations WHERE id = ?", organizationId);
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
    auto found = workspaces.first(m_database, "WHERE id = ?", workspaceId);
    return found ? std::optional{std::move(found->settings)} : std::nullopt;
}

void Workspaces::setSettings(const std::string &workspaceId, const WorkspaceSettingsResponse &settings)
{
    workspaces.update(m_database, {workspaceId, {}, settings, {}});
}

} // namespace orvane::server
