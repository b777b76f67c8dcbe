// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Time/UserTime.h"

#include <cstdint>
#include <vector>

namespace orvane {

/// A stretch in which somebody of a family (a session and all that work for it) was busy.
struct FamilyRun {
    std::size_t family = 0;
    InstantInterval range;
};

/// Where two families or more are busy at once, in time order; what touches is one stretch. Runs without
/// length count for nothing. Any thread.
std::vector<InstantInterval> parallelStretches(std::vector<FamilyRun> runs);

} // namespace orvane
