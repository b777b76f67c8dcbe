// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Report/EntryReport.h"
#include "Terminal/TerminalStyle.h"
#include "Time/UserTime.h"

#include <string>

namespace orvane {

/// A report as people read it: a line a group with its time, the billable part of it and what that is worth,
/// and the total. `title` says which days it goes over. Main thread, like the catalog.
std::string reportText(const EntryReport &report, EntryGrouping grouping, const std::string &title,
                       const Catalog &catalog, const UserTime &time, const TerminalStyle &style);

/// "1234.50 EUR"
std::string moneyText(std::int64_t hundredths, const std::optional<std::string> &currency);

} // namespace orvane
