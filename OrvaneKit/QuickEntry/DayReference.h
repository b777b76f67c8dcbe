// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/EntrySentence.h"

#include <optional>
#include <string_view>

/// The days that a sentence can name; EntrySentence says how they are read. Any thread.
namespace orvane {

/// A word in lower case that names a day as a whole. Nothing for other words and for days that do not exist.
std::optional<EntrySentence::DayRef> dayReference(std::string_view word, std::string_view dateFormat,
                                                  DayKey today);

/// The day that is meant today.
DayKey referencedDay(const EntrySentence::DayRef &reference, DayKey today);

} // namespace orvane
