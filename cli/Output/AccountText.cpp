// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/AccountText.h"

#include "Terminal/TextTable.h"
#include "Terminal/TextWidth.h"

namespace orvane {

std::string accountLine(const Account &account, const TerminalStyle &style)
{
    if (account.isAutomatic())
        return {};
    const std::string who = printable(account.me().email);
    std::string where = "at " + printable(account.server());
    if (account.me().workspaces.size() > 1)
        where += ", in " + printable(account.tracker().workspace().name);
    const bool isTight = style.width > 0 && displayWidth(who) + 1 + displayWidth(where) > style.width;
    return style.apply(who, quiet) + (isTight ? "\n" : " ") + style.apply(where, quiet) + "\n";
}

} // namespace orvane
