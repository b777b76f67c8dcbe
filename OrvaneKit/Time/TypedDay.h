// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Time/DayKey.h"

#include <optional>
#include <string_view>

namespace orvane {

/// The day that a typed text names: 2026-03-01, "today", "yesterday", or the name of a weekday or its first
/// three letters or more, which is the last such day up to today. Letter case plays no part. Nothing for
/// other text. Any thread.
std::optional<DayKey> parseTypedDay(std::string_view text, DayKey today);

/// The weekday that a typed text names in the same way: 0 for Sunday to 6 for Saturday.
std::optional<int> parseTypedWeekday(std::string_view text);
/// "monday"; the number is 0 to 6.
std::string_view weekdayName(int weekday);

} // namespace orvane
