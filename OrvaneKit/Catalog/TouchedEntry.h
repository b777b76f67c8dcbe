// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// An entry that may show otherwise now, and a moment at which it starts, or started until now; none where
/// only who knows the entry can tell. Several of them tell one change: an entry that was moved lies under two
/// moments.
struct TouchedEntry {
    std::string id;
    std::optional<Instant> start;

    bool operator==(const TouchedEntry &) const = default;
};

using TouchedEntries = std::vector<TouchedEntry>;

} // namespace orvane
