// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <optional>
#include <string>
#include <vector>

/// What `connect --json` prints.
namespace orvane::shapes {

struct Connection {
    /// How it went; none when nothing was tried.
    std::optional<std::string> message;
    /// To copy: the one that adds the server to the agent, and the one that takes it out.
    std::vector<std::string> commands;
};

} // namespace orvane::shapes
