// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AccountStack.h"

#include "support/CommandRun.h"

namespace orvane::testing {

Task<Account::Opened> openAccount(Installation &installation, bool startsServer)
{
    const auto access =
        std::make_shared<ServerAccess>(ServerAccess::Options{.installation = &installation,
                                                             .startsServer = startsServer,
                                                             .serverProgram = builtProgram("orvane-server")});
    if (auto found = co_await access->find(); !found)
        co_return failure(std::move(found.error()));
    co_return co_await Account::open(access, {.livesOn = false});
}

} // namespace orvane::testing
