// SPDX-License-Identifier: GPL-3.0-or-later
#include "LiveSync/HubRecords.h"

#include "LiveSync/SyncChange.h"
#include "Support/JsonImpl.h"

ORVANE_JSON(orvane::HubRecord)
ORVANE_JSON(orvane::HubInvocation)
ORVANE_JSON(orvane::HubNegotiation)
ORVANE_JSON(orvane::SyncChange)
