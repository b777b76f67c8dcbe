// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/CatalogUse.h"

#include "Catalog/EntryParts.h"
#include "Catalog/EntrySeconds.h"

#include <algorithm>
#include <optional>

namespace orvane {

namespace {

bool isOn(const EntryPart &part, const CatalogItem &item)
{
    return (item.kind == CatalogItem::Kind::project ? part.projectId : part.taskId) == item.id;
}

/// What an entry has on the item; nothing when it does not refer to it.
std::optional<std::int64_t> secondsOn(const CatalogItem &item, const TimeEntryResponse &entry, Instant now)
{
    if (item.kind == CatalogItem::Kind::tag) {
        const bool hasTag = std::ranges::find(entry.tagIds, item.id) != entry.tagIds.end();
        return hasTag ? std::optional(entrySeconds(entry, now)) : std::nullopt;
    }
    std::optional<Instant::duration> sum;
    for (const EntryPart &part : partsOf(entry, now)) {
        if (isOn(part, item))
            sum = sum.value_or(Instant::duration{0}) + part.length;
    }
    return sum ? std::optional(std::chrono::floor<std::chrono::seconds>(*sum).count()) : std::nullopt;
}

} // namespace

CatalogUse CatalogUse::of(const CatalogItem &item, std::span<const TimeEntryResponse> entries,
                          const std::set<std::string> &waiting, Instant now)
{
    CatalogUse use;
    for (const TimeEntryResponse &entry : entries) {
        const auto seconds = secondsOn(item, entry, now);
        if (!seconds)
            continue;
        ++use.entries;
        use.seconds += *seconds;
        use.unsent += waiting.contains(entry.id) ? 1 : 0;
    }
    return use;
}

} // namespace orvane
