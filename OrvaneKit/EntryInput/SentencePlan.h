// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "Catalog/EntryRequest.h"
#include "QuickEntry/EntrySentence.h"
#include "Time/UserTime.h"

#include <functional>
#include <optional>
#include <string>

namespace orvane {

/// What an entered sentence will do, known and said before it is entered. A value.
struct SentencePlan {
    enum class Kind {
        starts,  ///< the timer, now or since when the sentence says
        records, ///< a finished entry
        cannot,
    };

    /// What there is besides the sentence; for the time of the call.
    struct Around {
        const Catalog &catalog;
        const UserTime &time;
        const std::optional<TimeEntryResponse> &running;
        Instant now;
        /// Why such an entry would be refused, in a sentence; empty when it would not.
        std::function<std::string(const EntryRequest &)> refusal;
    };

    Kind kind = Kind::cannot;
    /// What is to be created; also of one that cannot, where it has times.
    std::optional<EntryRequest> request;
    /// The timer that ends where this one starts.
    std::optional<TimeEntryResponse> ends;
    /// Of the key: "Start", "Start at 15:20", "Add Entry"; empty when it cannot.
    std::string action;
    /// In words what that brings with it: "Ends “Fix the sync bug” at 15:20", "Adds 09:00 – 10:30 today". Why
    /// not, when it cannot. Empty when the action says it all.
    std::string words;

    bool operator==(const SentencePlan &) const = default;

    /// On the catalog's thread, the main one.
    static SentencePlan of(const EntrySentence::Reading &reading, const Around &around);
};

} // namespace orvane
