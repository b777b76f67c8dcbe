// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/EntrySentence.h"
#include "QuickEntry/Palette.h"
#include "QuickEntry/PaletteUsage.h"

#include <string>
#include <vector>

namespace orvane {

/// What one choice counts for in the palette, once what was chosen has been done. A value; any thread.
struct PalettePicks {
    std::vector<std::string> keys; ///< of PaletteUsage

    bool operator==(const PalettePicks &) const = default;

    /// A sentence picks its project, its task, its client and its tags.
    static PalettePicks of(const EntrySentence::Reading &reading);
    /// A row of the palette picks what it stands for.
    static PalettePicks of(const PaletteItem &item) { return {{item.key}}; }

    bool isEmpty() const { return keys.empty(); }
    /// The usage with these picks remembered as of now.
    PaletteUsage notedIn(PaletteUsage usage, Instant now) const;
};

} // namespace orvane
