// SPDX-License-Identifier: GPL-3.0-or-later
#include "Database/Migrations.h"

#include "Database/Database.h"

#include <span>

namespace orvane::server {

namespace {

// Instants are milliseconds since 1970 (BIGINT), truth values 0 or 1 (INTEGER), identifiers TEXT. A name_key
// is a name folded for comparing; ends_at is stop_at, or the end of time while there is none. Only what both
// SQLite and PostgreSQL understand is used.
constexpr std::string_view firstVersion[] = {
    R"(CREATE TABLE server_keys (name TEXT PRIMARY KEY, value TEXT NOT NULL))",

    R"(CREATE TABLE users (
        id TEXT PRIMARY KEY,
        email TEXT NOT NULL,
        email_key TEXT NOT NULL UNIQUE,
        email_confirmed INTEGER NOT NULL,
        password_hash TEXT,
        full_name TEXT NOT NULL,
        time_zone TEXT NOT NULL,
        default_workspace_id TEXT,
        is_local INTEGER NOT NULL,
        created_at BIGINT NOT NULL))",
    R"(CREATE TABLE preferences (
        user_id TEXT PRIMARY KEY REFERENCES users (id) ON DELETE CASCADE,
        week_start INTEGER NOT NULL,
        date_format TEXT NOT NULL,
        time_format TEXT NOT NULL,
        duration_format TEXT NOT NULL,
        pomodoro_enabled INTEGER NOT NULL,
        pomodoro_minutes INTEGER NOT NULL,
        pomodoro_break_minutes INTEGER NOT NULL,
        pomodoro_auto_stop INTEGER NOT NULL))",
    R"(CREATE TABLE first_steps (
        user_id TEXT NOT NULL REFERENCES users (id) ON DELETE CASCADE,
        position INTEGER NOT NULL,
        step TEXT NOT NULL,
        PRIMARY KEY (user_id, position)))",

    R"(CREATE TABLE sessions (
        id TEXT PRIMARY KEY,
        user_id TEXT NOT NULL REFERENCES users (id) ON DELETE CASCADE,
        device_name TEXT,
        is_local INTEGER NOT NULL,
        created_at BIGINT NOT NULL,
        last_used_at BIGINT NOT NULL,
        expires_at BIGINT NOT NULL))",
    R"(CREATE INDEX sessions_by_user ON sessions (user_id))",
    R"(CREATE INDEX sessions_by_expiry ON sessions (expires_at))",
    R"(CREATE TABLE refresh_tokens (
        digest TEXT PRIMARY KEY,
        session_id TEXT NOT NULL REFERENCES sessions (id) ON DELETE CASCADE,
        state TEXT NOT NULL,
        issued_at BIGINT NOT NULL,
        expires_at BIGINT NOT NULL))",
    R"(CREATE INDEX refresh_tokens_by_session ON refresh_tokens (session_id, state))",

    R"(CREATE TABLE organizations (id TEXT PRIMARY KEY, name TEXT NOT NULL))",
    R"(CREATE TABLE organization_members (
        organization_id TEXT NOT NULL REFERENCES organizations (id) ON DELETE CASCADE,
        user_id TEXT NOT NULL REFERENCES users (id) ON DELETE CASCADE,
        role TEXT NOT NULL,
        PRIMARY KEY (organization_id, user_id)))",
    R"(CREATE INDEX organization_members_by_user ON organization_members (user_id))",
    R"(CREATE TABLE workspaces (
        id TEXT PRIMARY KEY,
        organization_id TEXT NOT NULL REFERENCES organizations (id) ON DELETE CASCADE,
        name TEXT NOT NULL,
        currency TEXT NOT NULL,
        default_hourly_rate DOUBLE PRECISION,
        only_admins_create_projects INTEGER NOT NULL,
        only_admins_create_tags INTEGER NOT NULL,
        locked_before BIGINT,
        require_description INTEGER NOT NULL,
        require_project INTEGER NOT NULL,
        require_task INTEGER NOT NULL,
        require_tag INTEGER NOT NULL,
        created_at BIGINT NOT NULL))",
    R"(CREATE TABLE workspace_members (
        workspace_id TEXT NOT NULL REFERENCES workspaces (id) ON DELETE CASCADE,
        user_id TEXT NOT NULL REFERENCES users (id) ON DELETE CASCADE,
        role TEXT NOT NULL,
        PRIMARY KEY (workspace_id, user_id)))",
    R"(CREATE INDEX workspace_members_by_user ON workspace_members (user_id))",

    R"(CREATE TABLE clients (
        id TEXT PRIMARY KEY,
        workspace_id TEXT NOT NULL REFERENCES workspaces (id) ON DELETE CASCADE,
        name TEXT NOT NULL,
        name_key TEXT NOT NULL,
        is_archived INTEGER NOT NULL))",
    R"(CREATE UNIQUE INDEX clients_by_name ON clients (workspace_id, name_key) WHERE is_archived = 0)",
    R"(CREATE TABLE projects (
        id TEXT PRIMARY KEY,
        workspace_id TEXT NOT NULL REFERENCES workspaces (id) ON DELETE CASCADE,
        name TEXT NOT NULL,
        name_key TEXT NOT NULL,
        client_id TEXT REFERENCES clients (id),
        color TEXT NOT NULL,
        is_private INTEGER NOT NULL,
        is_billable INTEGER NOT NULL,
        estimate_seconds BIGINT,
        hourly_rate DOUBLE PRECISION,
        is_archived INTEGER NOT NULL))",
    R"(CREATE UNIQUE INDEX projects_by_name ON projects (workspace_id, name_key) WHERE is_archived = 0)",
    R"(CREATE INDEX projects_by_client ON projects (client_id))",
    R"(CREATE TABLE tasks (
        id TEXT PRIMARY KEY,
        project_id TEXT NOT NULL REFERENCES projects (id) ON DELETE CASCADE,
        name TEXT NOT NULL,
        name_key TEXT NOT NULL,
        is_active INTEGER NOT NULL))",
    R"(CREATE UNIQUE INDEX tasks_by_name ON tasks (project_id, name_key))",
    R"(CREATE TABLE tags (
        id TEXT PRIMARY KEY,
        workspace_id TEXT NOT NULL REFERENCES workspaces (id) ON DELETE CASCADE,
        name TEXT NOT NULL,
        name_key TEXT NOT NULL))",
    R"(CREATE UNIQUE INDEX tags_by_name ON tags (workspace_id, name_key))",

    R"(CREATE TABLE time_entries (
        id TEXT PRIMARY KEY,
        workspace_id TEXT NOT NULL REFERENCES workspaces (id) ON DELETE CASCADE,
        user_id TEXT NOT NULL REFERENCES users (id) ON DELETE CASCADE,
        description TEXT NOT NULL,
        project_id TEXT REFERENCES projects (id),
        task_id TEXT REFERENCES tasks (id),
        is_billable INTEGER NOT NULL,
        describe_parts INTEGER NOT NULL,
        start_at BIGINT NOT NULL,
        stop_at BIGINT,
        ends_at BIGINT NOT NULL,
        version TEXT NOT NULL,
        creation_digest TEXT NOT NULL))",
    R"(CREATE INDEX time_entries_by_end ON time_entries (user_id, workspace_id, ends_at))",
    R"(CREATE INDEX time_entries_by_start ON time_entries (user_id, workspace_id, start_at))",
    R"(CREATE UNIQUE INDEX time_entries_running ON time_entries (user_id) WHERE stop_at IS NULL)",
    R"(CREATE INDEX time_entries_by_project ON time_entries (project_id))",
    R"(CREATE INDEX time_entries_by_task ON time_entries (task_id))",
    R"(CREATE TABLE entry_tags (
        entry_id TEXT NOT NULL REFERENCES time_entries (id) ON DELETE CASCADE,
        position INTEGER NOT NULL,
        tag_id TEXT NOT NULL REFERENCES tags (id),
        PRIMARY KEY (entry_id, position)))",
    R"(CREATE INDEX entry_tags_by_tag ON entry_tags (tag_id))",
    R"(CREATE TABLE entry_shares (
        entry_id TEXT NOT NULL REFERENCES time_entries (id) ON DELETE CASCADE,
        position INTEGER NOT NULL,
        project_id TEXT REFERENCES projects (id),
        task_id TEXT REFERENCES tasks (id),
        is_billable INTEGER NOT NULL,
        percent INTEGER NOT NULL,
        description TEXT NOT NULL,
        PRIMARY KEY (entry_id, position)))",
    R"(CREATE INDEX entry_shares_by_project ON entry_shares (project_id))",
    R"(CREATE INDEX entry_shares_by_task ON entry_shares (task_id))",
    // What was deleted stays known, so that a creation delivered late does not bring it back.
    R"(CREATE TABLE deleted_entries (
        id TEXT PRIMARY KEY,
        user_id TEXT NOT NULL REFERENCES users (id) ON DELETE CASCADE,
        deleted_at BIGINT NOT NULL))",
};

