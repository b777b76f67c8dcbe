// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Task.h"

#include <string>

namespace orvane {

/// Takes an answer to the agent that listens for it on this computer, as a browser would. False when nobody
/// answered there within a few seconds. Main thread; never sends the answer anywhere else.
Task<bool> tellAgent(std::string answer);

} // namespace orvane
