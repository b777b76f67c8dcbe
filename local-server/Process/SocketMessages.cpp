// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/SocketMessages.h"

#include "Support/JsonImpl.h"

ORVANE_JSON(::orvane::server::SocketRequest)
ORVANE_JSON(::orvane::server::SocketAnswer)
