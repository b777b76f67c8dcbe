// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Instant.h"
#include "Time/UserTime.h"

#include <cstdint>
#include <span>
#include <vector>

/// How long entries last, in whole seconds, as they are shown and added up. A running one lasts up to now;
/// one that is still to come lasts nothing. Any thread.
namespace orvane {

std::int64_t entrySeconds(const TimeEntryResponse &entry, Instant now);
/// Summed before it is cut to seconds, so that many short entries do not lose what they add up to.
std::int64_t entrySeconds(std::span<const TimeEntryResponse> entries, Instant now);
/// Of those alone that start in an interval.
std::int64_t entrySeconds(std::span<const TimeEntryResponse> entries, const InstantInterval &startedIn,
                          Instant now);

/// What each part of a split entry has of its seconds, in the order of the shares, whose percents sum to 100;
/// together exactly as many.
/// Each has its percents of them cut to the second, and the seconds that are left over go where most was cut,
/// to the first of equals. Empty when the entry is not split.
std::vector<std::int64_t> shareSeconds(const TimeEntryResponse &entry, Instant now);

} // namespace orvane
