// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"

namespace orvane::testing {

/// The account of an installation as a process that ends soon opens it, with the server that was built.
Task<Account::Opened> openAccount(Installation &installation, bool startsServer);

} // namespace orvane::testing
