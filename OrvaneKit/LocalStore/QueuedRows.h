// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LocalStore/LocalStore.h"

namespace orvane {

/// Rows of the queue on their way to being changes: first copied out of the database, then read. Used on the
/// store's thread, by the store alone.
class QueuedRows {
public:
    /// A row whose first column is a number and whose second is a blob; another counts as unreadable.
    void add(const Connection::Row &row);
    /// What could be read of the rows, in their order. A long queue is read by two threads.
    std::vector<PendingChange> changes(JsonReading reading);
    /// How many rows were left out.
    std::size_t unreadable() const { return m_unreadable; }

private:
    struct Place {
        std::int64_t seq;
        std::size_t from;
        std::size_t size;
        bool isRead = false;
    };

    void read(std::span<Place> places, PendingChange *changes, JsonReading reading) const;

    std::string m_texts;
    std::vector<Place> m_places;
    std::size_t m_unreadable = 0;
};

} // namespace orvane