// A bound session's tokens are good on proved requests only.
constexpr std::string_view boundSessions[] = {
    R"(ALTER TABLE sessions ADD COLUMN is_bound INTEGER NOT NULL DEFAULT 0)",
};

// A plan is kept as its JSON: nothing is looked for in it. What undoing needs beside it stands in the columns
// that are named after it.
constexpr std::string_view agentProposals[] = {
    R"(CREATE TABLE agent_proposals (
        id TEXT PRIMARY KEY,
        workspace_id TEXT NOT NULL REFERENCES workspaces (id) ON DELETE CASCADE,
        user_id TEXT NOT NULL REFERENCES users (id) ON DELETE CASCADE,
        agent_name TEXT NOT NULL,
        kind TEXT NOT NULL,
        status TEXT NOT NULL,
        note TEXT NOT NULL,
        entry_id TEXT,
        plan TEXT NOT NULL,
        created_at BIGINT NOT NULL,
        position INTEGER NOT NULL,
        resolved_at BIGINT,
        answer_note TEXT,
        undo_version TEXT,
        undo_describe_parts INTEGER NOT NULL,
        undo_creation_digest TEXT NOT NULL))",
    R"(CREATE INDEX agent_proposals_by_user ON agent_proposals (user_id, workspace_id, status))",
};

