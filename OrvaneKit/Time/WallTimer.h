// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <functional>
#include <memory>

namespace orvane {

/// Calls at a moment of the wall clock, also when the computer slept until then or later, and when the clock
/// was set meanwhile; who is called looks what time it is. Lives on, and calls back on, the thread that made
/// it.
class WallTimer {
public:
    WallTimer() = default;
    WallTimer(const WallTimer &) = delete;
    WallTimer &operator=(const WallTimer &) = delete;
    virtual ~WallTimer() = default;

    /// Calls `action` once at `at` by the product's clock, or before when the clock was set; replaces what
    /// was scheduled before.
    virtual void schedule(Instant at, std::function<void()> action) = 0;
};

std::unique_ptr<WallTimer> makeWallTimer();

} // namespace orvane
