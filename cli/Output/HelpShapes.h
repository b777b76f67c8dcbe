// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <optional>
#include <string>
#include <vector>

/// What `help --json` prints.
namespace orvane::shapes {

struct HelpArgument {
    std::string name;
    std::string help;
    bool required = false;
    bool repeats = false;
};

struct HelpOption {
    std::string name;
    std::optional<std::string> shortName;
    std::optional<std::string> value;
    std::string help;
};

struct Help {
    std::string name;
    std::string summary;
    std::string usage;
    std::optional<std::string> more;
    std::vector<HelpArgument> arguments;
    std::vector<HelpOption> options;
    /// Each of the same shape.
    std::vector<RawJson> commands;
};

} // namespace orvane::shapes
