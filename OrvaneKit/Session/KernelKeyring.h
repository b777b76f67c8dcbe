// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Session/TokenStore.h"

#include <memory>
#include <string>

namespace orvane {

/// The user's keyring in the kernel: where a token lies for the user's later processes when there is no
/// keychain, as over ssh or in cron. It stays until the computer restarts at the latest, and reaches no disk.
/// A token that the kernel does not take stays in the store's memory.
///
/// None (null) where the system has no such keyring, or this process may not use it: containers often forbid
/// the calls. `service` tells installations apart.
std::shared_ptr<TokenStore> makeKernelKeyring(const std::string &service);

} // namespace orvane
