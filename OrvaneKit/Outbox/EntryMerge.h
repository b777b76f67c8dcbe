// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryChange.h"
#include "OrvaneAPI/Schemas.h"

/// Changes of one entry that were not made on top of each other. Pure functions; any thread.
namespace orvane {

/// Whether two states of an entry say the same, whatever their versions and the order of their tags.
bool saysTheSame(TimeEntryResponse one, TimeEntryResponse other);

/// A change put on top of another state of the entry than its user saw.
struct Rebased {
    EntryChange change;
    /// Both sides changed the same field, to different ends, or what one side did cannot stand beside the
    /// other's: it is for the user to say what holds. The change then has the user's side of it.
    bool isContested = false;
};

/// What the change does to `base`, done to `head`: an update writes the fields that its user changed and
/// keeps the rest of `head`; a stop stays as it is; a deletion is contested unless `head` says what its user
/// saw. Project and task count as one field, and so do the parts of a split. The change's version stays.
/// With `seen`, a field of `head` that says what `seen` says contradicts nobody: the user knew of it before.
Rebased putOnTop(const EntryChange &change, const TimeEntryResponse &base, const TimeEntryResponse &head,
                 const std::optional<TimeEntryResponse> &seen = {});

/// The user's change made again, now that they have seen `current`, which stands against it. `base` is what
/// they saw when they made it; without it an update writes the whole entry.
EntryChange madeAnew(const EntryChange &change, const std::optional<TimeEntryResponse> &base,
                     const TimeEntryResponse &current);

} // namespace orvane
