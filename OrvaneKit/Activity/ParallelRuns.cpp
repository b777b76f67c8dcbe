// SPDX-License-Identifier: GPL-3.0-or-later
#include "Activity/ParallelRuns.h"

#include <algorithm>
#include <tuple>

namespace orvane {

namespace {

struct Edge {
    Instant at;
    int step; ///< 1 where a family becomes busy, -1 where it rests

    /// Ends come before starts, so that runs that only touch do not overlap.
    auto operator<=>(const Edge &) const = default;
};

/// The edges of each family's own stretches: overlapping runs of one family are one.
std::vector<Edge> edgesOf(std::vector<FamilyRun> runs)
{
    std::erase_if(runs, [](const FamilyRun &run) { return run.range.from >= run.range.to; });
    std::ranges::sort(runs, {}, [](const FamilyRun &run) { return std::tuple(run.family, run.range.from); });
    std::vector<Edge> edges;
    for (std::size_t i = 0; i < runs.size();) {
        const std::size_t family = runs[i].family;
        InstantInterval stretch = runs[i].range;
        for (++i; i < runs.size() && runs[i].family == family && runs[i].range.from <= stretch.to; ++i)
            stretch.to = std::max(stretch.to, runs[i].range.to);
        edges.push_back({stretch.from, 1});
        edges.push_back({stretch.to, -1});
    }
    std::ranges::sort(edges);
    return edges;
}

} // namespace

std::vector<InstantInterval> parallelStretches(std::vector<FamilyRun> runs)
{
    std::vector<InstantInterval> stretches;
    int busy = 0;
    Instant since;
    for (const Edge &edge : edgesOf(std::move(runs))) {
        const int before = busy;
        busy += edge.step;
        if (before < 2 && busy == 2)
            since = edge.at;
        if (before != 2 || busy > 1)
            continue;
        if (!stretches.empty() && stretches.back().to == since)
            stretches.back().to = edge.at;
        else
            stretches.push_back({since, edge.at});
    }
    return stretches;
}

} // namespace orvane
