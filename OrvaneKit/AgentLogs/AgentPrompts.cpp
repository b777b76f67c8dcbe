// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/AgentPrompts.h"

#include <algorithm>
#include <array>

namespace orvane::agentprompts {

bool isNothing(std::string_view text)
{
    static constexpr std::array<std::string_view, 5> beginnings{
        "[Request interrupted by user", "<local-command-stdout>", "<local-command-stderr>", "<bash-stdout>",
        "<task-notification>"};
    return std::ranges::any_of(beginnings,
                               [&](std::string_view beginning) { return text.starts_with(beginning); });
}

bool isAgentsWork(std::string_view source, std::string_view text)
{
    return source.starts_with("skill-") || source.starts_with("agent-") ||
           text.starts_with("<system_notification>");
}

} // namespace orvane::agentprompts
