// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>

namespace orvane::testing {

/// Bytes that the process has taken from the heap and not given back.
std::size_t heapInUse();

/// Bytes of the process that lie in memory. Nothing where that tells little: sanitizers keep what was given
/// back.
std::optional<std::size_t> residentMemory();

} // namespace orvane::testing
