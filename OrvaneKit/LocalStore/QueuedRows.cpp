// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalStore/QueuedRows.h"

#include "Support/JsonImpl.h"

#include <algorithm>
#include <future>

namespace orvane {

namespace {

/// A second thread costs more than it saves below this.
constexpr std::size_t longQueue = 1000;

/// `decodeJson` in place: a change is large to move.
bool readInto(EntryChange &change, std::string_view text, JsonReading reading)
{
    json::Reader reader{reading, {}};
    return json::readDocument(reader, text, &json::readErased<EntryChange>, &change);
}

} // namespace

void QueuedRows::add(const Connection::Row &row)
{
    const std::optional<std::int64_t> seq = row.integer(0);
    const std::optional<std::string_view> text = row.blob(1);
    if (!seq || !text) {
        ++m_unreadable;
        return;
    }
    m_places.push_back({.seq = *seq, .from = m_texts.size(), .size = text->size()});
    m_texts.append(*text);
}

std::vector<PendingChange> QueuedRows::changes(JsonReading reading)
{
    std::vector<PendingChange> changes(m_places.size());
    const std::span<Place> places(m_places);
    const std::size_t half = places.size() < longQueue ? places.size() : places.size() / 2;
    std::future<void> rest;
    if (half < places.size()) {
        rest = std::async([this, reading, behind = places.subspan(half), into = changes.data() + half] {
            read(behind, into, reading);
        });
    }
    read(places.first(half), changes.data(), reading);
    if (rest.valid())
        rest.get();
    if (std::ranges::all_of(m_places, &Place::isRead))
        return changes;
    std::vector<PendingChange> readable;
    for (std::size_t i = 0; i < changes.size(); ++i) {
        if (m_places[i].isRead)
            readable.push_back(std::move(changes[i]));
    }
    m_unreadable += changes.size() - readable.size();
    return readable;
}

void QueuedRows::read(std::span<Place> places, PendingChange *changes, JsonReading reading) const
{
    const std::string_view texts(m_texts);
    for (Place &place : places) {
        changes->seq = place.seq;
        place.isRead = readInto(changes->change, texts.substr(place.from, place.size), reading);
        ++changes;
    }
}

} // namespace orvane
