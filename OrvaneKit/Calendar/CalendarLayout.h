// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Calendar/DaySegment.h"
#include "Time/UserTime.h"

#include <vector>

namespace orvane {

/// A column of the calendar: a day and its blocks, by start, then end, then the order of the entries.
struct CalendarDay {
    DayKey day;
    std::vector<DaySegment> segments;

    bool operator==(const CalendarDay &) const = default;
};

/// Turns entries into the blocks of a calendar. Pure functions, for any thread.
struct CalendarLayout {
    /// The days from `first` to `last` (not before it), each with what the entries have on it, laid out.
    ///
    /// - A running entry reaches to `now`. An entry without length is a block without length.
    /// - An entry that ends as a day begins has no block on that day, nor any on a day that the zone skipped.
    /// - Where the clock was set back within an entry, so that it shows no later time at the end than at the
    ///   start, the block has the entry's true length.
    static std::vector<CalendarDay> days(const std::vector<TimeEntryResponse> &entries, DayKey first,
                                         DayKey last, const UserTime &time, Instant now);

    /// Sorts the segments of one day and gives each its lane: the leftmost one that is free at its start.
    /// Segments that overlap, directly or through others, share a number of lanes. One that starts as another
    /// ends does not overlap it; one shorter than a minute takes up a minute.
    static void arrange(std::vector<DaySegment> &segments);
};

} // namespace orvane
