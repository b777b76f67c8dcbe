// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ProblemBody.h"

#include "Support/JsonImpl.h"

ORVANE_JSON(orvane::ProblemBody)
