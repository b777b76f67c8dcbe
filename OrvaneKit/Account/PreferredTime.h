// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Task.h"
#include "Time/UserTime.h"

#include <optional>
#include <string>

namespace orvane {

class Installation;

/// The user's choices about time. A value.
struct PreferredTime {
    UserTime time;
    /// A sentence or two for the user when another zone had to stand in for the one that was meant; empty
    /// when all is well.
    std::string notice;
};

/// The account's choices about time. `zone` stands in for the account's zone. A zone that this computer does
/// not know gives way to the computer's own, and one that the computer does not know of itself to UTC; the
/// notice says so.
PreferredTime preferredTime(const MeResponse &me, const std::optional<std::string> &zone);

/// The same as far as it is known on this computer: from the profile kept for the account in use, else the
/// system's zone with usual choices. Asks nobody, starts nothing and makes no file. `server`: another one
/// than the one signed in to. Call and resumption on a thread with an event loop.
Task<PreferredTime> storedTime(const Installation &installation, const std::optional<std::string> &server,
                               std::optional<std::string> zone);

/// The computer's zone when its clock shows other times than the account's, today or half a year from now;
/// nothing when both show the same, whatever they are called, and when either is not known here.
std::optional<std::string> differingSystemZone(const MeResponse &me, Instant now);

} // namespace orvane
