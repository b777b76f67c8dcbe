// SPDX-License-Identifier: GPL-3.0-or-later
#include "Clients/ClientRecords.h"

#include "Database/SqlTable.h"
#include "Names/NameText.h"

namespace orvane::server {

namespace {

const auto clientTable = sqlTable<ClientResponse>(
    "clients", fixedColumn("id", &ClientResponse::id),
    fixedColumn("workspace_id", &ClientResponse::workspaceId), column("name", &ClientResponse::name),
    derivedColumn("name_key", [](const ClientResponse &client) { return nameKey(client.name); }),
    column("is_archived", &ClientResponse::isArchived));

} // namespace

std::vector<ClientResponse> ClientRecords::list(const std::string &workspaceId, bool withArchived)
{
    return clientTable.all(m_database, "WHERE workspace_id = ? AND is_archived <= ? ORDER BY name_key, id",
                           workspaceId, withArchived);
}

std::optional<ClientResponse> ClientRecords::find(const std::string &workspaceId, const std::string &id)
{
    return clientTable.first(m_database, "WHERE id = ? AND workspace_id = ?", id, workspaceId);
}

bool ClientRecords::isNameTaken(const ClientResponse &client)
{
    return !client.isArchived &&
           m_database.exists("SELECT 1 FROM clients WHERE workspace_id = ? AND name_key = ? AND "
                             "is_archived = 0 AND id <> ?",
                             client.workspaceId, nameKey(client.name), client.id);
}

void ClientRecords::add(const ClientResponse &client)
{
    clientTable.insert(m_database, client);
}

void ClientRecords::update(const ClientResponse &client)
{
    clientTable.update(m_database, client);
}

void ClientRecords::remove(const std::string &id)
{
    m_database.run("UPDATE projects SET client_id = NULL WHERE client_id = ?", id);
    m_database.run("DELETE FROM clients WHERE id = ?", id);
}

} // namespace orvane::server
