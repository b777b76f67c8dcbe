// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// Lengths of time as text, both ways. A length is a number of seconds. Any thread.
///
/// Showing floors to whole seconds and takes a negative length for 0; a length that is not finite or does not
/// fit 64 bits stops the process.
class Durations {
public:
    /// How the user likes lengths shown: 2:05:09, 2:05 (seconds dropped) or 2.09 h.
    enum class Format { hms, hm, decimal };
    static constexpr std::array formats = {Format::hms, Format::hm, Format::decimal};

    /// "hms", "hm" or "decimal", as the account's settings write it.
    static std::string_view text(Format format);
    /// The reverse; nothing for any other text.
    static std::optional<Format> formatFromText(std::string_view text);

    /// Hours are not limited to 24, and the decimal point is a point in every system language.
    static std::string format(double seconds, Format format);

    /// The compact label of lists and menus: 59m, 1h 05m.
    static std::string shortLabel(double seconds);

    /// Reads typed text: 1:30 or 1:30:15, units (1.5h, 1h 30m, 90 min, 45s), decimal hours (1.5 or 1,5) or
    /// whole minutes (90). Nothing for other text, for empty text and for lengths above `longest`.
    static std::optional<double> parse(std::string_view text);

    /// The longest length that is read: 100000 hours, over eleven years. What is longer is a slip of the
    /// finger, and refusing it keeps every sum with an instant inside its range.
    static constexpr double longest = 100'000.0 * 3600;
};

} // namespace orvane
