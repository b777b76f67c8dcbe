// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Terminal/TextTable.h"

#include <string>
#include <string_view>

namespace orvane {

/// The name of a project or of what belongs to one, behind a dot in the project's colour ("#rrggbb") where
/// the terminal has colours. Any thread.
TextCell colouredName(std::string_view name, std::string_view colour, const TerminalStyle &style,
                      TextStyle nameStyle = {});

} // namespace orvane
