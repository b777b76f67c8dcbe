// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orvane {

/// The name that was probably meant by a typed one which is none of them, for a "did you mean": the one with
/// the fewest slips between (a letter left out, put in, mistaken, or swapped with its neighbour), of equals
/// the first. A third of the letters may be slips, three at most; before any such comes a name that goes on
/// where the typed one ends. Letter case and diacritics play no part.
/// Any thread.
std::optional<std::string> nearestName(std::string_view typed, std::span<const std::string> names);

/// " Did you mean "NAME"?" to put behind a sentence; empty when no name is near.
std::string didYouMean(std::string_view typed, std::span<const std::string> names);

} // namespace orvane
