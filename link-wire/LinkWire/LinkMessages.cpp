// SPDX-License-Identifier: GPL-3.0-or-later
#include "LinkWire/LinkMessages.h"

#include "Support/JsonImpl.h"

ORVANE_JSON(orvane::LinkRequest)
ORVANE_JSON(orvane::LinkAnswer)
