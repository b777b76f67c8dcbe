// SPDX-License-Identifier: GPL-3.0-or-later
// The clients and tags of CatalogRecords.
#include "Database/Database.h"
#include "Records/CatalogRecords.h"
#include "Records/NameText.h"

namespace orvane::server {

namespace {

ClientResponse clientFrom(const SqlRow &row)
{
    ClientResponse client;
    client.id = row.text(0);
    client.workspaceId = row.text(1);
    client.name = row.text(2);
    client.isArchived = row.boolean(3);
    return client;
}

TagResponse tagFrom(const SqlRow &row)
{
    TagResponse tag;
    tag.id = row.text(0);
    tag.workspaceId = row.text(1);
    tag.name = row.text(2);
    return tag;
}

#define ORVANE_CLIENT_COLUMNS "SELECT id, workspace_id, name, is_archived FROM clients "
#define ORVANE_TAG_COLUMNS "SELECT id, workspace_id, name FROM tags "

} // namespace

std::vector<ClientResponse> CatalogRecords::clients(const std::string &workspaceId, Archived archived)
{
    return m_database.rows(ORVANE_CLIENT_COLUMNS
                           "WHERE workspace_id = ? AND is_archived <= ? ORDER BY name_key, id",
                           clientFrom, workspaceId, archived == Archived::Included);
}

std::optional<ClientResponse> CatalogRecords::client(const std::string &workspaceId, const std::string &id)
{
    return m_database.row(ORVANE_CLIENT_COLUMNS "WHERE id = ? AND workspace_id = ?", clientFrom, id,
                          workspaceId);
}

bool CatalogRecords::isClientNameTaken(const std::string &workspaceId, const std::string &name,
                                       const std::string &exceptId)
{
    return m_database.exists(
        "SELECT 1 FROM clients WHERE workspace_id = ? AND name_key = ? AND is_archived = 0 AND id <> ?",
        workspaceId, nameKey(name), exceptId);
}

void CatalogRecords::addClient(const ClientResponse &client)
{
    m_database.run("INSERT INTO clients (id, workspace_id, name, name_key, is_archived) "
                   "VALUES (?, ?, ?, ?, ?)",
                   client.id, client.workspaceId, client.name, nameKey(client.name), client.isArchived);
}

void CatalogRecords::updateClient(const ClientResponse &client)
{
    m_database.run("UPDATE clients SET name = ?, name_key = ?, is_archived = ? WHERE id = ?", client.name,
                   nameKey(client.name), client.isArchived, client.id);
}

void CatalogRecords::removeClient(const std::string &id)
{
    m_database.run("UPDATE projects SET client_id = NULL WHERE client_id = ?", id);
    m_database.run("DELETE FROM clients WHERE id = ?", id);
}

std::vector<TagResponse> CatalogRecords::tags(const std::string &workspaceId)
{
    return m_database.rows(ORVANE_TAG_COLUMNS "WHERE workspace_id = ? ORDER BY name_key", tagFrom,
                           workspaceId);
}

std::optional<TagResponse> CatalogRecords::tag(const std::string &workspaceId, const std::string &id)
{
    return m_database.row(ORVANE_TAG_COLUMNS "WHERE id = ? AND workspace_id = ?", tagFrom, id, workspaceId);
}

bool CatalogRecords::isTagNameTaken(const std::string &workspaceId, const std::string &name,
                                    const std::string &exceptId)
{
    return m_database.exists("SELECT 1 FROM tags WHERE workspace_id = ? AND name_key = ? AND id <> ?",
                             workspaceId, nameKey(name), exceptId);
}

void CatalogRecords::addTag(const TagResponse &tag)
{
    m_database.run("INSERT INTO tags (id, workspace_id, name, name_key) VALUES (?, ?, ?, ?)", tag.id,
                   tag.workspaceId, tag.name, nameKey(tag.name));
}

void CatalogRecords::updateTag(const TagResponse &tag)
{
    m_database.run("UPDATE tags SET name = ?, name_key = ? WHERE id = ?", tag.name, nameKey(tag.name),
                   tag.id);
}

void CatalogRecords::removeTag(const std::string &id)
{
    m_database.run("DELETE FROM tags WHERE id = ?", id);
}

} // namespace orvane::server
