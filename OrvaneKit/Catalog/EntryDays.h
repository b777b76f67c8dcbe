// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/DayGroup.h"

#include <span>
#include <vector>

namespace orvane {

/// The days from `first` on, every one of them, each with the entries that start on it in order of start.
/// Entries that start on other days are passed over. `newestFirst` is in the order in which a tracker shows
/// its entries. Any thread.
std::vector<DayGroup> entryDays(std::span<const TimeEntryResponse> newestFirst, const UserTime &time,
                                DayKey first, int count);

} // namespace orvane
