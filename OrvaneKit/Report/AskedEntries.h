// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"

#include <QPointer>
#include <vector>

namespace orvane {

/// The entries of the account's workspace that start in the interval or reach into it, newest start first, as
/// they are shown: as the server has them now, with what waits in the outbox on top. For days that the
/// tracker does not keep, of which there may be many; it does not keep these either. A ConnectionError when
/// the account goes meanwhile. Main thread.
Task<CallResult<std::vector<TimeEntryResponse>>> askedEntries(QPointer<Account> account,
                                                              InstantInterval interval);

} // namespace orvane
