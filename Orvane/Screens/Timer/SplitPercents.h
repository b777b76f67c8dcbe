// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

/// How the parts of an entry give way to each other, so that they are the whole at every moment: whole
/// percents in the order of the parts, each at least 1, together 100. Pure functions; any thread.
///
/// A part takes from those below it, the nearest first, and from those above it when they have no more to
/// give; what it gives goes to the part below. The last part has only those above. What asks for more than
/// there is gets what there is.
namespace orvane::SplitPercents {

using Percents = std::vector<std::int64_t>;

inline constexpr std::int64_t whole = 100;
inline constexpr std::size_t fewestParts = 2;
/// That can be made by hand; there may be more already.
inline constexpr std::size_t mostParts = 4;

/// Such percents from any others, which stay as they are when they are such.
Percents made(const Percents &percents);
/// With `wanted` percents for one part.
Percents given(Percents percents, std::size_t part, std::int64_t wanted);
/// With the border below a part at `at` percents of the whole. Borders below it are pushed along, those above
/// stay.
Percents moved(Percents percents, std::size_t part, std::int64_t at);
/// With one part more at the end, which has half of the part above it.
Percents added(Percents percents);
/// Without a part, whose percents go to the one below.
Percents without(Percents percents, std::size_t part);

} // namespace orvane::SplitPercents
