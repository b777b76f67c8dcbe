// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <compare>

namespace orvane {

/// Something that happened in an agent's session: the user prompted it, or it worked. Ordered by time, a
/// prompt before work of the same instant.
struct AgentEvent {
    Instant date;
    bool isTouch = false; ///< false for a prompt of the user, true for a moment of agent work

    auto operator<=>(const AgentEvent &) const = default;
};

} // namespace orvane
