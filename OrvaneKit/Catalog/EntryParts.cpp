// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntryParts.h"

#include "Catalog/EntrySeconds.h"

#include <algorithm>

namespace orvane {

std::vector<EntryPart> partsOf(const TimeEntryResponse &entry, Instant now)
{
    const Instant::duration whole = std::max(entry.stop.value_or(now) - entry.start, Instant::duration{0});
    if (entry.shares.empty())
        return {{whole, entry.projectId, entry.taskId, entry.isBillable}};
    const std::vector<std::int64_t> seconds = shareSeconds(entry, now);
    std::vector<EntryPart> parts;
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        const TimeShareResponse &share = entry.shares[i];
        parts.push_back({std::chrono::seconds{seconds[i]}, share.projectId, share.taskId, share.isBillable});
    }
    parts.front().length += whole - std::chrono::floor<std::chrono::seconds>(whole);
    return parts;
}

} // namespace orvane
