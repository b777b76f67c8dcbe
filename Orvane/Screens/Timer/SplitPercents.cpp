// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/SplitPercents.h"

#include "Suggestions/SplitMath.h"
#include "Support/Require.h"

#include <algorithm>
#include <numeric>
#include <span>

namespace orvane::SplitPercents {

namespace {

std::int64_t sumOf(std::span<const std::int64_t> percents)
{
    return std::accumulate(percents.begin(), percents.end(), std::int64_t{0});
}

/// What these can give and keep one each.
std::int64_t spareOfParts(std::span<const std::int64_t> percents)
{
    return sumOf(percents) - static_cast<std::int64_t>(percents.size());
}

/// The others, in the order in which they give way.
std::vector<std::size_t> othersOf(std::size_t part, std::size_t count)
{
    std::vector<std::size_t> others;
    for (std::size_t below = part + 1; below < count; ++below)
        others.push_back(below);
    for (std::size_t above = part; above > 0; --above)
        others.push_back(above - 1);
    return others;
}

} // namespace

Percents made(const Percents &percents)
{
    const bool isWhole =
        std::ranges::all_of(percents,
                            [](std::int64_t percent) { return percent >= 1 && percent <= whole; }) &&
        sumOf(percents) == whole;
    if (isWhole)
        return percents;
    Percents weights;
    for (const std::int64_t percent : percents)
        weights.push_back(std::clamp<std::int64_t>(percent, 0, whole));
    return SplitMath::apportion(weights, whole, 1);
}

Percents given(Percents percents, std::size_t part, std::int64_t wanted)
{
    ORVANE_REQUIRE(part < percents.size() && percents.size() >= fewestParts, "no such part to give to");
    wanted = std::clamp<std::int64_t>(wanted, 1, 1 + spareOfParts(percents));
    std::int64_t lacking = wanted - percents[part];
    percents[part] = wanted;
    const std::vector<std::size_t> others = othersOf(part, percents.size());
    if (lacking < 0) {
        percents[others.front()] -= lacking;
        return percents;
    }
    for (const std::size_t other : others) {
        const std::int64_t taken = std::min(lacking, percents[other] - 1);
        percents[other] -= taken;
        lacking -= taken;
    }
    return percents;
}

Percents moved(Percents percents, std::size_t part, std::int64_t at)
{
    ORVANE_REQUIRE(part + 1 < percents.size(), "no border below this part");
    const std::span<const std::int64_t> all(percents);
    const std::int64_t most = percents[part] + spareOfParts(all.subspan(part + 1));
    const std::int64_t wanted = std::clamp<std::int64_t>(at - sumOf(all.first(part)), 1, most);
    return given(std::move(percents), part, wanted);
}

Percents added(Percents percents)
{
    ORVANE_REQUIRE(percents.size() < mostParts, "there are parts enough");
    const auto giver =
        std::find_if(percents.rbegin(), percents.rend(), [](std::int64_t percent) { return percent > 1; });
    ORVANE_REQUIRE(giver != percents.rend(), "no part has anything to give");
    const std::int64_t half = *giver / 2;
    *giver -= half;
    percents.push_back(half);
    return percents;
}

Percents without(Percents percents, std::size_t part)
{
    ORVANE_REQUIRE(part < percents.size() && percents.size() > fewestParts, "no part to take away");
    const std::int64_t left = percents[part];
    percents.erase(percents.begin() + static_cast<std::ptrdiff_t>(part));
    percents[std::min(part, percents.size() - 1)] += left;
    return percents;
}

} // namespace orvane::SplitPercents
