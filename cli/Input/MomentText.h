// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/EntrySentence.h"
#include "Support/Result.h"
#include "Time/TypedMoment.h"

#include <string>
#include <string_view>

/// Times and days as they are typed on the command line; the errors are sentences for people.
namespace orvane {

/// As `readNamedMoment` reads it.
Result<TypedMoment, std::string> readMoment(std::string_view text, const EntrySentence::Options &options,
                                            const UserTime &time);

/// As `parseTypedDay` reads it.
Result<DayKey, std::string> readDay(std::string_view text, const UserTime &time);

} // namespace orvane
