// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

/// Entries read and written by code made for them alone: the measure that the general layer is held against.
namespace handwritten {

/// On simdjson's on-demand interface, a comparison for each member. False for other JSON; a member that is
/// missing stays empty.
bool read(std::string_view text, std::vector<orvane::TimeEntryResponse> &out);

std::string write(const std::vector<orvane::TimeEntryResponse> &entries);

} // namespace handwritten
