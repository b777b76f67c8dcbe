// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace orvane {

/// From `at` on the wall clock is ahead of UTC by `offset`.
struct ZoneChange {
    Instant at;
    std::chrono::seconds offset{0};

    bool operator==(const ZoneChange &) const = default;
};

/// How a zone changes its clock year after year, as a zone file says for the time after its table:
/// "CET-1CEST,M3.5.0,M10.5.0/3", or "<-03>3" for a zone that keeps one offset. A value; any thread.
class YearlyChanges {
public:
    /// Nothing for a text that is no such rule.
    static std::optional<YearlyChanges> parse(std::string_view text);

    bool keepsOneOffset() const { return !m_daylight; }
    /// Outside daylight-saving time.
    std::chrono::seconds offset() const { return m_offset; }

    /// The changes of one year, 1 to 30000, in order; none where one offset is kept. Near New Year they may
    /// lie in the year before or after.
    std::vector<ZoneChange> inYear(int year) const;

private:
    /// A day of the year and a time of it, which may lie up to a week before or after that day.
    struct Moment {
        enum class Kind {
            julian,  ///< `day` 1 to 365; 29 February is not counted
            ordinal, ///< `day` 0 to 365; it is
            weekday, ///< `weekday` (0 for Sunday) for the `week`th time in `month`, with 5 for the last
        };
        Kind kind = Kind::weekday;
        int day = 0;
        int month = 0;
        int week = 0;
        int weekday = 0;
        std::chrono::seconds time{0};

        std::chrono::local_seconds inYear(int year) const;
    };
    struct Daylight {
        std::chrono::seconds offset{0};
        Moment begin;
        Moment end;
    };
    class Reader;

    std::chrono::seconds m_offset{0};
    std::optional<Daylight> m_daylight;
};

} // namespace orvane
