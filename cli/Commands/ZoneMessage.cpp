// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/ZoneMessage.h"

#include "Account/PreferredTime.h"
#include "Terminal/TextWidth.h"

namespace orvane {

std::vector<std::string> zoneMessages(const CommandContext &context)
{
    const Account &account = *context.account();
    const auto here = differingSystemZone(account.me(), AppClock::now());
    if (context.options().zone || !here)
        return {};
    return {"Times are in " + printable(account.me().timeZone) +
            ", the account's zone; this computer is in " + printable(*here) +
            ". To follow it: orvane settings set zone " + printable(*here)};
}

} // namespace orvane
