// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CommandContext.h"

#include <string>

/// Asking before something is done that cannot be taken back.
namespace orvane {

/// Whether the user wants it: `isYes` (their --yes) says so beforehand, else they are shown `facts` and asked
/// `question` ("Delete the project Website?"). Refused where nobody can be asked, for programs too.
Result<void, CommandFailure> confirm(CommandContext &context, const std::string &facts,
                                     const std::string &question, bool isYes);

/// What the option --yes is, for the help text.
inline constexpr const char *yesText = "Do not ask";

} // namespace orvane
