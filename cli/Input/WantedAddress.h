// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orvane {

/// What is wanted in place of something typed that is no address of a server; follows what asked for it
/// ("--server").
std::string wantedAddress(const std::string &typed);

} // namespace orvane
