// SPDX-License-Identifier: GPL-3.0-or-later
#include "Requests/Changes.h"

namespace orvane::server {

std::string_view text(ChangeTopic topic)
{
    switch (topic) {
    case ChangeTopic::timeEntries:
        return "time-entries";
    case ChangeTopic::catalog:
        return "catalog";
    case ChangeTopic::settings:
        return "settings";
    case ChangeTopic::agentActivity:
        return "agent-activity";
    case ChangeTopic::proposals:
        return "proposals";
    case ChangeTopic::me:
        return "me";
    }
    return {};
}

} // namespace orvane::server
