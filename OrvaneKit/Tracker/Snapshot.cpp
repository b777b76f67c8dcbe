// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/Snapshot.h"

#include "OrvaneAPI/SchemaFields.h"
#include "Support/JsonImpl.h"

ORVANE_JSON(orvane::Snapshot)
