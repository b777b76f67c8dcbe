// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/EntrySentence.h"

#include <string>
#include <vector>

namespace orvane {

/// Words of a description that look like a time or a day, so that people can be told that they were not read
/// as one. A guess that is made for people: it decides nothing. A value; any thread.
///
/// What can hardly be anything else (9:30, 10am, 2026-03-04, "tomorrow") is found wherever it stands; what
/// often is something else ("chapters 3-4", "the sun") only at the end, where a time would be, and only when
/// no time was read.
struct UnreadWords {
    enum class Kind {
        time,
        hours, ///< two bare numbers that would be a range with minutes: 9-17
        day,
    };

    Kind kind = Kind::time;
    std::string text; ///< as typed, without punctuation around it

    bool operator==(const UnreadWords &) const = default;

    /// In the order typed, each text once.
    static std::vector<UnreadWords> of(const EntrySentence::Reading &reading);
    /// Of bare hours the range that they would be: "9:00-17:00".
    std::string asRange() const;
};

} // namespace orvane
