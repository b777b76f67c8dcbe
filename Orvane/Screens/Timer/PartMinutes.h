// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace orvane {

/// The seconds of an entry's parts as minutes to be shown: together the minutes that the entry itself is
/// shown with, so that a list of parts can be added up. Rounded singly, they would be minutes short. In the
/// order of the parts. Any thread.
std::vector<std::int64_t> partMinutes(const std::vector<std::int64_t> &seconds);

} // namespace orvane
