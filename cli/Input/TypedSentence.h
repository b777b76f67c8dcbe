// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"
#include "QuickEntry/EntrySentence.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// The sentence of a command and what it says in the account's workspace.
struct TypedSentence {
    EntrySentence::Reading reading;
    /// The stretch of the time that it names.
    std::optional<EntrySentence::Span> span;

    /// Nothing was typed: an empty reading.
    static TypedSentence read(const std::optional<std::string> &sentence, const Account &account);

    /// What its entry will not have as it was perhaps meant: sentences for people.
    std::vector<std::string> leftOut(const Catalog &catalog) const;
    /// A message and these sentences, for a sentence that says too little.
    std::string withNotes(std::string message, const Catalog &catalog) const;
};

} // namespace orvane
