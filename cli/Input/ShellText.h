// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// The text as one argument of a command that is shown to be copied: quoted where a shell would take it for
/// something else, and `printable`. Any thread.
std::string shellArgument(std::string_view text);

} // namespace orvane
