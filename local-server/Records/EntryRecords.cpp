// SPDX-License-Identifier: GPL-3.0-or-later
#include "Records/EntryRecords.h"

#include "Database/Database.h"
#include "Security/RandomText.h"

#include <unordered_map>

namespace orvane::server {

namespace {

std::int64_t ms(Instant instant)
{
    return millisecondsSinceEpoch(instant);
}

std::optional<std::int64_t> ms(const std::optional<Instant> &instant)
{
    return instant ? std::optional{ms(*instant)} : std::nullopt;
}

std::string newVersion()
{
    return randomText(12);
}

TimeEntryResponse entryFrom(const SqlRow &row)
{
    TimeEntryResponse entry;
    entry.id = row.text(0);
    entry.workspaceId = row.text(1);
    entry.description = row.text(2);
    entry.projectId = row.optionalText(3);
    entry.taskId = row.optionalText(4);
    entry.isBillable = row.boolean(5);
    entry.start = instantFromMilliseconds(row.integer(6));
    if (const auto stop = row.optionalInteger(7))
        entry.stop = instantFromMilliseconds(*stop);
    entry.version = row.text(8);
    return entry;
}

EntryRecord recordFrom(const SqlRow &row)
{
    return {entryFrom(row), row.text(9), row.boolean(10), row.text(11)};
}

TimeShareResponse shareFrom(const SqlRow &row)
{
    TimeShareResponse share;
    share.projectId = row.optionalText(1);
    share.taskId = row.optionalText(2);
    share.isBillable = row.boolean(3);
    share.percent = row.integer(4);
    share.description = row.text(5);
    return share;
}

#define ORVANE_ENTRY_COLUMNS                                                                                 \
    "SELECT e.id, e.workspace_id, e.description, e.project_id, e.task_id, e.is_billable, e.start_at, "       \
    "e.stop_at, e.version, e.user_id, e.describe_parts, e.creation_digest FROM time_entries e "
#define ORVANE_SHARE_COLUMNS                                                                                 \
    "SELECT s.entry_id, s.project_id, s.task_id, s.is_billable, s.percent, s.description "                   \
    "FROM entry_shares s "
// User, workspace, from, to, from, from. Entries are mostly asked for of late, so their ends lead to them;
// the sign keeps the index of starts, which would go through everything earlier, from being taken instead.
#define ORVANE_ENTRY_RANGE                                                                                   \
    "WHERE e.user_id = ? AND e.workspace_id = ? AND e.ends_at >= ? AND +e.start_at < ? AND "                 \
    "(+e.ends_at > ? OR +e.start_at >= ?) "

/// When an entry ends, for finding it by time.
std::int64_t endOf(const TimeEntryResponse &entry)
{
    return ms(entry.stop.value_or(instantLimit));
}

} // namespace

std::optional<EntryRecord> EntryRecords::find(const std::string &id)
{
    return withParts(m_database.row(ORVANE_ENTRY_COLUMNS "WHERE e.id = ?", recordFrom, id));
}

std::optional<EntryRecord> EntryRecords::running(const std::string &userId)
{
    return withParts(
        m_database.row(ORVANE_ENTRY_COLUMNS "WHERE e.user_id = ? AND e.stop_at IS NULL", recordFrom, userId));
}

std::optional<EntryRecord> EntryRecords::withParts(std::optional<EntryRecord> record)
{
    if (record) {
        record->entry.tagIds = tagsOf(record->entry.id);
        record->entry.shares = sharesOf(record->entry.id);
    }
    return record;
}

std::vector<std::string> EntryRecords::tagsOf(const std::string &entryId)
{
    return m_database.rows(
        "SELECT tag_id FROM entry_tags WHERE entry_id = ? ORDER BY position",
        [](const SqlRow &row) { return row.text(0); }, entryId);
}

std::vector<TimeShareResponse> EntryRecords::sharesOf(const std::string &entryId)
{
    return m_database.rows(ORVANE_SHARE_COLUMNS "WHERE s.entry_id = ? ORDER BY s.position", shareFrom,
                           entryId);
}

std::vector<TimeEntryResponse> EntryRecords::inRange(const std::string &userId,
                                                     const std::string &workspaceId, Instant from, Instant to)
{
    auto entries = m_database.rows(ORVANE_ENTRY_COLUMNS ORVANE_ENTRY_RANGE "ORDER BY e.start_at, e.id",
                                   entryFrom, userId, workspaceId, ms(from), ms(to), ms(from), ms(from));
    // Their tags and shares come with one question each, not with one for every entry.
    std::unordered_map<std::string_view, TimeEntryResponse *> byId;
    for (TimeEntryResponse &entry : entries)
        byId.emplace(entry.id, &entry);
    const auto part = [&](const SqlRow &row) {
        const std::string id = row.text(0);
        const auto found = byId.find(id);
        return found == byId.end() ? nullptr : found->second;
    };
    m_database.rows(
        "SELECT t.entry_id, t.tag_id FROM entry_tags t JOIN time_entries e ON e.id = "
        "t.entry_id " ORVANE_ENTRY_RANGE "ORDER BY t.entry_id, t.position",
        [&](const SqlRow &row) {
            if (TimeEntryResponse *entry = part(row))
                entry->tagIds.push_back(row.text(1));
            return true;
        },
        userId, workspaceId, ms(from), ms(to), ms(from), ms(from));
    m_database.rows(
        ORVANE_SHARE_COLUMNS "JOIN time_entries e ON e.id = s.entry_id " ORVANE_ENTRY_RANGE
                             "ORDER BY s.entry_id, s.position",
        [&](const SqlRow &row) {
            if (TimeEntryResponse *entry = part(row))
                entry->shares.push_back(shareFrom(row));
            return true;
        },
        userId, workspaceId, ms(from), ms(to), ms(from), ms(from));
    return entries;
}

std::vector<TimeEntryResponse> EntryRecords::latest(const std::string &userId, const std::string &workspaceId,
                                                    std::int64_t count)
{
    return m_database.rows(ORVANE_ENTRY_COLUMNS
                           "WHERE e.user_id = ? AND e.workspace_id = ? ORDER BY e.start_at DESC LIMIT ?",
                           entryFrom, userId, workspaceId, count);
}

void EntryRecords::add(EntryRecord &record)
{
    TimeEntryResponse &entry = record.entry;
    entry.version = newVersion();
    m_database.run("INSERT INTO time_entries (id, workspace_id, user_id, description, project_id, task_id, "
                   "is_billable, describe_parts, start_at, stop_at, ends_at, version, creation_digest) "
                   "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                   entry.id, entry.workspaceId, record.userId, entry.description, entry.projectId,
                   entry.taskId, entry.isBillable, record.describeParts, ms(entry.start), ms(entry.stop),
                   endOf(entry), entry.version, record.creationDigest);
    addParts(entry);
}

void EntryRecords::update(EntryRecord &record)
{
    TimeEntryResponse &entry = record.entry;
    entry.version = newVersion();
    m_database.run("UPDATE time_entries SET description = ?, project_id = ?, task_id = ?, is_billable = ?, "
                   "describe_parts = ?, start_at = ?, stop_at = ?, ends_at = ?, version = ? WHERE id = ?",
                   entry.description, entry.projectId, entry.taskId, entry.isBillable, record.describeParts,
                   ms(entry.start), ms(entry.stop), endOf(entry), entry.version, entry.id);
    m_database.run("DELETE FROM entry_tags WHERE entry_id = ?", entry.id);
    m_database.run("DELETE FROM entry_shares WHERE entry_id = ?", entry.id);
    addParts(entry);
}

void EntryRecords::addParts(const TimeEntryResponse &entry)
{
    std::int64_t position = 0;
    for (const std::string &tagId : entry.tagIds)
        m_database.run("INSERT INTO entry_tags (entry_id, position, tag_id) VALUES (?, ?, ?)", entry.id,
                       position++, tagId);
    position = 0;
    for (const TimeShareResponse &share : entry.shares)
        m_database.run("INSERT INTO entry_shares (entry_id, position, project_id, task_id, is_billable, "
                       "percent, description) VALUES (?, ?, ?, ?, ?, ?, ?)",
                       entry.id, position++, share.projectId, share.taskId, share.isBillable, share.percent,
                       share.description);
}

void EntryRecords::remove(const EntryRecord &record, Instant now)
{
    m_database.run("DELETE FROM time_entries WHERE id = ?", record.entry.id);
    m_database.run("INSERT INTO deleted_entries (id, user_id, deleted_at) VALUES (?, ?, ?)", record.entry.id,
                   record.userId, ms(now));
}

bool EntryRecords::wasRemoved(const std::string &id)
{
    return m_database.exists("SELECT 1 FROM deleted_entries WHERE id = ?", id);
}

namespace {

/// What finds and clears each kind of reference. `users` names its parameter twice: once for entries, once
/// for their shares.
struct ReferenceSql {
    std::string_view users;
    std::string_view usedBefore;
    std::vector<std::string_view> clearings;
};

const ReferenceSql &sqlFor(EntryRecords::Reference kind)
{
    static const ReferenceSql project{
        "SELECT id FROM time_entries WHERE project_id = ? UNION SELECT entry_id FROM entry_shares "
        "WHERE project_id = ?",
        "SELECT 1 FROM time_entries WHERE start_at < ? AND id IN (SELECT id FROM time_entries WHERE "
        "project_id = ? UNION SELECT entry_id FROM entry_shares WHERE project_id = ?)",
        {"UPDATE time_entries SET project_id = NULL, task_id = NULL WHERE project_id = ?",
         "UPDATE entry_shares SET project_id = NULL, task_id = NULL WHERE project_id = ?"}};
    static const ReferenceSql task{
        "SELECT id FROM time_entries WHERE task_id = ? UNION SELECT entry_id FROM entry_shares "
        "WHERE task_id = ?",
        "SELECT 1 FROM time_entries WHERE start_at < ? AND id IN (SELECT id FROM time_entries WHERE "
        "task_id = ? UNION SELECT entry_id FROM entry_shares WHERE task_id = ?)",
        {"UPDATE time_entries SET task_id = NULL WHERE task_id = ?",
         "UPDATE entry_shares SET task_id = NULL WHERE task_id = ?"}};
    static const ReferenceSql tag{
        "SELECT entry_id FROM entry_tags WHERE tag_id = ? UNION SELECT entry_id FROM entry_tags "
        "WHERE tag_id = ?",
        "SELECT 1 FROM time_entries WHERE start_at < ? AND id IN (SELECT entry_id FROM entry_tags WHERE "
        "tag_id = ? UNION SELECT entry_id FROM entry_tags WHERE tag_id = ?)",
        {"DELETE FROM entry_tags WHERE tag_id = ?"}};
    switch (kind) {
    case EntryRecords::Reference::Project:
        return project;
    case EntryRecords::Reference::Task:
        return task;
    case EntryRecords::Reference::Tag:
        return tag;
    }
    return project;
}

} // namespace

bool EntryRecords::isUsedBefore(Reference kind, const std::string &id, Instant instant)
{
    return m_database.exists(sqlFor(kind).usedBefore, ms(instant), id, id);
}

void EntryRecords::release(Reference kind, const std::string &id)
{
    const ReferenceSql &sql = sqlFor(kind);
    const auto users = m_database.rows(sql.users, [](const SqlRow &row) { return row.text(0); }, id, id);
    for (const auto clearing : sql.clearings)
        m_database.run(clearing, id);
    for (const std::string &entryId : users)
        m_database.run("UPDATE time_entries SET version = ? WHERE id = ?", newVersion(), entryId);
}

} // namespace orvane::server
