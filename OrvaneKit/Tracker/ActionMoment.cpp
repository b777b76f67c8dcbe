// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/ActionMoment.h"

namespace orvane {

ActionMoment ActionMoment::of(const std::optional<TimeEntryResponse> &running, Instant asked,
                              std::chrono::milliseconds waited)
{
    if (!running || running->start <= asked)
        return {Kind::free, asked};
    if (running->start <= asked + waited)
        return {Kind::overtaken, running->start};
    return {running->start < asked + tolerance ? Kind::free : Kind::ahead, running->start};
}

} // namespace orvane
