// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/DayGroup.h"

#include <algorithm>
#include <tuple>

namespace orvane {

std::vector<DayGroup> DayGroup::of(std::vector<TimeEntryResponse> entries, const UserTime &time)
{
    // The identifier decides between equal starts, so that the list never reorders by itself.
    std::ranges::sort(entries, [](const TimeEntryResponse &a, const TimeEntryResponse &b) {
        return std::tie(b.start, a.id) < std::tie(a.start, b.id);
    });
    std::vector<DayGroup> groups;
    for (TimeEntryResponse &entry : entries) {
        const DayKey day = time.dayKey(entry.start);
        // A clock put back over midnight can bring a day up again after the next one has begun.
        auto group = std::ranges::find(groups.rbegin(), groups.rend(), day, &DayGroup::day);
        if (group == groups.rend()) {
            groups.push_back({day, {}});
            group = groups.rbegin();
        }
        group->entries.push_back(std::move(entry));
    }
    return groups;
}

} // namespace orvane
