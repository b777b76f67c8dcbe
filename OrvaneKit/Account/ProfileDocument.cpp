// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/ProfileDocument.h"

#include "OrvaneAPI/SchemaFields.h"
#include "Support/JsonImpl.h"

ORVANE_JSON(orvane::ProfileDocument)
