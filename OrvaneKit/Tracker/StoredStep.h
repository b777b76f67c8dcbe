// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tracker/EntryHistory.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orvane {

/// One action of the user on entries, from the moment it is stored in the outbox. A value.
struct StoredStep {
    EntryStep step;
    /// Of each turn, the number of its change in the outbox.
    std::vector<std::int64_t> seqs = {};
    /// What was done, for people: "Deleted “Stand-up”".
    std::string sentence = {};
    /// It takes an earlier action back, and made deleted entries again under other identifiers.
    bool isTakeBack = false;
    RenamedEntries renamed = {};
};

/// What an action did, by what it made of its entries: "Stopped “Stand-up”", "Changed 3 entries". Not empty.
std::string sentenceOf(const EntryStep &step);
/// The entry in such a sentence: its description in quotes, or words for one that has none.
std::string quotedEntry(const TimeEntryResponse &entry);

} // namespace orvane
