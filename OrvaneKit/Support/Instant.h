// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>

namespace orvane {

/// A moment in time: an exact number of microseconds since 1970-01-01 00:00:00 UTC.
///
/// What is sent to a server or shown carries whole milliseconds, so every instant that becomes part of an
/// entry is floored to a millisecond first; an echo from the server then compares equal to what was sent.
using Instant = std::chrono::sys_time<std::chrono::microseconds>;

/// The earliest and the first impossible instant that the product accepts from outside (years 1900 to 9999).
inline constexpr Instant earliestInstant =
    std::chrono::sys_days{std::chrono::year{1900} / std::chrono::January / 1};
inline constexpr Instant instantLimit =
    std::chrono::sys_days{std::chrono::year{9999} / std::chrono::December / 31} + std::chrono::days{1};

constexpr bool isAcceptable(Instant instant)
{
    return instant >= earliestInstant && instant < instantLimit;
}

constexpr Instant millisecondsFloor(Instant instant)
{
    return std::chrono::floor<std::chrono::milliseconds>(instant);
}

constexpr Instant instantFromMilliseconds(std::int64_t sinceEpoch)
{
    return Instant{std::chrono::milliseconds{sinceEpoch}};
}

constexpr std::int64_t millisecondsSinceEpoch(Instant instant)
{
    return std::chrono::floor<std::chrono::milliseconds>(instant).time_since_epoch().count();
}

/// Seconds from `from` to `to`; negative when `to` is earlier.
constexpr double secondsBetween(Instant from, Instant to)
{
    return std::chrono::duration<double>(to - from).count();
}

} // namespace orvane
