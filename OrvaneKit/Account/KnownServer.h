// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

class Installation;

/// A server with an account in this installation, as this computer knows it without asking anybody. A value.
struct KnownServer {
    std::string address;
    /// The server on this computer.
    bool isLocal = false;
    /// It signs in by itself, as only the one on this computer does.
    bool isAutomatic = false;
    bool isSignedOut = false;
    /// The profile as it was last given; none when the account's store cannot be read.
    std::optional<MeResponse> me = {};
    /// The workspace used last; empty when none is known.
    std::string workspaceId = {};
    /// How many changes wait to be sent.
    std::int64_t waiting = 0;

    /// All of them, in the order of their addresses, the one on this computer last. Reads the installation's
    /// settings and looks into the stores; blocks. Main thread.
    static std::vector<KnownServer> all(const Installation &installation);
};

} // namespace orvane
