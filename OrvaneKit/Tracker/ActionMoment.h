// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Instant.h"

#include <chrono>
#include <optional>

namespace orvane {

/// When a start or a stop without a time of its own happens. Clocks of two devices are never quite alike, and
/// while a user's action waits for the server another device may have acted. A value; any thread.
struct ActionMoment {
    enum class Kind {
        free,
        overtaken, ///< another device started the timer while this action waited
        ahead,     ///< the timer begins only later; nothing can end or follow it yet
    };

    /// How far a timer may lie ahead, or be started ahead, without being asked about.
    static constexpr std::chrono::minutes tolerance{1};

    Kind kind = Kind::free;
    /// When it happens: as asked, or when the timer begins that is just ahead. A clock that was set back a
    /// little is no reason to refuse what happens now.
    Instant at;

    bool operator==(const ActionMoment &) const = default;

    /// `asked` is when the user acted; `waited` how long ago that is by now.
    static ActionMoment of(const std::optional<TimeEntryResponse> &running, Instant asked,
                           std::chrono::milliseconds waited);

    /// Whether a timer may be started at this time that was named. One that is still to come is meant only
    /// when its day was named too: a bare time of day is sooner a slip.
    static bool mayStart(Instant at, bool namesDay, Instant now) { return namesDay || at <= now + tolerance; }
};

} // namespace orvane
