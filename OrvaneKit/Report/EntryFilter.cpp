// SPDX-License-Identifier: GPL-3.0-or-later
#include "Report/EntryFilter.h"

#include <algorithm>

namespace orvane {

bool EntryFilter::takesProject(const std::optional<std::string> &id, const Catalog &catalog) const
{
    if (projectId && *projectId != id.value_or(""))
        return false;
    if (!clientId)
        return true;
    const ProjectResponse *project = id ? catalog.project(*id) : nullptr;
    return *clientId == (project ? project->clientId.value_or("") : "");
}

bool EntryFilter::takesTags(const TimeEntryResponse &entry) const
{
    if (!tagId)
        return true;
    return tagId->empty() ? entry.tagIds.empty()
                          : std::ranges::find(entry.tagIds, *tagId) != entry.tagIds.end();
}

std::vector<EntryPart> EntryFilter::partsOf(const TimeEntryResponse &entry, const Catalog &catalog,
                                            Instant now) const
{
    if (!takesTags(entry))
        return {};
    std::vector<EntryPart> parts = orvane::partsOf(entry, now);
    std::erase_if(parts, [&](const EntryPart &part) { return !takesProject(part.projectId, catalog); });
    return parts;
}

std::vector<TimeEntryResponse> EntryFilter::entriesOf(std::vector<TimeEntryResponse> entries,
                                                      const Catalog &catalog) const
{
    if (!isEmpty())
        std::erase_if(entries, [&](const TimeEntryResponse &entry) {
            return partsOf(entry, catalog, entry.start).empty();
        });
    return entries;
}

std::int64_t EntryFilter::seconds(std::span<const TimeEntryResponse> entries, const Catalog &catalog,
                                  Instant now) const
{
    Instant::duration sum{0};
    for (const TimeEntryResponse &entry : entries) {
        for (const EntryPart &part : partsOf(entry, catalog, now))
            sum += part.length;
    }
    return std::chrono::floor<std::chrono::seconds>(sum).count();
}

} // namespace orvane
