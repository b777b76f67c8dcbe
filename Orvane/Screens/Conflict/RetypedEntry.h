// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "Catalog/EntryRequest.h"
#include "Time/UserTime.h"

#include <QString>

namespace orvane {

/// An entry as one would type it into the field, which reads it back as the same: for putting a refused one
/// there again. What is no longer in the catalog is left out, and so are the parts of a split. Pure.
QString retypedEntry(const EntryRequest &request, const Catalog &catalog, const UserTime &time);

} // namespace orvane
