// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Result.h"
#include "Time/UserTime.h"

#include <optional>
#include <string>

namespace orvane {

/// The days that a list goes over.
struct DayRange {
    enum class Kind { day, week, month, span };

    Kind kind = Kind::day;
    DayKey first;
    int count = 1;

    DayKey last() const { return first.adding(count - 1); }
    InstantInterval interval(const UserTime &time) const;
};

/// How the days of a list are named on the command line; nothing of it is today.
struct DayRangeOptions {
    std::optional<std::string> word;
    std::optional<std::string> day;
    std::optional<std::string> week;
    std::optional<std::string> month;
    std::optional<std::string> from;
    std::optional<std::string> to;

    /// The error is a sentence about what is no day, or about days that are named in several ways.
    Result<DayRange, std::string> range(const UserTime &time) const;
};

} // namespace orvane
