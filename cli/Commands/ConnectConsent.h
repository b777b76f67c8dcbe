// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CommandContext.h"
#include "Input/CallbackInput.h"

#include <memory>

namespace orvane {

/// Asks the user on the terminal about each agent whose request `input` brings, and takes the answer to the
/// server and on to the agent. Ends with the input. The context's account is open.
Task<> answerAgents(Context context, std::shared_ptr<CallbackInput> input);

} // namespace orvane
