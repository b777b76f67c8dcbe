// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Screens/Timer/TrimOffer.h"
#include "Time/DayKey.h"
#include "Time/UserTime.h"

#include <set>
#include <string>
#include <vector>

namespace orvane {

/// One line of the timer's list.
struct TimerRow {
    enum class Kind {
        day,    ///< the head of a day whose entries follow
        folded, ///< a day in one line
        entry,
        share, ///< of the split entry above
        offer, ///< to trim the entry above, or one above that, for they overlap
    };

    Kind kind = Kind::entry;
    DayKey day;
    /// Of its entries: the row's own, else the day's first. The running one has no row, but counts.
    std::size_t entry = 0;
    /// How many entries the day has from there on.
    std::size_t count = 0;
    std::size_t share = 0;

    bool operator==(const TimerRow &) const = default;
};

/// The entries of the timer's list, the latest first, and its lines. Pure; any thread.
struct TimerRows {
    /// The latest first, so that those of a day stand together.
    std::vector<TimeEntryResponse> entries;
    std::vector<TimerRow> rows;
    /// By the entry below which they stand.
    std::map<std::size_t, TrimOffer> offers = {};

    /// `entries`: the latest start first. Days before yesterday are folded until somebody opens them;
    /// `turned` are those that are not as they would be by themselves.
    static TimerRows of(std::vector<TimeEntryResponse> entries, const std::set<DayKey> &turned,
                        const UserTime &time, DayKey today);

    static bool isFoldedByItself(DayKey day, DayKey today);

    /// Puts a line below each of these entries that has one, and below its shares.
    void addOffers(std::map<std::size_t, TrimOffer> below);
};

/// Which entries share a minute or more with another one, by their place in the list. An entry that runs
/// lasts until now.
std::set<std::size_t> overlapping(const std::vector<TimeEntryResponse> &entries, Instant now);

} // namespace orvane
