// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/NameLookup.h"

#include <string>
#include <string_view>
#include <vector>

/// What the command says when a typed name or identifier means no single thing. `kind` names the sort of
/// thing ("project").
namespace orvane {

/// What a thing is looked up for: to put something on it, when one that is not there can be made first, or to
/// change the thing itself.
enum class LookupPurpose { use, change };

/// The command that makes such a thing ("orvane tags add review"); empty for what no command makes. A task
/// is made in a `project`; empty: in one that is left to be named.
std::string makingCommand(std::string_view kind, std::string_view name, std::string_view project = {});

/// Sentences that say what could have been meant, and how to make what is not there.
std::string lookupText(std::string_view kind, std::string_view typed, const NoSingleItem &error,
                       LookupPurpose purpose = LookupPurpose::use);
/// A sentence that says how many there are.
std::string lookupText(std::string_view kind, std::string_view typed, const NoSingleId &error);

/// As `lookUp`, for a use as `lookUpActive`, with the sentence for its error.
Result<std::size_t, std::string> choose(std::string_view kind, std::string_view typed,
                                        const std::vector<NamedItem> &items,
                                        LookupPurpose purpose = LookupPurpose::change);

} // namespace orvane
