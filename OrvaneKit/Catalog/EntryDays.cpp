// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntryDays.h"

#include <algorithm>
#include <ranges>

namespace orvane {

std::vector<DayGroup> entryDays(std::span<const TimeEntryResponse> newestFirst, const UserTime &time,
                                DayKey first, int count)
{
    std::vector<DayGroup> groups;
    std::vector<Instant> starts;
    groups.reserve(static_cast<std::size_t>(count));
    starts.reserve(static_cast<std::size_t>(count) + 1);
    for (int i = 0; i <= count; ++i)
        starts.push_back(time.startOfDay(first.adding(i)));
    for (int i = 0; i < count; ++i)
        groups.push_back({first.adding(i), {}});
    // A day reads from its morning on.
    for (const TimeEntryResponse &entry : std::views::reverse(newestFirst)) {
        const auto next = std::ranges::upper_bound(starts, entry.start);
        if (next != starts.begin() && next != starts.end())
            groups[static_cast<std::size_t>(next - starts.begin() - 1)].entries.push_back(entry);
    }
    return groups;
}

} // namespace orvane
