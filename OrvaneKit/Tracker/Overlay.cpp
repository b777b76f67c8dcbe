// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/Overlay.h"

#include "Catalog/EntryConversions.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

namespace orvane {

namespace {

/// The entries while changes are applied: by place, with an index so that many changes stay cheap.
class Pile {
public:
    explicit Pile(std::vector<TimeEntryResponse> entries)
    {
        m_entries.reserve(entries.size());
        for (TimeEntryResponse &entry : entries)
            add(std::move(entry));
    }

    void add(TimeEntryResponse entry)
    {
        if (m_places.try_emplace(entry.id, m_entries.size()).second)
            m_entries.emplace_back(std::move(entry));
    }

    std::optional<TimeEntryResponse> *find(const std::string &id)
    {
        const auto place = m_places.find(id);
        return place == m_places.end() || !m_entries[place->second] ? nullptr : &m_entries[place->second];
    }

    void endRunning(Instant at)
    {
        for (auto &entry : m_entries) {
            if (entry && !entry->stop)
                entry->stop = std::max(at, entry->start);
        }
    }

    std::vector<TimeEntryResponse> take()
    {
        std::vector<TimeEntryResponse> entries;
        entries.reserve(m_entries.size());
        for (auto &entry : m_entries) {
            if (entry)
                entries.push_back(std::move(*entry));
        }
        return entries;
    }

private:
    std::vector<std::optional<TimeEntryResponse>> m_entries;
    std::unordered_map<std::string, std::size_t> m_places;
};

void applyCreate(Pile &pile, const EntryChange::Create &create)
{
    if (pile.find(create.id) != nullptr)
        return;
    if (!create.request.stop)
        pile.endRunning(create.request.start);
    pile.add(entryResponse(create.request, create.id, create.workspaceId));
}

std::vector<TimeEntryResponse> withChanges(std::vector<TimeEntryResponse> entries,
                                           std::span<const EntryChange> changes,
                                           const std::string &workspaceId)
{
    if (changes.empty())
        return entries;
    Pile pile(std::move(entries));
    // By a change before: of two stops by one hand the first one's time stands.
    std::unordered_set<std::string> ended;
    for (const EntryChange &change : changes) {
        const bool isStop = std::holds_alternative<EntryChange::Stop>(change.action);
        if (isStop && ended.contains(change.entryId()))
            continue;
        if (const EntryRequest *request = change.request(); isStop || (request != nullptr && request->stop))
            ended.insert(change.entryId());
        else
            ended.erase(change.entryId());
        if (const auto *create = std::get_if<EntryChange::Create>(&change.action)) {
            if (create->workspaceId == workspaceId || !create->request.stop)
                applyCreate(pile, *create);
        } else if (auto *entry = pile.find(change.entryId())) {
            *entry = applied(change, std::move(**entry));
        }
    }
    return pile.take();
}

} // namespace

void sortNewestFirst(std::vector<TimeEntryResponse> &entries)
{
    const auto isNewer = [](const TimeEntryResponse &one, const TimeEntryResponse &other) {
        return std::tie(one.start, one.id) > std::tie(other.start, other.id);
    };
    if (std::ranges::is_sorted(entries, isNewer))
        return;
    // The store and the server list them the other way round.
    std::ranges::reverse(entries);
    if (std::ranges::is_sorted(entries, isNewer))
        return;
    // Entries are large to move, so their places are sorted.
    std::vector<TimeEntryResponse *> order;
    order.reserve(entries.size());
    for (TimeEntryResponse &entry : entries)
        order.push_back(&entry);
    std::ranges::sort(order, [&](const auto *one, const auto *other) { return isNewer(*one, *other); });
    std::vector<TimeEntryResponse> sorted;
    sorted.reserve(entries.size());
    for (TimeEntryResponse *entry : order)
        sorted.push_back(std::move(*entry));
    entries = std::move(sorted);
}

ShownEntries overlay(std::vector<TimeEntryResponse> serverEntries,
                     std::optional<TimeEntryResponse> serverRunning, std::span<const EntryChange> changes,
                     const std::string &workspaceId)
{
    if (serverRunning &&
        std::ranges::find(serverEntries, serverRunning->id, &TimeEntryResponse::id) == serverEntries.end())
        serverEntries.push_back(std::move(*serverRunning));
    ShownEntries shown{withChanges(std::move(serverEntries), changes, workspaceId), std::nullopt};
    sortNewestFirst(shown.entries);
    const auto running = std::ranges::find_if(
        shown.entries, [](const TimeEntryResponse &entry) { return !entry.stop.has_value(); });
    if (running != shown.entries.end())
        shown.running = *running;
    std::erase_if(shown.entries,
                  [&](const TimeEntryResponse &entry) { return entry.workspaceId != workspaceId; });
    return shown;
}

} // namespace orvane
