// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Time/DayKey.h"
#include "Time/UserTime.h"

#include <vector>

namespace orvane {

/// A day of the entry list and the entries that start on it. Plain data; any thread.
struct DayGroup {
    DayKey day; ///< also the group's identity
    std::vector<TimeEntryResponse> entries;

    bool operator==(const DayGroup &) const = default;

    /// The entries by the user's days as the list shows them: the latest day first and on each day the entry
    /// that started last first.
    static std::vector<DayGroup> of(std::vector<TimeEntryResponse> entries, const UserTime &time);
};

} // namespace orvane
