// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/ShellCommand.h"

namespace orvane {

ProcessRun::Program ShellCommand::program() const
{
    const std::string shell = loginShell(environment);
    return {.path = shell,
            .arguments = {"-ilc", pathAssignment(shell, toolFolders(environment)) + line},
            .environment = environment,
            .sparesDetached = sparesDetached};
}

} // namespace orvane
