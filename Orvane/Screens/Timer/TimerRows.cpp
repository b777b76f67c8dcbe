// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/TimerRows.h"

#include "EntryInput/EntryWarning.h"

#include <algorithm>

namespace orvane {

bool TimerRows::isFoldedByItself(DayKey day, DayKey today)
{
    return day < today.adding(-1);
}

TimerRows TimerRows::of(std::vector<TimeEntryResponse> entries, const std::set<DayKey> &turned,
                        const UserTime &time, DayKey today)
{
    TimerRows list{.entries = std::move(entries), .rows = {}};
    std::size_t first = 0;
    while (first < list.entries.size()) {
        const DayKey day = time.dayKey(list.entries[first].start);
        const InstantInterval interval = time.dayInterval(day);
        std::size_t end = first + 1;
        while (end < list.entries.size() && list.entries[end].start >= interval.from)
            ++end;
        const bool isFolded = isFoldedByItself(day, today) != turned.contains(day);
        list.rows.push_back({.kind = isFolded ? TimerRow::Kind::folded : TimerRow::Kind::day,
                             .day = day,
                             .entry = first,
                             .count = end - first});
        for (std::size_t at = first; !isFolded && at < end; ++at) {
            if (!list.entries[at].stop)
                continue;
            list.rows.push_back({.kind = TimerRow::Kind::entry, .day = day, .entry = at, .count = 1});
            for (std::size_t share = 0; share < list.entries[at].shares.size(); ++share)
                list.rows.push_back(
                    {.kind = TimerRow::Kind::share, .day = day, .entry = at, .count = 1, .share = share});
        }
        first = end;
    }
    return list;
}

void TimerRows::addOffers(std::map<std::size_t, TrimOffer> below)
{
    offers = std::move(below);
    std::vector<TimerRow> all;
    all.reserve(rows.size() + offers.size());
    for (std::size_t at = 0; at < rows.size(); ++at) {
        const TimerRow &row = rows[at];
        all.push_back(row);
        const bool isOfEntry = row.kind == TimerRow::Kind::entry || row.kind == TimerRow::Kind::share;
        const bool isLast = at + 1 == rows.size() || rows[at + 1].kind != TimerRow::Kind::share;
        if (isOfEntry && isLast && offers.contains(row.entry))
            all.push_back({.kind = TimerRow::Kind::offer, .day = row.day, .entry = row.entry, .count = 1});
    }
    rows = std::move(all);
}

std::set<std::size_t> overlapping(const std::vector<TimeEntryResponse> &entries, Instant now)
{
    std::set<std::size_t> found;
    // From the earliest start on, against whichever of those before lasts longest.
    std::size_t longest = entries.size();
    Instant until;
    for (std::size_t at = entries.size(); at-- > 0;) {
        const Instant end = entries[at].stop.value_or(std::max(now, entries[at].start));
        if (longest < entries.size() &&
            std::min(until, end) - entries[at].start >= EntryWarning::leastOverlap) {
            found.insert(at);
            found.insert(longest);
        }
        if (longest == entries.size() || end > until) {
            longest = at;
            until = end;
        }
    }
    return found;
}

} // namespace orvane
