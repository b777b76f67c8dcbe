// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"
#include "Terminal/TerminalStyle.h"

#include <string>

namespace orvane {

/// Whose account at which server this is, a line or two; empty for the account on this computer, which needs
/// no telling.
std::string accountLine(const Account &account, const TerminalStyle &style);

} // namespace orvane
