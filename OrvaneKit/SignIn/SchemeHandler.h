// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orvane {

/// Has the system start a program with the addresses that a browser is sent back to ("orvane://…"). Nothing
/// where that is there already, or the system learns it in another way. `program` is the path of one that
/// takes such an address for its argument. Blocks for a moment; main thread.
///
/// False when the system has no way to be told, as without a desktop: then the address has to be copied.
bool registerSchemeHandler(const std::string &program);

} // namespace orvane
