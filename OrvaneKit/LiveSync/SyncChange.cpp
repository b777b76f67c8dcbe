// SPDX-License-Identifier: GPL-3.0-or-later
#include "LiveSync/SyncChange.h"

#include "Support/JsonImpl.h"

ORVANE_JSON(orvane::SyncChange)
