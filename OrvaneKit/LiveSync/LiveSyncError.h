// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orvane {

/// Why a connection of live sync could not be had, or ended: a sentence for people.
struct LiveSyncError {
    std::string message;

    bool operator==(const LiveSyncError &) const = default;
};

} // namespace orvane
