// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Activity/ActivityDay.h"
#include "Terminal/TerminalStyle.h"
#include "Time/UserTime.h"

#include <span>
#include <string>

namespace orvane {

/// Whether there is something to draw.
bool hasActivity(const ActivityDay &day);

/// The agents' days as a person reads them in a terminal. Pure but for the clock, which tells what "today"
/// is; names and titles come from logs and are made printable here.
class ActivityPicture {
public:
    ActivityPicture(UserTime time, TerminalStyle style);

    /// A row of time for each repository, attention solid and agents at work light, with totals; below the
    /// focus blocks and the sessions. The hours go from the first to the last with something in it, six at
    /// least.
    std::string day(const ActivityDay &day) const;
    /// A row for each day with a bar for each repository, one below the other on one scale. Repositories
    /// for which there is no room share the last column.
    std::string week(std::span<const ActivityDay> days) const;

private:
    UserTime m_time;
    TerminalStyle m_style;
};

} // namespace orvane
