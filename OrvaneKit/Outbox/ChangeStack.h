// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LocalStore/StoreSteps.h"
#include "Outbox/OutboxStore.h"

/// All queued changes of an entry stand on top of each other. The rules by which one comes to stand there,
/// and by which those behind it are put on other ground when it goes. Used inside a transaction of the store.
namespace orvane::outbox {

/// Whether a version, or its absence, belongs to the unbroken line of our own changes that the head ends.
bool isLineOfOurs(const EntryHead &head, const std::optional<std::string> &version);

/// Puts a change on top of what this store's queue has made of its entry and still wants to make of it: its
/// request, its version and its base are brought up to that. One that contradicts it gets `unseenVersion`.
void placeOnTop(StoreSteps &steps, Submission &submission);

/// What became of a change, and so of the ground that others stand on.
struct Settled {
    std::string entryId;
    std::int64_t seq = 0;
    enum { keptMine, keptTheirs, refused } how = refused;
    /// What its user had seen of the entry.
    std::optional<TimeEntryResponse> seen;
    /// The version that the rows behind it are made against from now on; none: as before.
    std::optional<std::string> version;
};

/// Puts the rows behind a settled one on top of `ground`, which is no longer what they were made on; none:
/// the entry is gone. A contested row ends it: those behind it stand on what it says, and wait until it is
/// settled. Answers the rows that were changed.
ChangeRows restack(StoreSteps &steps, const Settled &settled, std::optional<TimeEntryResponse> ground);

/// Gives the rows above `after` that have no version, since the entry had none yet, one that asks the user:
/// they did not see what the entry has become. Answers them.
ChangeRows hideVersion(StoreSteps &steps, const std::string &entryId, std::int64_t after);

} // namespace orvane::outbox
