// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

class Database;

/// An entry with what the server knows beside what it shows.
struct EntryRecord {
    TimeEntryResponse entry;
    std::string userId;
    bool describeParts = false;
    /// Stands for the request that made it, so that the same one delivered again is known as such.
    std::string creationDigest;

    bool operator==(const EntryRecord &) const = default;
};

/// Time entries. Every write gives an entry a new version, which is an opaque text.
class EntryRecords {
public:
    explicit EntryRecords(Database &database) : m_database(database) {}

    /// Whoever's it is; for the caller to look at.
    std::optional<EntryRecord> find(const std::string &id);
    /// The user's running entry, in whichever workspace.
    std::optional<EntryRecord> running(const std::string &userId);
    /// Those that overlap [from, to) or start in it, a running one reaching as far as one likes; by start.
    std::vector<TimeEntryResponse> inRange(const std::string &userId, const std::string &workspaceId,
                                           Instant from, Instant to);
    /// The entries that started last, up to `count`, the latest first; without their tags and shares.
    std::vector<TimeEntryResponse> latest(const std::string &userId, const std::string &workspaceId,
                                          std::int64_t count);
    std::vector<std::string> tagsOf(const std::string &entryId);

    /// Both give the record its new version.
    void add(EntryRecord &record);
    void update(EntryRecord &record);
    void remove(const EntryRecord &record, Instant now);
    /// Whether an entry of that identifier was there and was deleted.
    bool wasRemoved(const std::string &id);
    /// So that it can be added again, as it was.
    void forgetRemoval(const std::string &id);
    /// For an entry that was changed by other means.
    void renewVersion(const std::string &id);

private:
    std::optional<EntryRecord> withParts(std::optional<EntryRecord> record);
    void addParts(const TimeEntryResponse &entry);

    Database &m_database;
};

} // namespace orvane::server
