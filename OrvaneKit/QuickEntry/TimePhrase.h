// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/EntrySentence.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace orvane {

/// The time at the end of a sentence; EntrySentence says what it may be. A value; any thread.
struct TimePhrase {
    EntrySentence::Time time;
    std::optional<EntrySentence::DayRef> day;
    std::size_t words = 0; ///< how many at the end of the line it takes

    /// The one at the end of these words. Only the last few words are looked at, whatever the line's length.
    static std::optional<TimePhrase> atEndOf(std::span<const std::string_view> words,
                                             const EntrySentence::Options &options, Instant now,
                                             const UserTime &calendar);
    /// How many of these words, at their end, are a range that is none: it lasts too long, or no time at all.
    static std::size_t refusedRangeAtEndOf(std::span<const std::string_view> words,
                                           const EntrySentence::Options &options, Instant now,
                                           const UserTime &calendar);
};

} // namespace orvane
