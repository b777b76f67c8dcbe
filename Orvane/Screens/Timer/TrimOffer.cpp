// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/TrimOffer.h"

#include "Catalog/EntryConversions.h"
#include "EntryInput/EntryWarning.h"

#include <algorithm>
#include <optional>

namespace orvane {

namespace {

/// `earlier` starts no later than `later`.
std::optional<TrimOffer> offerFor(const std::vector<TimeEntryResponse> &entries, std::size_t earlier,
                                  std::size_t later, Instant now)
{
    const TimeEntryResponse &one = entries[earlier];
    const TimeEntryResponse &other = entries[later];
    const Instant end = *one.stop;
    const Instant otherEnd = other.stop.value_or(std::max(now, other.start));
    TrimOffer offer{.entry = earlier, .other = later, .from = other.start, .to = std::min(end, otherEnd)};
    if (offer.to - offer.from < EntryWarning::leastOverlap)
        return std::nullopt;
    if (one.start < other.start)
        return end <= otherEnd ? std::optional(offer) : std::nullopt;
    // They begin together: the longer one begins after the shorter.
    if (end == otherEnd || !other.stop)
        return std::nullopt;
    offer.movesStart = true;
    if (otherEnd > end)
        std::swap(offer.entry, offer.other);
    return offer;
}

} // namespace

EntryRequest TrimOffer::trimmed(const TimeEntryResponse &whole) const
{
    EntryRequest request = entryRequest(whole);
    if (movesStart)
        request.start = to;
    else
        request.stop = from;
    return request;
}

std::map<std::size_t, TrimOffer>
trimOffers(const std::vector<TimeEntryResponse> &entries, Instant now,
           const std::function<bool(const TimeEntryResponse &, const TimeEntryResponse &)> &isAllowed)
{
    std::map<std::size_t, TrimOffer> offers;
    for (std::size_t at = 1; at < entries.size(); ++at) {
        if (!entries[at].stop)
            continue;
        for (std::size_t later = at; later-- > 0 && entries[later].start < *entries[at].stop;) {
            const auto offer = offerFor(entries, at, later, now);
            if (offer && isAllowed(entries[at], entries[later])) {
                offers.emplace(at, *offer);
                break;
            }
        }
    }
    return offers;
}

} // namespace orvane
