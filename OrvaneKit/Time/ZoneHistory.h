// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Time/YearlyChanges.h"

#include <optional>
#include <string_view>
#include <vector>

namespace orvane {

/// A stretch of time with one offset from UTC: from `from` up to but not including `to`.
struct ZoneSpan {
    Instant from = Instant::min();
    Instant to = Instant::max();
    std::chrono::seconds offset{0};

    bool contains(Instant instant) const { return instant >= from && instant < to; }
};

/// All changes of one zone's clock, as its file in the system's zone folder (TZif, version 2 and later) has
/// them: a table, and a rule for the years after it. After the year 10000 no clock changes any more. Never
/// changed once made; any thread.
///
/// We read the files ourselves: QTimeZone loses the changes that come after a table, and most systems cut
/// their tables at the first year from which the rule alone would do.
class ZoneHistory {
public:
    /// UTC.
    ZoneHistory() = default;

    /// Nothing for bytes that are no zone file. A file that counts leap seconds is none: its seconds are not
    /// those of our instants.
    static std::optional<ZoneHistory> parse(std::string_view bytes);

    /// The stretch that holds the instant.
    ZoneSpan spanAt(Instant instant) const;

private:
    class Reader;

    ZoneSpan spanInTable(Instant instant) const;
    ZoneSpan spanAfterTable(Instant instant) const;

    std::chrono::seconds m_firstOffset{0};
    std::vector<ZoneChange> m_table; ///< in order
    std::optional<YearlyChanges> m_afterwards;
};

} // namespace orvane
