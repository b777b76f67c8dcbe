// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Time/UserTime.h"

#include <optional>
#include <string_view>

namespace orvane {

/// A moment as people type it, before it is known which day a bare time of day belongs to; EntryTimes says
/// that. A value; any thread.
struct TypedMoment {
    /// Set for a time of day; otherwise `instant` says it all.
    std::optional<ClockTime> clock = {};
    Instant instant = {};
    /// It was counted from now, or is now.
    bool isFromNow = false;

    bool operator==(const TypedMoment &) const = default;

    /// Reads 930, 9:30 or 9:30pm (a time of day), "now", -15 or -1h (so long before AppClock's now),
    /// "2026-03-01 9:30" in the user's zone, or a full instant such as 2026-03-01T09:30:00Z. Letter case
    /// plays no part. Nothing for other text.
    static std::optional<TypedMoment> parse(std::string_view text, const UserTime &time);
};

} // namespace orvane
