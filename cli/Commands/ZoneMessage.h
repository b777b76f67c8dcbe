// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CommandContext.h"

#include <string>
#include <vector>

namespace orvane {

/// A line for people when the account's zone, which times are in, is not the computer's; else nothing. Who
/// named a zone for the call knows.
std::vector<std::string> zoneMessages(const CommandContext &context);

} // namespace orvane
