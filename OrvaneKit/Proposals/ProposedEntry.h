// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryRequest.h"
#include "OrvaneAPI/Schemas.h"

#include <string>

namespace orvane {

/// The entry that a proposal would make, as one could record it oneself. Only of a proposal for a new one.
EntryRequest proposedEntryRequest(const ProposedWorkResponse &work);
/// An entry with what a proposal sets in it; what the proposal does not name stays as `entry` has it.
EntryRequest proposedChange(const ProposedFieldsResponse &fields, TimeEntryResponse entry);

} // namespace orvane
