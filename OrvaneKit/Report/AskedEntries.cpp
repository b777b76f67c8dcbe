// SPDX-License-Identifier: GPL-3.0-or-later
#include "Report/AskedEntries.h"

#include "Client/OrvaneClient.h"
#include "Tracker/Overlay.h"

#include <algorithm>
#include <set>

namespace orvane {

namespace {

/// What the server said beside the interval, so that a waiting change can move it into the interval.
void addKnownBeside(std::vector<TimeEntryResponse> &asked, const Tracker &tracker, InstantInterval interval)
{
    std::set<std::string> ids;
    for (const TimeEntryResponse &entry : asked)
        ids.insert(entry.id);
    for (const TimeEntryResponse &known : tracker.serverEntries()) {
        if (!interval.contains(known.start) && !ids.contains(known.id))
            asked.push_back(known);
    }
}

} // namespace

Task<CallResult<std::vector<TimeEntryResponse>>> askedEntries(QPointer<Account> account,
                                                              InstantInterval interval)
{
    const std::string workspace = account->tracker().workspace().id;
    auto asked = co_await account->client().listTimeEntries(workspace, interval.from, interval.to);
    if (!asked)
        co_return failure(std::move(asked.error()));
    if (!account)
        co_return failure(CallError(ConnectionError{"nobody waits for the answer any more"}));
    const Tracker &tracker = account->tracker();
    addKnownBeside(*asked, tracker, interval);
    ShownEntries shown =
        overlay(std::move(*asked), tracker.serverRunning(), account->outbox().changes(), workspace);
    std::erase_if(shown.entries, [interval](const TimeEntryResponse &entry) {
        return entry.start >= interval.to || (entry.stop && *entry.stop <= interval.from);
    });
    co_return std::move(shown.entries);
}

} // namespace orvane
