// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LocalStore/Connection.h"
#include "LocalStore/PendingChange.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace orvane {

/// Rows of the queue on their way to being changes. While the store's thread still copies rows out of the
/// database, a second one reads those of a long queue that are there already. Used on the store's thread, by
/// the store alone.
class QueuedRows {
public:
    explicit QueuedRows(JsonReading reading) : m_reading(reading) {}
    QueuedRows(const QueuedRows &) = delete;
    QueuedRows &operator=(const QueuedRows &) = delete;
    ~QueuedRows();

    /// A row of a number, a blob and the count of all rows, the same in each. One that is made of other
    /// things counts as unreadable.
    void add(const Connection::Row &row);
    /// What could be read of the rows, in their order. Once, after the last row.
    std::vector<PendingChange> changes();
    /// How many rows were left out.
    std::size_t unreadable() const { return m_unreadable; }

private:
    struct Place {
        std::int64_t seq = 0;
        std::size_t from = 0;
        std::size_t size = 0;
        bool isRead = false;
    };
    /// Rows that are read in one go, into changes that stand one behind the other.
    struct Batch {
        std::string texts;
        std::vector<Place> places;
        PendingChange *changes = nullptr;
    };

    void begin(std::size_t count);
    void publish();
    void close();
    void readBatches();
    void read(Batch &batch) const;

    JsonReading m_reading;
    /// As many as there are rows, so that they never move.
    std::vector<PendingChange> m_changes;
    std::size_t m_added = 0;
    std::size_t m_unreadable = 0;
    std::unique_ptr<Batch> m_filling;

    std::mutex m_mutex;
    std::condition_variable m_isChanged;
    std::vector<std::unique_ptr<Batch>> m_batches; ///< under the mutex; those before m_next were taken
    std::size_t m_next = 0;
    bool m_isClosed = false;
    std::thread m_helper;
};

} // namespace orvane
