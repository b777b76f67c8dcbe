// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client/AllEntries.h"

#include <algorithm>
#include <iterator>

namespace orvane {

namespace {

/// The instants between the pieces. What is older than ten years, or still to come, is little.
std::vector<Instant> pieceBounds(Instant now)
{
    constexpr std::chrono::days halfYear{182};
    constexpr int pieces = 20;
    std::vector<Instant> bounds{earliestInstant};
    for (int i = pieces; i >= 0; --i) {
        if (const Instant bound = millisecondsFloor(now) - i * halfYear; bound > earliestInstant)
            bounds.push_back(bound);
    }
    // The last instant that can be written.
    bounds.push_back(instantLimit - std::chrono::milliseconds{1});
    return bounds;
}

} // namespace

Task<CallResult<std::vector<TimeEntryResponse>>> listAllEntries(ServerCalls calls, std::string workspaceId,
                                                                Instant now, std::function<void()> onAnswer)
{
    std::vector<TimeEntryResponse> entries;
    const std::vector<Instant> bounds = pieceBounds(now);
    for (std::size_t i = 0; i + 1 < bounds.size(); ++i) {
        auto piece = co_await calls.listTimeEntries(workspaceId, bounds[i], bounds[i + 1]);
        if (!piece)
            co_return failure(std::move(piece.error()));
        onAnswer();
        // What runs into a piece was listed in the one before.
        std::erase_if(*piece, [&](const TimeEntryResponse &entry) { return entry.start < bounds[i]; });
        std::ranges::move(*piece, std::back_inserter(entries));
    }
    co_return std::move(entries);
}

} // namespace orvane
