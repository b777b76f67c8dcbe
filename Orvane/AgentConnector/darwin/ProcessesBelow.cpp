// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/ProcessesBelow.h"

#include <libproc.h>
#include <unistd.h>

namespace orvane {

void adoptOrphans() {}

std::size_t listProcessesBelow(std::span<pid_t> found)
{
    std::size_t count = 0;
    const auto addChildrenOf = [&](pid_t parent) {
        const auto room = static_cast<int>((found.size() - count) * sizeof(pid_t));
        const int children = ::proc_listchildpids(parent, found.data() + count, room);
        count += children > 0 ? static_cast<std::size_t>(children) : 0;
    };
    addChildrenOf(::getpid());
    for (std::size_t at = 0; at < count && count < found.size(); ++at)
        addChildrenOf(found[at]);
    return count;
}

} // namespace orvane
