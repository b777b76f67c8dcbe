// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Time/DayKey.h"

namespace orvane {

/// The part of an entry that lies on one day: a block of the calendar. Plain data; any thread.
///
/// Minutes are those of the wall clock after 0:00, from 0 to 1440 on every day: a day of 23 hours has an hour
/// in which nothing lies, and on one of 25 hours both passes of the doubled hour lie in one place.
struct DaySegment {
    TimeEntryResponse entry;
    DayKey day;
    double startMinute = 0;
    double endMinute = 0;         ///< not before the start
    bool continuesBefore = false; ///< the entry began on an earlier day; the block starts at 0
    bool continuesAfter = false;  ///< the entry goes on into a later day; the block ends at 1440
    int lane = 0;                 ///< its column among those of the blocks that overlap, from the left
    int lanes = 1;                ///< how many columns these have

    bool operator==(const DaySegment &) const = default;
};

} // namespace orvane
