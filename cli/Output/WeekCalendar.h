// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Calendar/CalendarLayout.h"
#include "Terminal/TextTable.h"
#include "Time/UserTime.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

class Catalog;

/// A week's entries drawn for a terminal: a column a day, the hours down the side, each entry a box in its
/// project's colour. Boxes keep to rows of the picture, so short entries that follow each other closely stand
/// side by side; of more than there is room for, "+2" says that so many begin there.
///
/// ┌Website─┐ begins and ends here, a side without a corner goes on into the day before or after, and ╌ at
/// the bottom is a timer that still runs. Pure but for the clock, which tells what "today" is; any thread.
class WeekCalendar {
public:
    /// What an entry's box says.
    struct Label {
        std::string title;
        std::string detail;
        std::optional<std::uint32_t> colour = {};
    };
    using Labels = std::function<Label(const TimeEntryResponse &)>;

    /// Whether the terminal is wide enough for seven columns in which names can be read.
    static bool fits(const TerminalStyle &style) { return style.isTerminal && style.width >= leastWidth; }
    /// The project's name, or the description of an entry without one. The catalog must outlive it.
    static Labels labelsFrom(const Catalog &catalog);

    WeekCalendar(UserTime time, TerminalStyle style, Labels labels);

    /// `seconds` are what is tracked on each of the days. The hours go from the first to the last with
    /// something in them, six at least.
    std::string text(const std::vector<CalendarDay> &days, const std::vector<std::int64_t> &seconds) const;

private:
    static constexpr int leastWidth = 80;

    std::string header(const std::vector<CalendarDay> &days, const std::vector<std::int64_t> &seconds,
                       int column) const;

    UserTime m_time;
    TerminalStyle m_style;
    Labels m_labels;
};

} // namespace orvane
