// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orvane::server {

/// Makes the process independent of the one that started it, before anything else runs: no inherited files
/// beyond the three standard ones, no pretended time, what it makes is private, a hang-up of the terminal
/// does not matter.
void leaveParentBehind(bool foreground);

/// Lets go of the parent's standard streams, so that nobody waits for their end.
void releaseStandardStreams();

/// Lets the process have as many open files as the system grants it: each connection takes one.
void raiseDescriptorLimit();

/// Makes a folder, and those above it, for the owner alone. Answers what went wrong, or nothing.
std::string makePrivateFolder(const std::string &path);

} // namespace orvane::server
