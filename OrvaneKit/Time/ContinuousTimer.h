// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/RetryTimer.h"

#include <chrono>
#include <memory>

namespace orvane {

/// One scheduled call on a clock that nobody sets and that goes on while the computer sleeps: what was due
/// meanwhile comes when it wakes.
class ContinuousTimer : public RetryTimer {
public:
    /// Since some moment before; for telling how long ago something was.
    virtual std::chrono::milliseconds now() const = 0;
};

std::unique_ptr<ContinuousTimer> makeContinuousTimer();

} // namespace orvane
