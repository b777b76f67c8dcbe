// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// A time of day to the minute. Any thread.
struct ClockTime {
    std::uint8_t hour = 0;   ///< 0 to 23
    std::uint8_t minute = 0; ///< 0 to 59

    auto operator<=>(const ClockTime &) const = default;

    /// 09:05 and 17:30, or with `hour12` 9:05 am, 5:30 pm and 12:00 am for midnight. The numbers must be
    /// those of a time of day.
    static std::string format(int hour, int minute, bool hour12);
    std::string text(bool hour12) const { return format(hour, minute, hour12); }

    /// Reads typed text such as 930, 9:30, 9.30, 9h30, 9 30, 9, 9p or 12:15 a.m.; nothing for other text.
    static std::optional<ClockTime> parse(std::string_view text);

    /// This many minutes later (earlier when negative), wrapping past midnight. A delta so large that the sum
    /// overflows stops the process.
    ClockTime shifted(std::int64_t minutes) const;
};

} // namespace orvane
