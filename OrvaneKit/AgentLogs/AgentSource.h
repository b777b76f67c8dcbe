// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

namespace orvane {

/// A coding agent whose logs are read. Ordered as the agents are listed everywhere.
enum class AgentSource : std::uint8_t { claude, codex, copilot };

inline constexpr std::array allAgentSources{AgentSource::claude, AgentSource::codex, AgentSource::copilot};

template <>
struct JsonEnum<AgentSource> {
    static constexpr std::array list{std::pair{AgentSource::claude, std::string_view("claude")},
                                     std::pair{AgentSource::codex, std::string_view("codex")},
                                     std::pair{AgentSource::copilot, std::string_view("copilot")}};
};

} // namespace orvane
