// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Projects/CatalogWeek.h"

#include "Catalog/EntryParts.h"
#include "Tracker/Tracker.h"

#include <algorithm>

namespace orvane {

CatalogWeek CatalogWeek::of(const Tracker &tracker, Instant now)
{
    using Lengths = std::map<std::string, Instant::duration>;
    Lengths projects;
    Lengths tasks;
    Lengths taskless;
    const InstantInterval week = tracker.time().weekInterval(tracker.time().dayKey(now));
    for (const TimeEntryResponse &entry : tracker.entries()) {
        if (entry.start < week.from)
            break; // newest first
        if (!week.contains(entry.start))
            continue;
        for (const EntryPart &part : partsOf(entry, now)) {
            if (!part.projectId)
                continue;
            projects[*part.projectId] += part.length;
            (part.taskId ? tasks[*part.taskId] : taskless[*part.projectId]) += part.length;
        }
    }
    // Summed before it is cut to seconds, as everywhere.
    const auto inSeconds = [](const Lengths &lengths) {
        std::map<std::string, std::int64_t> seconds;
        for (const auto &[id, length] : lengths)
            seconds[id] = std::chrono::floor<std::chrono::seconds>(length).count();
        return seconds;
    };
    return {inSeconds(projects), inSeconds(tasks), inSeconds(taskless)};
}

std::int64_t CatalogWeek::most() const
{
    std::int64_t most = 0;
    for (const auto &[id, seconds] : ofProject)
        most = std::max(most, seconds);
    return most;
}

} // namespace orvane
