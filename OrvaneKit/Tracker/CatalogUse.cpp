// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/CatalogUse.h"

#include "Catalog/EntrySeconds.h"

#include <algorithm>
#include <optional>

namespace orvane {

namespace {

/// Of an entry or one of its shares.
template <class T>
bool refersTo(const T &part, const CatalogItem &item)
{
    return (item.kind == CatalogItem::Kind::project ? part.projectId : part.taskId) == item.id;
}

/// What an entry has on the item; nothing when it does not refer to it. The project and task of a split entry
/// count nowhere, those of its shares do.
std::optional<std::int64_t> secondsOn(const CatalogItem &item, const TimeEntryResponse &entry, Instant now)
{
    const bool isTag = item.kind == CatalogItem::Kind::tag;
    if (isTag || entry.shares.empty()) {
        const bool refers =
            isTag ? std::ranges::find(entry.tagIds, item.id) != entry.tagIds.end() : refersTo(entry, item);
        return refers ? std::optional(entrySeconds(entry, now)) : std::nullopt;
    }
    std::optional<std::int64_t> sum;
    const std::vector<std::int64_t> parts = shareSeconds(entry, now);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (refersTo(entry.shares[i], item))
            sum = sum.value_or(0) + parts[i];
    }
    return sum;
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
