// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Activity/ActivityDay.h"
#include "Activity/AgentActivityLoader.h"

#include <span>
#include <string>

/// What `orvane activity --json` prints. Lengths are seconds and may have a fraction, since agents stamp
/// their work to the millisecond.
namespace orvane::shapes {

/// A day together with what it cost to know it.
std::string activityDay(const ActivityDay &day, const AgentActivityLoader::Cost &cost);
/// Days without a cost each, and what they cost together.
std::string activityWeek(std::span<const ActivityDay> days, const AgentActivityLoader::Cost &cost);

} // namespace orvane::shapes
