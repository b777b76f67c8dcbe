// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "QuickEntry/PaletteUsage.h"
#include "QuickEntry/SentenceCatalog.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// What a mention that is being typed can become. A value; any thread.
struct MentionCompletion {
    std::size_t begin = 0; ///< bytes of the sentence before the mention's sign
    /// The mentions, with their signs, best first. Each reads as one thing in this sentence: names that are
    /// equal are told apart (@website/design), and what cannot be told apart is left out.
    std::vector<std::string> mentions;
    /// Whether what they have in common goes on from what was typed. If not, putting it in would take typed
    /// letters away.
    bool goesOn = false;

    /// `sentence` ends at the cursor. Nothing when no mention is being typed there.
    static std::optional<MentionCompletion> of(std::string_view sentence, const Catalog &catalog,
                                               const PaletteUsage &usage, Instant now);
};

} // namespace orvane
