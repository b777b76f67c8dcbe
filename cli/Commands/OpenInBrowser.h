// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orvane {

/// Whether somebody was there to open it.
bool openInBrowser(const std::string &address);

} // namespace orvane