// Codes and tokens are digests. A grant ends by being deleted, and takes both along.
constexpr std::string_view agentGrants[] = {
    R"(CREATE TABLE agent_clients (
        id TEXT PRIMARY KEY,
        name TEXT NOT NULL,
        uri TEXT,
        created_at BIGINT NOT NULL))",
    R"(CREATE TABLE agent_client_redirects (
        client_id TEXT NOT NULL REFERENCES agent_clients (id) ON DELETE CASCADE,
        position INTEGER NOT NULL,
        uri TEXT NOT NULL,
        PRIMARY KEY (client_id, position)))",
    R"(CREATE TABLE agent_grants (
        id TEXT PRIMARY KEY,
        user_id TEXT NOT NULL REFERENCES users (id) ON DELETE CASCADE,
        client_id TEXT NOT NULL REFERENCES agent_clients (id) ON DELETE CASCADE,
        may_propose INTEGER NOT NULL,
        granted_at BIGINT NOT NULL,
        last_used_at BIGINT))",
    R"(CREATE INDEX agent_grants_by_user ON agent_grants (user_id, client_id))",
    R"(CREATE INDEX agent_grants_by_client ON agent_grants (client_id))",
    R"(CREATE TABLE agent_grant_workspaces (
        grant_id TEXT NOT NULL REFERENCES agent_grants (id) ON DELETE CASCADE,
        workspace_id TEXT NOT NULL REFERENCES workspaces (id) ON DELETE CASCADE,
        PRIMARY KEY (grant_id, workspace_id)))",
    R"(CREATE INDEX agent_grant_workspaces_by_workspace ON agent_grant_workspaces (workspace_id))",
    R"(CREATE TABLE agent_codes (
        digest TEXT PRIMARY KEY,
        grant_id TEXT NOT NULL REFERENCES agent_grants (id) ON DELETE CASCADE,
        redirect_uri TEXT NOT NULL,
        challenge TEXT NOT NULL,
        state TEXT NOT NULL,
        expires_at BIGINT NOT NULL))",
    R"(CREATE INDEX agent_codes_by_grant ON agent_codes (grant_id))",
    R"(CREATE TABLE agent_tokens (
        digest TEXT PRIMARY KEY,
        grant_id TEXT NOT NULL REFERENCES agent_grants (id) ON DELETE CASCADE,
        kind TEXT NOT NULL,
        state TEXT NOT NULL,
        issued_at BIGINT NOT NULL,
        expires_at BIGINT NOT NULL))",
    R"(CREATE INDEX agent_tokens_by_grant ON agent_tokens (grant_id, kind))",
    R"(CREATE INDEX agent_tokens_by_expiry ON agent_tokens (expires_at))",
};

constexpr std::string_view passkeys[] = {
    R"(CREATE TABLE passkeys (
        id TEXT PRIMARY KEY,
        user_id TEXT NOT NULL REFERENCES users (id) ON DELETE CASCADE,
        credential_id TEXT NOT NULL UNIQUE,
        public_key TEXT NOT NULL,
        counter BIGINT NOT NULL,
        name TEXT NOT NULL,
        created_at BIGINT NOT NULL,
        last_used_at BIGINT))",
    R"(CREATE INDEX passkeys_by_user ON passkeys (user_id))",
};

constexpr std::span<const std::string_view> versions[] = {firstVersion, boundSessions, agentProposals,
                                                          agentGrants, passkeys};

bool applyStep(Database &database, std::int64_t version)
{
    database.begin();
    for (const auto statement : versions[version])
        database.runOnce(statement);
    database.run("UPDATE schema_version SET version = ?", version + 1);
    return database.commit();
}

} // namespace

Result<void, std::string> migrate(Database &database)
{
    database.begin();
    database.runOnce("CREATE TABLE IF NOT EXISTS schema_version (version BIGINT NOT NULL)");
    const auto found =
        database.row("SELECT version FROM schema_version", [](const SqlRow &row) { return row.integer(0); });
    if (!found)
        database.run("INSERT INTO schema_version (version) VALUES (0)");
    if (!database.commit())
        return failure("the database cannot be used: " + database.lastError());

    const auto known = static_cast<std::int64_t>(std::size(versions));
    const std::int64_t current = found.value_or(0);
    if (current > known)
        return failure(std::string("the database was made by a later version of this program"));
    for (std::int64_t version = current; version < known; ++version) {
        if (!applyStep(database, version))
            return failure("the database cannot be brought up to date: " + database.lastError());
    }
    return {};
}

} // namespace orvane::server
