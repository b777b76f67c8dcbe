// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace orvane {

/// A half-open stretch of a text, counted in UTF-16 code units as Qt's views count. Where the text is UTF-8,
/// each maximal part that is no UTF-8 counts as one unit, which is what it is shown as (U+FFFD).
struct TextRange {
    std::size_t start = 0;
    std::size_t end = 0;

    bool operator==(const TextRange &) const = default;
};

} // namespace orvane
