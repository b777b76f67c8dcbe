// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane {

/// The program with the windows, from its arguments to its exit status.
int runDesktop(int argc, char **argv);

} // namespace orvane
