// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// A project's rate and estimate as people type and read them. Any thread.
namespace orvane {

/// Reads an amount of money in hundredths at most: 80, 12.50 or 12,50. Nothing for other text, a negative
/// amount, and more than `highestRate`.
std::optional<double> parseTypedRate(std::string_view text);

/// What the server takes for an hour.
inline constexpr double highestRate = 1'000'000;

/// "12.50", in every system language.
std::string rateText(double rate);

/// Reads a length as Durations does, but for a whole number without its unit: forty minutes are as likely
/// meant by it as forty hours. Gives whole seconds.
std::optional<std::int64_t> parseTypedEstimate(std::string_view text);

} // namespace orvane
