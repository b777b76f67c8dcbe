// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"
#include "Input/EntryOptions.h"
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

    /// `details` with what the sentence says put in. What it does not mention stays; its tags replace those
    /// there were.
    EntryDetails appliedTo(EntryDetails details, const Catalog &catalog) const;
    /// The times of the options, where they name none those of the sentence.
    Result<NamedTimes, CommandFailure> times(const EntryOptions &options, const UserTime &time) const;
    /// The times of an entry that the sentence changes. A time of day is on the entry's own day unless one is
    /// named; a duration keeps the entry's start, or of a running one its now.
    EditedTimes edited(EditedTimes before, const UserTime &time) const;
    /// What was understood but has no place in an entry, and what looks like a name, a time or a day and was
    /// not read as one: sentences for people.
    std::vector<std::string> leftOut(const Catalog &catalog) const;
    /// A message and these sentences, for a sentence that says too little.
    std::string withNotes(std::string message, const Catalog &catalog) const;
    /// What the palette remembers these picks by.
    std::vector<std::string> usageKeys() const;
};

} // namespace orvane
