// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/EntrySentence.h"
#include "Time/TypedMoment.h"

#include <optional>
#include <string_view>

namespace orvane {

/// Reads a moment that is typed by itself: as TypedMoment does, or a time of day with one of the days that a
/// sentence can name before or after it ("yesterday 9:00", "17:30 fri", "7.3. 9:00", "on mon 9pm"). Nothing
/// for other text. Any thread.
std::optional<TypedMoment> readNamedMoment(std::string_view text, const EntrySentence::Options &options,
                                           const UserTime &time, Instant now);

} // namespace orvane
