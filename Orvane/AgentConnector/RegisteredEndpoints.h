// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentConnector/AgentCommands.h"

#include <optional>
#include <string>

namespace orvane {

/// Which address each agent was told last, from this installation. Kept in a file of the installation, for
/// its user alone; read anew each time, since the command and the application both write it. Used from the
/// main thread.
class RegisteredEndpoints {
public:
    /// The folder of the installation.
    explicit RegisteredEndpoints(const std::string &folder);

    std::optional<std::string> of(CodingAgent agent) const;
    /// None: it was removed there.
    void set(CodingAgent agent, const std::optional<std::string> &endpoint) const;

private:
    std::string m_file;
};

} // namespace orvane
