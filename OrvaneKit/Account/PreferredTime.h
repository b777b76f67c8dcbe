// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Task.h"
#include "Time/UserTime.h"

#include <optional>
#include <string>

namespace orvane {

class Installation;

/// The account's choices about time. `zone` stands in for the account's zone; a zone that this computer does
/// not know gives way to the system's.
UserTime preferredTime(const MeResponse &me, const std::optional<std::string> &zone);

/// The same as far as it is known on this computer: from the profile kept for the account in use, else the
/// system's zone with usual choices. Asks nobody, starts nothing and makes no file. `server`: another one
/// than the one signed in to. Call and resumption on a thread with an event loop.
Task<UserTime> storedTime(const Installation &installation, const std::optional<std::string> &server,
                          std::optional<std::string> zone);

} // namespace orvane
