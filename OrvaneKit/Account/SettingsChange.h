// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/AccountSettings.h"
#include "Tracker/UndoableChange.h"

#include <memory>

namespace orvane {

class Account;

/// A change of settings as a step to undo: what differs between `before` and `after`, and nothing else, is
/// put back, if it still is as `after` says; of a workspace its settings count as one. The account outlives
/// the step. Main thread.
std::shared_ptr<UndoableChange> undoableChange(Account &account, AccountSettings before,
                                               AccountSettings after);

} // namespace orvane
