// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryChange.h"
#include "Catalog/TouchedEntry.h"
#include "LocalStore/LocalStore.h"
#include "OrvaneAPI/Schemas.h"

#include <deque>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace orvane {

/// One queued change. `conflict` is the server's current entry once the server has reported that the entry
/// was changed elsewhere; it lives in memory only.
struct QueuedChange {
    std::int64_t seq = 0;
    EntryChange change;
    std::optional<TimeEntryResponse> conflict;
};

/// The queue as this process knows it, in order of the rows' numbers. Owned by the outbox; its thread.
class QueuedChanges {
public:
    const std::deque<QueuedChange> &rows() const { return m_rows; }

    std::vector<EntryChange> changes() const;
    std::vector<QueuedChange> conflicts() const;
    /// Those above `after` and below `before`.
    std::vector<QueuedChange> between(std::int64_t after, std::int64_t before) const;
    /// Null when there is none of that number. Valid until the list changes.
    const QueuedChange *find(std::int64_t seq) const;

    /// Puts a stored row into the list, or brings the one that is there up to date; its conflict stays.
    const QueuedChange &adopt(PendingChange row);
    void adopt(const std::vector<PendingChange> &rows);
    void remove(std::int64_t seq);
    /// Nothing for a row that is not there; none: its conflict is settled.
    void setConflict(std::int64_t seq, std::optional<TimeEntryResponse> current);

    /// Whether the row, or one before it that changes the same entry, waits for its conflict to be settled.
    bool isBlocked(const QueuedChange &row) const;
    /// The number of the stop of a creation's entry, when that is the next change of it.
    std::optional<std::int64_t> stopBehind(const QueuedChange &creation) const;

    /// The entries whose rows came, went or changed since this was last asked.
    TouchedEntries takeTouched() { return std::exchange(m_touched, {}); }

private:
    /// What is queued of one entry: how many rows, and the start that the newest of them gives it.
    struct Queued {
        int rows = 0;
        std::optional<Instant> start;
    };

    void touch(const QueuedChange &row);
    void touchRunningBefore(std::int64_t seq);
    QueuedChange *at(std::int64_t seq);

    std::deque<QueuedChange> m_rows;
    std::set<std::int64_t> m_conflicts;
    std::unordered_map<std::string, Queued> m_entries;
    TouchedEntries m_touched;
};

} // namespace orvane
