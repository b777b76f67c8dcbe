// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/EntrySentence.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// A time that was typed and not read, so that what is recorded without it would be another entry than was
/// meant. Where a line says more than this it is only asked about (SentenceNote). A value; any thread.
struct UnreadTime {
    enum class Why {
        behindIt, ///< a time is read at the end of the line, and a mention that names nothing stands there
        noRange,  ///< it would last longer than a night, or no time at all
    };

    Why why = Why::behindIt;
    std::string text; ///< the words of the time
    std::string mark; ///< the mention that hides it

    bool operator==(const UnreadTime &) const = default;

    /// Of a reading of a line by these options at this time. Nothing when a time was read.
    static std::optional<UnreadTime> of(const EntrySentence::Reading &reading,
                                        const EntrySentence::Options &options, Instant now,
                                        const UserTime &calendar);
};

/// Whether the description holds nothing but mentions, times and days that were not understood.
bool saysNothing(const EntrySentence::Reading &reading);

} // namespace orvane
