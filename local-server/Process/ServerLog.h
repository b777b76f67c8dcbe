// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orvane::server {

/// Sends the program's log messages to a file of bounded size (when it is full it becomes `PATH.old` and a
/// new one begins), and to standard error too when `alsoToTerminal`. For the whole process, once.
void startServerLog(const std::string &path, bool alsoToTerminal);

} // namespace orvane::server
