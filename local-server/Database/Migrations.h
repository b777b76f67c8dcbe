// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Result.h"

#include <string>

namespace orvane::server {

class Database;

/// Makes the tables, or brings those of an earlier version up to date, each step in one transaction. Refuses
/// a database made by a later version. The error is a sentence for people.
Result<void, std::string> migrate(Database &database);

} // namespace orvane::server
