// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentLogs/AgentSource.h"

#include <limits>
#include <string_view>

namespace orvane {

/// Where an agent keeps its logs and how their files are named. One constant value for each agent; any
/// thread.
struct AgentLogFormat {
    enum class Grouping : std::uint8_t {
        log,            ///< a file is a session's log
        projectSession, ///< a folder for each project, in it a file for each session
    };
    /// Depths of folders below `logs`, both ends included.
    struct Levels {
        int lowest = 0;
        int highest = std::numeric_limits<int>::max();
    };

    AgentSource source;
    std::string_view label;
    std::string_view shortLabel;
    std::string_view folder;        ///< in the user's home folder
    std::string_view fixtureFolder; ///< in a folder of sample logs
    std::string_view logs;          ///< in the agent's folder
    std::string_view prefix;        ///< what a log's name begins with; empty for anything
    std::string_view name;          ///< the name that a log must have; empty for any that ends in ".jsonl"
    Levels levels;
    Grouping grouping = Grouping::log;
    std::string_view titleIndex; ///< a file in the agent's folder that lists titles; empty for none

    static const AgentLogFormat &of(AgentSource source);
    /// Whether a file of this name is one of the agent's logs.
    bool isLog(std::string_view fileName) const;
};

} // namespace orvane
