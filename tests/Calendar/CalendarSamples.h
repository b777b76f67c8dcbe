// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Calendar/CalendarLayout.h"
#include "Support/DateText.h"

#include <sstream>

namespace orvane {

inline Instant at(std::string_view iso)
{
    return instantFromIso8601(iso).value();
}

inline DayKey day(std::string_view text)
{
    return DayKey::parse(text).value();
}

/// A running one without `stop`.
inline TimeEntryResponse entry(const char *id, const char *start, const char *stop)
{
    TimeEntryResponse made;
    made.id = id;
    made.start = at(start);
    if (stop)
        made.stop = at(stop);
    return made;
}

/// A line a day: each block as its entry and its minutes, "<" where it goes on before and ">" after.
inline std::vector<std::string> pictures(const std::vector<CalendarDay> &days)
{
    std::vector<std::string> lines;
    for (const CalendarDay &column : days) {
        std::ostringstream line;
        line << column.day.description();
        for (const DaySegment &segment : column.segments)
            line << " " << segment.entry.id << " " << (segment.continuesBefore ? "<" : "")
                 << segment.startMinute << "-" << segment.endMinute << (segment.continuesAfter ? ">" : "");
        lines.push_back(line.str());
    }
    return lines;
}

} // namespace orvane
