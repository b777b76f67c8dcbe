// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalStore/QueuedRows.h"

#include "Support/JsonImpl.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr std::size_t batchSize = 512;
/// A second thread costs more than it saves below this.
constexpr std::size_t longQueue = 2 * batchSize;

/// `decodeJson` in place: a change is large to move.
bool readInto(EntryChange &change, std::string_view text, JsonReading reading)
{
    json::Reader reader{reading, {}};
    return json::readDocument(reader, text, &json::readErased<EntryChange>, &change);
}

} // namespace

QueuedRows::~QueuedRows()
{
    close();
}

void QueuedRows::add(const Connection::Row &row)
{
    const std::optional<std::int64_t> seq = row.integer(0);
    const std::optional<std::string_view> text = row.blob(1);
    if (!seq || !text) {
        ++m_unreadable;
        return;
    }
    if (m_changes.empty())
        begin(static_cast<std::size_t>(row.integer(2).value_or(0)));
    if (m_added == m_changes.size()) {
        ++m_unreadable; // a damaged file can have more rows than it counts
        return;
    }
    if (!m_filling) {
        m_filling = std::make_unique<Batch>();
        m_filling->changes = m_changes.data() + m_added;
    }
    m_filling->places.push_back({.seq = *seq, .from = m_filling->texts.size(), .size = text->size()});
    m_filling->texts.append(*text);
    ++m_added;
    if (m_filling->places.size() == batchSize)
        publish();
}

void QueuedRows::begin(std::size_t count)
{
    m_changes.resize(count);
    if (count >= longQueue)
        m_helper = std::thread([this] { readBatches(); });
}

void QueuedRows::publish()
{
    {
        const std::lock_guard lock(m_mutex);
        m_batches.push_back(std::move(m_filling));
    }
    m_isChanged.notify_one();
}

/// No more batches come; ends when the helper has ended.
void QueuedRows::close()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
    }
    m_isChanged.notify_one();
    if (m_helper.joinable())
        m_helper.join();
}

void QueuedRows::readBatches()
{
    for (;;) {
        Batch *batch = nullptr;
        {
            std::unique_lock lock(m_mutex);
            m_isChanged.wait(lock, [this] { return m_isClosed || m_next < m_batches.size(); });
            if (m_next == m_batches.size())
                return;
            batch = m_batches[m_next++].get();
        }
        read(*batch);
    }
}

std::vector<PendingChange> QueuedRows::changes()
{
    if (m_filling)
        publish();
    {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
    }
    m_isChanged.notify_one();
    readBatches();
    close();
    const auto isWhole = [](const auto &batch) { return std::ranges::all_of(batch->places, &Place::isRead); };
    m_changes.resize(m_added);
    if (std::ranges::all_of(m_batches, isWhole))
        return std::move(m_changes);
    std::vector<PendingChange> readable;
    for (const auto &batch : m_batches) {
        for (std::size_t i = 0; i < batch->places.size(); ++i) {
            if (batch->places[i].isRead)
                readable.push_back(std::move(batch->changes[i]));
        }
    }
    m_unreadable += m_added - readable.size();
    return readable;
}

void QueuedRows::read(Batch &batch) const
{
    const std::string_view texts(batch.texts);
    PendingChange *change = batch.changes;
    for (Place &place : batch.places) {
        change->seq = place.seq;
        place.isRead = readInto(change->change, texts.substr(place.from, place.size), m_reading);
        ++change;
    }
}

} // namespace orvane
