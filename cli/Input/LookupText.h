// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/NameLookup.h"

#include <string>
#include <string_view>
#include <vector>

/// What the command says when a typed name or identifier means no single thing. `kind` names the sort of
/// thing
/// ("project").
namespace orvane {

/// A sentence that lists what could have been meant.
std::string lookupText(std::string_view kind, std::string_view typed, const NoSingleItem &error);
/// A sentence that says how many there are.
std::string lookupText(std::string_view kind, std::string_view typed, const NoSingleId &error);

/// As `lookUp`, with the sentence for its error.
Result<std::size_t, std::string> choose(std::string_view kind, std::string_view typed,
                                        const std::vector<NamedItem> &items);

} // namespace orvane
