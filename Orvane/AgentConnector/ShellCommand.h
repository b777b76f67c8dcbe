// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentConnector/ProcessRun.h"

namespace orvane {

/// A command line for the user's login shell, which sets up the path as the user has it in a terminal.
struct ShellCommand {
    std::string line;
    /// With a PATH as `searchPath` makes it.
    ProcessEnvironment environment;
    /// As in ProcessRun::Program.
    bool sparesDetached = false;

    ProcessRun::Program program() const;
};

} // namespace orvane
