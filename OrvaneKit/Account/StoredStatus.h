// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Instant.h"
#include "Time/UserTime.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

class Installation;

/// What runs and what was tracked today as this computer knows it: the last snapshot with the waiting changes
/// on top. For who asks every few seconds: nobody is asked, nothing is started or written, and of the
/// snapshot only what is needed is kept. A value.
struct StoredStatus {
    struct Place {
        std::optional<std::string> server = {};    ///< another one than the one signed in to
        std::optional<std::string> workspace = {}; ///< another one than the one in use
        std::optional<std::string> zone = {};      ///< another one than the account's
    };

    UserTime time = UserTime::utc();
    std::optional<TimeEntryResponse> running = {};
    /// Of the running entry, each share's of a split one; what is not known any more is left out.
    std::vector<std::string> projects = {};
    /// How long it runs by now.
    std::int64_t elapsed = 0;
    std::int64_t today = 0;
    /// How many changes wait to be sent.
    std::int64_t waiting = 0;

    /// Nothing when there is no snapshot, or it cannot be read. Blocks; main thread, which needs no event
    /// loop.
    static std::optional<StoredStatus> read(const Installation &installation, const Place &place,
                                            Instant now);
};

} // namespace orvane
