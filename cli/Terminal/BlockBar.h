// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Terminal/TextTable.h"
#include "Time/UserTime.h"

#include <span>

/// Bars made of block characters, up to an eighth of a column exact. What matters is solid, what goes beside
/// it is light. Pure; any thread.
namespace orvane {

struct BarStyle {
    TextStyle solid;
    TextStyle light;
};

/// A strip of time, `cells` columns for the whole of `axis`. Solid ranges do not overlap, light ones may, and
/// may be without length. Solid covers light, and the least of either is seen.
TextCell timeStrip(InstantInterval axis, int cells, std::span<const InstantInterval> solid,
                   std::span<const InstantInterval> light, const BarStyle &style);

/// A bar from the left: solid up to one length and light from there up to another, both as parts (0 to 1) of
/// `cells` columns. Filled up with spaces.
TextCell lengthBar(double solid, double light, int cells, const BarStyle &style);

} // namespace orvane
