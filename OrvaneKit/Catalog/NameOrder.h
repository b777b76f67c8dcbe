// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// A key that orders names as people expect when two keys are compared byte by byte: letters of either case
/// together, accented letters beside the plain ones, and "Sprint 2" before "Sprint 10". Any thread.
std::string nameOrderKey(std::string_view name);

} // namespace orvane
