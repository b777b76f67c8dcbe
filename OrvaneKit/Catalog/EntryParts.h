// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Instant.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// The time of an entry that goes to one project: all of it, or what one share has of a split one.
struct EntryPart {
    Instant::duration length{0};
    std::optional<std::string> projectId;
    std::optional<std::string> taskId;
    bool isBillable = false;

    bool operator==(const EntryPart &) const = default;
};

/// The parts of an entry, together as long as it is; a running one lasts up to now. The parts of a split one
/// have whole seconds but for the first, as `shareSeconds` has them. Any thread.
std::vector<EntryPart> partsOf(const TimeEntryResponse &entry, Instant now);

} // namespace orvane
