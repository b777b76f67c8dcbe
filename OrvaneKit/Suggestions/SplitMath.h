// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

/// How a whole is divided into whole numbers. Pure functions; any thread.
namespace orvane::SplitMath {

/// Divides `total` in proportion to `weights`: the largest remainders get what is left over, the earlier of
/// two equal ones first. One number for each weight, in the same order, each at least `minimum`, together
/// `total`; nothing for no weights. A weight below 0 counts as 0, and when all of them are 0 they count
/// alike.
///
/// A total that does not reach the minimum of each cannot be divided so: the shares then sum to more than it.
/// Numbers whose sums or products leave 64 bits are a programming error.
std::vector<std::int64_t> apportion(std::span<const std::int64_t> weights, std::int64_t total,
                                    std::int64_t minimum = 0);

} // namespace orvane::SplitMath
