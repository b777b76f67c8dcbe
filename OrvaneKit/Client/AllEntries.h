// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/ServerCalls.h"
#include "Support/Instant.h"

#include <functional>
#include <string>
#include <vector>

namespace orvane {

/// Lists all the user's entries of a workspace, earliest start first. They are asked for half a year at a
/// time, so that an account of many years needs no answer that takes long; `onAnswer` is told of each one.
/// Call and resumption on a thread with an event loop.
Task<CallResult<std::vector<TimeEntryResponse>>> listAllEntries(ServerCalls calls, std::string workspaceId,
                                                                Instant now, std::function<void()> onAnswer);

} // namespace orvane
