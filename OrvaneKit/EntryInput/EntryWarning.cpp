// SPDX-License-Identifier: GPL-3.0-or-later
#include "EntryInput/EntryWarning.h"

#include <algorithm>

namespace orvane {

std::vector<EntryWarning> EntryWarning::of(const EntryTimes &times, const std::string &id,
                                           const std::vector<TimeEntryResponse> &others, Instant now)
{
    std::vector<EntryWarning> warnings;
    const Instant end = times.stop.value_or(std::max(now, times.start));
    if (end - times.start > longestDay)
        warnings.push_back({Kind::longerThanDay, {}});
    if (times.start > now || (times.stop && *times.stop > now))
        warnings.push_back({Kind::inFuture, {}});
    for (const TimeEntryResponse &other : others) {
        const Instant from = std::max(times.start, other.start);
        const Instant to = std::min(end, other.stop.value_or(std::max(now, other.start)));
        if (other.id != id && to - from >= leastOverlap)
            warnings.push_back({Kind::overlap, other});
    }
    return warnings;
}

} // namespace orvane
