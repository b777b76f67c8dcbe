// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane {

/// The whole command: reads the arguments, does what they say and answers the exit status. Called once, from
/// `main`.
int runCommandLine(int argc, char **argv);

} // namespace orvane
