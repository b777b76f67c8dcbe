// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

class UserTime;

/// Dates as text, always in the English of "en_GB" whatever the system's language, in the user's time zone.
///
/// A formatter is costly, so each combination of format, zone, calendar and locale is made once and kept
/// until the process ends. Any thread; the lock is held to look a formatter up, not to make one or to format.
class DateFormatters {
public:
    /// `format` is a pattern of the Unicode date formats ("EEE, d MMM") without the zone or its offset; any
    /// other text stops the process.
    static std::string string(Instant instant, std::string_view format, const UserTime &userTime);

    /// The locale's own pattern for a set of fields such as "yMd"; nothing when it has none.
    static std::optional<std::string> patternFor(std::string_view fields);
};

} // namespace orvane
