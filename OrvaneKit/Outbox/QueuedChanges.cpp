// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/QueuedChanges.h"

#include <algorithm>

namespace orvane {

std::vector<EntryChange> QueuedChanges::changes() const
{
    std::vector<EntryChange> changes;
    changes.reserve(m_rows.size());
    for (const QueuedChange &row : m_rows)
        changes.push_back(row.change);
    return changes;
}

std::vector<QueuedChange> QueuedChanges::conflicts() const
{
    std::vector<QueuedChange> conflicts;
    for (const std::int64_t seq : m_conflicts)
        conflicts.push_back(*find(seq));
    return conflicts;
}

std::vector<QueuedChange> QueuedChanges::between(std::int64_t after, std::int64_t before) const
{
    return {std::ranges::upper_bound(m_rows, after, {}, &QueuedChange::seq),
            std::ranges::lower_bound(m_rows, before, {}, &QueuedChange::seq)};
}

const QueuedChange *QueuedChanges::find(std::int64_t seq) const
{
    const auto found = std::ranges::lower_bound(m_rows, seq, {}, &QueuedChange::seq);
    return found != m_rows.end() && found->seq == seq ? &*found : nullptr;
}

QueuedChange *QueuedChanges::at(std::int64_t seq)
{
    const auto found = std::ranges::lower_bound(m_rows, seq, {}, &QueuedChange::seq);
    return found != m_rows.end() && found->seq == seq ? &*found : nullptr;
}

const QueuedChange &QueuedChanges::adopt(PendingChange row)
{
    if (QueuedChange *known = at(row.seq)) {
        if (known->change == row.change)
            return *known;
        touch(*known);
        known->change = std::move(row.change);
        touch(*known);
        return *known;
    }
    const auto place = std::ranges::upper_bound(m_rows, row.seq, {}, &QueuedChange::seq);
    const QueuedChange &added =
        *m_rows.insert(place, QueuedChange{row.seq, std::move(row.change), std::nullopt});
    ++m_entries[added.change.entryId()].rows;
    touch(added);
    return added;
}

void QueuedChanges::adopt(const std::vector<PendingChange> &rows)
{
    for (const PendingChange &row : rows)
        adopt(row);
}

void QueuedChanges::remove(std::int64_t seq)
{
    m_conflicts.erase(seq);
    const auto found = std::ranges::lower_bound(m_rows, seq, {}, &QueuedChange::seq);
    if (found == m_rows.end() || found->seq != seq)
        return;
    touch(*found);
    const auto queued = m_entries.find(found->change.entryId());
    if (--queued->second.rows == 0)
        m_entries.erase(queued);
    m_rows.erase(found);
}

void QueuedChanges::setConflict(std::int64_t seq, std::optional<TimeEntryResponse> current)
{
    QueuedChange *row = at(seq);
    if (row == nullptr)
        return;
    if (current)
        m_conflicts.insert(seq);
    else
        m_conflicts.erase(seq);
    row->conflict = std::move(current);
    touch(*row);
}

/// A row's own start, and the one that another row gave the entry; one that runs also ends what ran before.
void QueuedChanges::touch(const QueuedChange &row)
{
    const std::string id = row.change.entryId();
    std::optional<Instant> &start = m_entries[id].start;
    const EntryRequest *request = row.change.request();
    if (start)
        m_touched.push_back({id, *start});
    if (request != nullptr && start != request->start) {
        m_touched.push_back({id, request->start});
        start = request->start;
    }
    if (!start)
        m_touched.push_back({id, std::nullopt});
    if (request != nullptr && !request->stop)
        touchRunningBefore(row.seq);
}

void QueuedChanges::touchRunningBefore(std::int64_t seq)
{
    auto row = std::ranges::lower_bound(m_rows, seq, {}, &QueuedChange::seq);
    while (row != m_rows.begin()) {
        --row;
        const EntryRequest *request = row->change.request();
        if (request == nullptr || request->stop)
            continue;
        m_touched.push_back({row->change.entryId(), request->start});
        return;
    }
}

bool QueuedChanges::isBlocked(const QueuedChange &row) const
{
    return std::ranges::any_of(m_conflicts, [&](std::int64_t seq) {
        return seq <= row.seq && find(seq)->change.entryId() == row.change.entryId();
    });
}

std::optional<std::int64_t> QueuedChanges::stopBehind(const QueuedChange &creation) const
{
    const auto behind = std::ranges::upper_bound(m_rows, creation.seq, {}, &QueuedChange::seq);
    const auto next = std::find_if(behind, m_rows.end(), [&](const QueuedChange &row) {
        return row.change.entryId() == creation.change.entryId();
    });
    const bool isStop =
        next != m_rows.end() && std::holds_alternative<EntryChange::Stop>(next->change.action);
    return isStop ? std::optional{next->seq} : std::nullopt;
}

} // namespace orvane
