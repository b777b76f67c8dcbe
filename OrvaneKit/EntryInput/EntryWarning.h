// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "EntryInput/EntryTimes.h"
#include "OrvaneAPI/Schemas.h"

#include <chrono>
#include <string>
#include <vector>

namespace orvane {

/// What is unusual about when an entry lies. It is recorded all the same; the user is told, or asked first.
/// A value; any thread.
struct EntryWarning {
    enum class Kind { longerThanDay, inFuture, overlap };

    static constexpr std::chrono::hours longestDay{24};
    /// Entries that share less than this follow each other.
    static constexpr std::chrono::minutes leastOverlap{1};

    Kind kind = Kind::overlap;
    TimeEntryResponse other; ///< of an overlap

    /// Of an entry with these times among others, in the order of Kind; overlaps in the order given. An entry
    /// that runs lasts until now. `id` is its own, to be passed over; empty for one that is being made.
    static std::vector<EntryWarning> of(const EntryTimes &times, const std::string &id,
                                        const std::vector<TimeEntryResponse> &others, Instant now);
};

} // namespace orvane
