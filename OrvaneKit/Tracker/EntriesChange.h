// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Time/DayKey.h"

#include <set>
#include <string>

namespace orvane {

/// What may show otherwise than before: never too little, at times too much. A value.
struct EntriesChange {
    std::set<std::string> entries;
    /// The days on which they start or started, in the user's zone.
    std::set<DayKey> days;

    bool operator==(const EntriesChange &) const = default;
    bool isEmpty() const { return entries.empty(); }
};

} // namespace orvane
