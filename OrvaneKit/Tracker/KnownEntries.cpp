// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/KnownEntries.h"

#include "Time/AppClock.h"
#include "Tracker/Overlay.h"

#include <algorithm>
#include <ranges>
#include <unordered_map>

namespace orvane {

namespace {

/// Tells one set of entries from another, whatever their order. The server gives an entry another version
/// with each change; what is shown before the server answered differs in the rest.
template <std::ranges::input_range Entries>
std::uint64_t digest(Entries &&entries)
{
    const auto text = [](const std::string &value) { return std::uint64_t{std::hash<std::string>{}(value)}; };
    std::uint64_t sum = 0;
    for (const TimeEntryResponse &entry : entries) {
        std::uint64_t one = text(entry.id);
        for (const std::uint64_t part :
             {text(entry.version), text(entry.description),
              static_cast<std::uint64_t>(millisecondsSinceEpoch(entry.start)),
              entry.stop ? static_cast<std::uint64_t>(millisecondsSinceEpoch(*entry.stop)) : 0})
            one = (one ^ part) * 0x9E37'79B9'7F4A'7C15U;
        sum += one ^ (one >> 29U);
    }
    return sum;
}

TouchedEntry touched(const TimeEntryResponse &entry)
{
    return {entry.id, entry.start};
}

} // namespace

const std::vector<TimeEntryResponse> &KnownEntries::entries() const
{
    if (!std::exchange(m_isSorted, true))
        sortNewestFirst(m_entries);
    return m_entries;
}

const TimeEntryResponse *KnownEntries::find(const std::string &id) const
{
    const auto found = std::ranges::find(m_entries, id, &TimeEntryResponse::id);
    if (found != m_entries.end())
        return &*found;
    return m_running && m_running->id == id ? &*m_running : nullptr;
}

TouchedEntries KnownEntries::takeSnapshot(Snapshot snapshot)
{
    if (m_answers > 0)
        return {};
    TouchedEntries changes;
    std::ranges::transform(m_entries, std::back_inserter(changes), touched);
    m_entries = std::exchange(snapshot.entries, {});
    std::ranges::transform(m_entries, std::back_inserter(changes), touched);
    m_isSorted = false;
    m_savedEntries = digest(m_entries);
    m_snapshotBegin = snapshot.weekStart;
    m_running = snapshot.running;
    m_saved = std::move(snapshot);
    if (m_running)
        changes.push_back(touched(*m_running));
    return changes;
}

AnswerMark KnownEntries::nextAnswer()
{
    return {++m_answers, AppClock::now()};
}

TouchedEntries KnownEntries::takeWindow(DaySpan days, std::vector<TimeEntryResponse> entries)
{
    m_days.setWindow(days, nextAnswer());
    m_isListed = true;
    m_isUnsaved = true;
    m_snapshotBegin.reset();
    TouchedEntries changes = replace(days.interval, std::move(entries));
    std::erase_if(m_entries, [&](const TimeEntryResponse &entry) {
        const bool isForgotten = !m_days.contains(entry.start);
        if (isForgotten)
            changes.push_back(touched(entry));
        return isForgotten;
    });
    return changes;
}

TouchedEntries KnownEntries::takeWeekBefore(DaySpan days, std::vector<TimeEntryResponse> entries)
{
    m_days.extend(days, nextAnswer());
    m_isUnsaved = true;
    return replace(days.interval, std::move(entries));
}

TouchedEntries KnownEntries::takeDays(DaySpan days, std::vector<TimeEntryResponse> entries)
{
    m_days.add(days, nextAnswer());
    return replace(days.interval, std::move(entries));
}

TouchedEntries KnownEntries::takeRunning(std::optional<TimeEntryResponse> running)
{
    nextAnswer();
    TouchedEntries changes;
    if (m_running == running)
        return changes;
    for (const auto *entry : {&m_running, &running}) {
        if (*entry)
            changes.push_back(touched(**entry));
    }
    m_running = std::move(running);
    m_isUnsaved = true;
    return changes;
}

/// Takes the server's word for all entries that start in the interval.
TouchedEntries KnownEntries::replace(InstantInterval interval, std::vector<TimeEntryResponse> entries)
{
    std::unordered_map<std::string, TimeEntryResponse> before;
    std::unordered_map<std::string, std::size_t> places;
    std::vector<TimeEntryResponse> after;
    after.reserve(m_entries.size() + entries.size());
    const auto append = [&](TimeEntryResponse entry) {
        places.emplace(entry.id, after.size());
        after.push_back(std::move(entry));
    };
    for (TimeEntryResponse &entry : m_entries) {
        if (interval.contains(entry.start))
            before.emplace(entry.id, std::move(entry));
        else
            append(std::move(entry));
    }
    TouchedEntries changes;
    for (TimeEntryResponse &entry : entries) {
        // One that is known elsewhere was moved since.
        if (const auto place = places.find(entry.id); place != places.end()) {
            changes.push_back(touched(after[place->second]));
            changes.push_back(touched(entry));
            after[place->second] = std::move(entry);
            continue;
        }
        const auto known = before.extract(entry.id);
        if (known.empty() || known.mapped() != entry)
            changes.push_back(touched(entry));
        if (!known.empty() && known.mapped().start != entry.start)
            changes.push_back(touched(known.mapped()));
        append(std::move(entry));
    }
    for (const auto &[id, entry] : before)
        changes.push_back(touched(entry));
    m_entries = std::move(after);
    m_isSorted = false;
    return changes;
}

TouchedEntries KnownEntries::take(const TimeEntryResponse &entry)
{
    ++m_generation;
    m_isUnsaved = true;
    m_isSorted = false;
    TouchedEntries changes{touched(entry)};
    const auto known = std::ranges::find(m_entries, entry.id, &TimeEntryResponse::id);
    if (known != m_entries.end())
        changes.push_back(touched(*known));
    if (entry.workspaceId != m_workspaceId) {
        if (known != m_entries.end())
            m_entries.erase(known);
    } else if (known != m_entries.end()) {
        *known = entry;
    } else {
        m_entries.push_back(entry);
    }
    if (entry.stop) {
        if (m_running && m_running->id == entry.id)
            m_running.reset();
        return changes;
    }
    // The server lets one entry run: whatever ran before ended where this one starts.
    if (m_running)
        changes.push_back(touched(*m_running));
    for (TimeEntryResponse &other : m_entries) {
        if (other.id != entry.id && !other.stop) {
            other.stop = std::max(entry.start, other.start);
            changes.push_back(touched(other));
        }
    }
    m_running = entry;
    return changes;
}

TouchedEntries KnownEntries::drop(const std::string &id)
{
    ++m_generation;
    m_isUnsaved = true;
    TouchedEntries changes;
    std::erase_if(m_entries, [&](const TimeEntryResponse &known) {
        if (known.id != id)
            return false;
        changes.push_back(touched(known));
        return true;
    });
    if (m_running && m_running->id == id) {
        changes.push_back(touched(*m_running));
        m_running.reset();
    }
    return changes;
}

TouchedEntries KnownEntries::takeSent(const EntryChange &change)
{
    const std::vector<EntryChange> changes{change};
    const ShownEntries after = overlay(m_entries, m_running, changes, m_workspaceId);
    const auto found = std::ranges::find(after.entries, change.entryId(), &TimeEntryResponse::id);
    return found == after.entries.end() ? TouchedEntries{} : take(*found);
}

Instant KnownEntries::begin(Instant otherwise) const
{
    if (m_snapshotBegin)
        return *m_snapshotBegin;
    return m_days.window() ? m_days.window()->days.interval.from : otherwise;
}

std::optional<Snapshot> KnownEntries::unsaved(const std::optional<WorkspaceSettingsResponse> &settings,
                                              const Catalog &catalog, Instant begin)
{
    m_isUnsaved = false;
    Snapshot snapshot{this->begin(begin), {}, m_running, settings, catalog.projects(), catalog.clients(),
                      catalog.tags()};
    // What was begun after the loaded weeks belongs to them as well: a new week has not been asked for yet.
    const auto isIn = [&](const TimeEntryResponse &entry) { return entry.start >= snapshot.weekStart; };
    const std::uint64_t entries = digest(m_entries | std::views::filter(isIn));
    if (m_saved == snapshot && m_savedEntries == entries)
        return std::nullopt;
    m_saved = snapshot;
    m_savedEntries = entries;
    std::ranges::copy_if(m_entries, std::back_inserter(snapshot.entries), isIn);
    sortNewestFirst(snapshot.entries);
    return snapshot;
}

} // namespace orvane
