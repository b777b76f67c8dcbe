// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// The kernel's keyring of the user who runs the tests. It is one for all of them and outlives them, so what
/// an installation of a test leaves there is taken away again.
namespace orvane::testing {

/// Whether this system has it and lets the tests use it.
bool hasKernelKeyring();

/// Whether a token of the installation in that folder lies there.
bool hasKernelKeys(const std::string &dataFolder);
void forgetKernelKeys(const std::string &dataFolder);

// For a process between fork and exec:

/// As in a session of ssh or cron, the user's keyring is not linked to the session's.
void joinFreshKeyringSession();
/// As in a container that forbids the calls.
void forbidKernelKeyring();

} // namespace orvane::testing
