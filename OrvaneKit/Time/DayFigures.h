// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Time/DayKey.h"

#include <string>
#include <string_view>

namespace orvane {

/// A day in figures as the user's preferences write dates: "dd/MM/yyyy", "MM/dd/yyyy", "dd.MM.yyyy" or
/// another order of day, month and year. A format that lacks one of them gives 2025-03-07. Any thread.
std::string dayFigures(DayKey day, std::string_view format);

} // namespace orvane
