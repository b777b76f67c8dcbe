// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "EntryInput/EntryDraft.h"
#include "Support/Result.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// What the options of `start`, `add` and `edit` say about an entry, as typed; what is not named is absent.
struct EntryOptions {
    std::optional<std::string> sentence;
    std::optional<std::string> description;
    std::optional<std::string> start;
    std::optional<std::string> stop;
    /// Names or identifiers; an empty text takes away what the entry had.
    std::optional<std::string> project;
    std::optional<std::string> task;
    std::optional<std::vector<std::string>> tags;
    std::optional<bool> billable;
    /// The sentence is the description as it stands.
    bool literally = false;
    /// Nothing is asked.
    bool isYes = false;

    bool isEmpty() const;
    /// Whether they say something of the work, and not of its time alone.
    bool nameDetails() const;
    /// The draft with the times named. The error is a sentence about a text that is no time: wrong usage.
    Result<EntryDraft, std::string> timesIn(EntryDraft draft, const EntrySentence::Options &options,
                                            const UserTime &time) const;
    /// The draft with the rest, all but the sentence. The error is a sentence about a name that means no
    /// single thing.
    Result<EntryDraft, std::string> detailsIn(EntryDraft draft, const Catalog &catalog) const;
};

/// The sentence about times that do not go together.
std::string timesText(EntryTimesProblem problem);

} // namespace orvane
