// SPDX-License-Identifier: GPL-3.0-or-later
#include "LiveSync/HubNegotiation.h"

#include "Support/JsonImpl.h"

ORVANE_JSON(orvane::HubNegotiation)
