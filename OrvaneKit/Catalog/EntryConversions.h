// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryChange.h"
#include "Catalog/EntryRequest.h"
#include "OrvaneAPI/Schemas.h"

/// Between what the user says about an entry and the server's own forms of it. Any thread.
namespace orvane {

/// Without `describeParts` each share goes out with the entry's description.
TimeEntryRequest timeEntryRequest(const EntryRequest &request);
CreateTimeEntryRequest createTimeEntryRequest(const EntryRequest &request, std::string id);

/// What an entry says about its work: the way to continue it with a new timer.
EntryDetails entryDetails(const TimeEntryResponse &entry);

/// The request that would write an entry as it is: the way to edit or duplicate it. The parts of a split
/// describe themselves when any of them says something other than the entry.
EntryRequest entryRequest(const TimeEntryResponse &entry);

/// The entry that a request makes, for showing it before the server answers. Without `describeParts` each
/// share has the entry's description.
TimeEntryResponse entryResponse(const EntryRequest &request, std::string id, std::string workspaceId,
                                std::string version = {});

/// One change applied to one entry, which keeps its version; nothing after a delete. `entry` must be the one
/// that the change concerns; a creation leaves it as it is.
std::optional<TimeEntryResponse> applied(const EntryChange &change, TimeEntryResponse entry);

} // namespace orvane
