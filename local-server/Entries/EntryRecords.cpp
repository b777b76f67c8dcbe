// SPDX-License-Identifier: GPL-3.0-or-later
#include "Entries/EntryRecords.h"

#include "Database/SqlTable.h"
#include "Security/RandomText.h"

#include <unordered_map>

namespace orvane::server {

namespace {

std::string newVersion()
{
    return randomText(12);
}

/// A member of the entry in a record.
template <class T>
constexpr auto ofEntry(T TimeEntryResponse::*member)
{
    return [member](auto &record) -> auto & { return record.entry.*member; };
}

const auto entryTable = sqlTable<EntryRecord>(
    "time_entries", fixedColumn("id", ofEntry(&TimeEntryResponse::id)),
    fixedColumn("workspace_id", ofEntry(&TimeEntryResponse::workspaceId)),
    fixedColumn("user_id", &EntryRecord::userId),
    column("description", ofEntry(&TimeEntryResponse::description)),
    column("project_id", ofEntry(&TimeEntryResponse::projectId)),
    column("task_id", ofEntry(&TimeEntryResponse::taskId)),
    column("is_billable", ofEntry(&TimeEntryResponse::isBillable)),
    column("describe_parts", &EntryRecord::describeParts),
    column("start_at", ofEntry(&TimeEntryResponse::start)),
    column("stop_at", ofEntry(&TimeEntryResponse::stop)),
    // When it ends, for finding it by time.
    derivedColumn("ends_at",
                  [](const EntryRecord &record) { return record.entry.stop.value_or(instantLimit); }),
    column("version", ofEntry(&TimeEntryResponse::version)),
    fixedColumn("creation_digest", &EntryRecord::creationDigest));

struct EntryTag {
    std::string entryId;
    std::int64_t position = 0;
    std::string tagId;
};

const auto entryTags =
    sqlTable<EntryTag>("entry_tags", fixedColumn("entry_id", &EntryTag::entryId),
                       fixedColumn("position", &EntryTag::position), column("tag_id", &EntryTag::tagId));

struct EntryShare {
    std::string entryId;
    std::int64_t position = 0;
    TimeShareResponse share;
};

template <class T>
constexpr auto ofShare(T TimeShareResponse::*member)
{
    return [member](auto &row) -> auto & { return row.share.*member; };
}

const auto entryShares =
    sqlTable<EntryShare>("entry_shares", fixedColumn("entry_id", &EntryShare::entryId),
                         fixedColumn("position", &EntryShare::position),
                         column("project_id", ofShare(&TimeShareResponse::projectId)),
                         column("task_id", ofShare(&TimeShareResponse::taskId)),
                         column("is_billable", ofShare(&TimeShareResponse::isBillable)),
                         column("percent", ofShare(&TimeShareResponse::percent)),
                         column("description", ofShare(&TimeShareResponse::description)));

// User, workspace, from, to, from, from. Entries are mostly asked for of late, so their ends lead to them;
// the sign keeps the index of starts, which would go through everything earlier, from being taken instead.
#define ORVANE_ENTRY_RANGE                                                                                   \
    "WHERE user_id = ? AND workspace_id = ? AND ends_at >= ? AND +start_at < ? AND "                         \
    "(+ends_at > ? OR +start_at >= ?) "
#define ORVANE_PARTS_IN_RANGE                                                                                \
    "WHERE entry_id IN (SELECT id FROM time_entries " ORVANE_ENTRY_RANGE ") ORDER BY entry_id, position"

std::vector<TimeEntryResponse> asShown(std::vector<EntryRecord> records)
{
    std::vector<TimeEntryResponse> shown;
    shown.reserve(records.size());
    for (EntryRecord &record : records)
        shown.push_back(std::move(record.entry));
    return shown;
}

} // namespace

std::optional<EntryRecord> EntryRecords::find(const std::string &id)
{
    return withParts(entryTable.first(m_database, "WHERE id = ?", id));
}

std::optional<EntryRecord> EntryRecords::running(const std::string &userId)
{
    return withParts(entryTable.first(m_database, "WHERE user_id = ? AND stop_at IS NULL", userId));
}

std::optional<EntryRecord> EntryRecords::withParts(std::optional<EntryRecord> record)
{
    if (!record)
        return record;
    record->entry.tagIds = tagsOf(record->entry.id);
    for (EntryShare &row :
         entryShares.all(m_database, "WHERE entry_id = ? ORDER BY position", record->entry.id))
        record->entry.shares.push_back(std::move(row.share));
    return record;
}

std::vector<std::string> EntryRecords::tagsOf(const std::string &entryId)
{
    std::vector<std::string> ids;
    for (EntryTag &row : entryTags.all(m_database, "WHERE entry_id = ? ORDER BY position", entryId))
        ids.push_back(std::move(row.tagId));
    return ids;
}

std::vector<TimeEntryResponse> EntryRecords::inRange(const std::string &userId,
                                                     const std::string &workspaceId, Instant from, Instant to)
{
    auto found = asShown(entryTable.all(m_database, ORVANE_ENTRY_RANGE "ORDER BY start_at, id", userId,
                                        workspaceId, from, to, from, from));
    // Their tags and shares come with one question each, not with one for every entry.
    std::unordered_map<std::string_view, TimeEntryResponse *> byId;
    for (TimeEntryResponse &entry : found)
        byId.emplace(entry.id, &entry);
    for (EntryTag &row :
         entryTags.all(m_database, ORVANE_PARTS_IN_RANGE, userId, workspaceId, from, to, from, from))
        byId.at(row.entryId)->tagIds.push_back(std::move(row.tagId));
    for (EntryShare &row :
         entryShares.all(m_database, ORVANE_PARTS_IN_RANGE, userId, workspaceId, from, to, from, from))
        byId.at(row.entryId)->shares.push_back(std::move(row.share));
    return found;
}

std::vector<TimeEntryResponse> EntryRecords::latest(const std::string &userId, const std::string &workspaceId,
                                                    std::int64_t count)
{
    return asShown(entryTable.all(m_database,
                                  "WHERE user_id = ? AND workspace_id = ? ORDER BY start_at DESC LIMIT ?",
                                  userId, workspaceId, count));
}

void EntryRecords::add(EntryRecord &record)
{
    record.entry.version = newVersion();
    entryTable.insert(m_database, record);
    addParts(record.entry);
}

void EntryRecords::update(EntryRecord &record)
{
    record.entry.version = newVersion();
    entryTable.update(m_database, record);
    m_database.run("DELETE FROM entry_tags WHERE entry_id = ?", record.entry.id);
    m_database.run("DELETE FROM entry_shares WHERE entry_id = ?", record.entry.id);
    addParts(record.entry);
}

void EntryRecords::addParts(const TimeEntryResponse &entry)
{
    std::int64_t position = 0;
    for (const std::string &tagId : entry.tagIds)
        entryTags.insert(m_database, {entry.id, position++, tagId});
    position = 0;
    for (const TimeShareResponse &share : entry.shares)
        entryShares.insert(m_database, {entry.id, position++, share});
}

void EntryRecords::remove(const EntryRecord &record, Instant now)
{
    m_database.run("DELETE FROM time_entries WHERE id = ?", record.entry.id);
    m_database.run("INSERT INTO deleted_entries (id, user_id, deleted_at) VALUES (?, ?, ?)", record.entry.id,
                   record.userId, now);
}

bool EntryRecords::wasRemoved(const std::string &id)
{
    return m_database.exists("SELECT 1 FROM deleted_entries WHERE id = ?", id);
}

void EntryRecords::forgetRemoval(const std::string &id)
{
    m_database.run("DELETE FROM deleted_entries WHERE id = ?", id);
}

void EntryRecords::renewVersion(const std::string &id)
{
    m_database.run("UPDATE time_entries SET version = ? WHERE id = ?", newVersion(), id);
}

} // namespace orvane::server
