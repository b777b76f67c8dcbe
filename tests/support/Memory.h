// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace orvane::testing {

/// Bytes that the process has taken from the heap and not given back.
std::size_t heapInUse();

} // namespace orvane::testing
