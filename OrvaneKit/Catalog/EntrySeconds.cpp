// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntrySeconds.h"

#include <algorithm>
#include <numeric>

namespace orvane {

std::int64_t entrySeconds(const TimeEntryResponse &entry, Instant now)
{
    return entrySeconds(std::span(&entry, 1), now);
}

std::int64_t entrySeconds(std::span<const TimeEntryResponse> entries, Instant now)
{
    return entrySeconds(entries, {Instant::min(), Instant::max()}, now);
}

std::int64_t entrySeconds(std::span<const TimeEntryResponse> entries, const InstantInterval &startedIn,
                          Instant now)
{
    Instant::duration sum{0};
    for (const TimeEntryResponse &entry : entries) {
        if (startedIn.contains(entry.start))
            sum += std::max(entry.stop.value_or(now) - entry.start, Instant::duration{0});
    }
    return std::chrono::floor<std::chrono::seconds>(sum).count();
}

std::vector<std::int64_t> shareSeconds(const TimeEntryResponse &entry, Instant now)
{
    constexpr std::int64_t whole = 100;
    const std::int64_t seconds = entrySeconds(entry, now);
    std::vector<std::int64_t> parts;
    for (const TimeShareResponse &share : entry.shares)
        parts.push_back(seconds * share.percent / whole);
    std::vector<std::size_t> byRest(parts.size());
    std::iota(byRest.begin(), byRest.end(), std::size_t{0});
    std::ranges::sort(byRest, {}, [&](std::size_t i) {
        return std::pair(-(seconds * entry.shares[i].percent % whole), i);
    });
    const std::int64_t left = seconds - std::accumulate(parts.begin(), parts.end(), std::int64_t{0});
    for (std::int64_t i = 0; i < std::min(left, static_cast<std::int64_t>(parts.size())); ++i)
        ++parts[byRest[static_cast<std::size_t>(i)]];
    return parts;
}

} // namespace orvane
