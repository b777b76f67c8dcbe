// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// A day of the (proleptic Gregorian) calendar, independent of any time zone. Ordered by time. Any thread.
///
/// A key can hold numbers that are no day; they come only from code, since `parse` and `make` refuse them,
/// and doing arithmetic with such a key stops the process.
struct DayKey {
    int year = 1970;
    int month = 1; ///< 1 to 12
    int day = 1;   ///< 1 to 31

    auto operator<=>(const DayKey &) const = default;

    /// The day with these numbers; nothing when there is none or its year lies outside 1900 to 9999.
    static std::optional<DayKey> make(int year, int month, int day);
    /// Reads "2025-03-07": four, two and two digits and nothing else. Refuses what `make` refuses.
    static std::optional<DayKey> parse(std::string_view text);
    /// From a date of the standard library, which must be a real one.
    static DayKey of(std::chrono::year_month_day civil);

    /// Whether this is a real day that the product accepts from outside (years 1900 to 9999).
    bool isValid() const;
    /// "2025-03-07".
    std::string description() const;

    /// The same day for the standard library. It must be a real day.
    std::chrono::year_month_day civil() const;
    /// The day this many calendar days later (earlier when negative). Both days must be real ones between the
    /// years 1 and 32767.
    DayKey adding(std::int64_t days) const;
    /// 0 for Sunday to 6 for Saturday.
    int weekday() const;
    /// Calendar days from this day to the other; negative when that one is earlier.
    std::int64_t daysUntil(DayKey other) const;
};

} // namespace orvane

template <>
struct std::hash<orvane::DayKey> {
    std::size_t operator()(const orvane::DayKey &key) const noexcept
    {
        return std::hash<int>{}((key.year * 16 + key.month) * 32 + key.day);
    }
};
