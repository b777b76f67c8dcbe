// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tags/TagRecords.h"

#include "Database/SqlTable.h"
#include "Names/NameText.h"

namespace orvane::server {

namespace {

const auto tagTable = sqlTable<TagResponse>(
    "tags", fixedColumn("id", &TagResponse::id), fixedColumn("workspace_id", &TagResponse::workspaceId),
    column("name", &TagResponse::name),
    derivedColumn("name_key", [](const TagResponse &tag) { return nameKey(tag.name); }));

} // namespace

std::vector<TagResponse> TagRecords::list(const std::string &workspaceId)
{
    return tagTable.all(m_database, "WHERE workspace_id = ? ORDER BY name_key", workspaceId);
}

std::optional<TagResponse> TagRecords::find(const std::string &workspaceId, const std::string &id)
{
    return tagTable.first(m_database, "WHERE id = ? AND workspace_id = ?", id, workspaceId);
}

bool TagRecords::isNameTaken(const TagResponse &tag)
{
    return m_database.exists("SELECT 1 FROM tags WHERE workspace_id = ? AND name_key = ? AND id <> ?",
                             tag.workspaceId, nameKey(tag.name), tag.id);
}

void TagRecords::add(const TagResponse &tag)
{
    tagTable.insert(m_database, tag);
}

void TagRecords::update(const TagResponse &tag)
{
    tagTable.update(m_database, tag);
}

void TagRecords::remove(const std::string &id)
{
    m_database.run("DELETE FROM tags WHERE id = ?", id);
}

} // namespace orvane::server
