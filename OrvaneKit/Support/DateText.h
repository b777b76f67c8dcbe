// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <optional>
#include <string>
#include <string_view>

/// The two ways in which instants are written: ISO 8601 text for the server and for people's programs,
/// seconds since 2001 for the local store. All functions here may be called from any thread.
namespace orvane {

/// "2026-03-01T09:30:00.123Z": UTC, always three fractional digits (finer ones are cut, not rounded).
std::string iso8601Text(Instant instant);
void appendIso8601Text(std::string &out, Instant instant);

/// Reads ISO 8601 text with a zone ("Z" or an offset such as +02:00). A fraction of any length is read to its
/// third digit. Nothing comes back for other text, an impossible day or time, or a year outside 1900 to 9999.
std::optional<Instant> instantFromIso8601(std::string_view text);

/// Seconds since 2001-01-01 00:00:00 UTC; exact to the millisecond for every acceptable instant.
double secondsSince2001(Instant instant);

/// The reverse, rounded to a microsecond (to a millisecond before 1933 and after 2069); nothing for a number
/// that is not finite or lies outside 1900 to 9999.
std::optional<Instant> instantFromSecondsSince2001(double seconds);

/// "2026-03-01". The day must be a real one.
std::string dayText(std::chrono::year_month_day day);

/// Reads "2026-03-01"; nothing for other text, an impossible day or a year outside 1900 to 9999.
std::optional<std::chrono::year_month_day> dayFromText(std::string_view text);

} // namespace orvane
