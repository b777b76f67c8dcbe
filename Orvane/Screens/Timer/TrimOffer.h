// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryRequest.h"
#include "OrvaneAPI/Schemas.h"

#include <functional>
#include <map>
#include <vector>

namespace orvane {

/// Of two entries that overlap, one may be shortened by just the time that counts twice.
struct TrimOffer {
    /// Which is shortened, and the other one, by their place in the list.
    std::size_t entry = 0;
    std::size_t other = 0;
    /// What counts twice.
    Instant from;
    Instant to;

    /// The shortened entry ends where the other begins, or begins where the other ends.
    bool movesStart = false;
    Instant at() const { return movesStart ? to : from; }
    EntryRequest trimmed(const TimeEntryResponse &whole) const;

    bool operator==(const TrimOffer &) const = default;
};

/// The offers by the entry that starts earlier, below which each stands; one at most. `entries`: the latest
/// start first; one that runs lasts until `now`. None where one entry lies within the other, so that
/// shortening would take more than what counts twice, nor where `isAllowed` says no.
std::map<std::size_t, TrimOffer>
trimOffers(const std::vector<TimeEntryResponse> &entries, Instant now,
           const std::function<bool(const TimeEntryResponse &, const TimeEntryResponse &)> &isAllowed);

} // namespace orvane
