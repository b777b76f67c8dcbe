// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The text of a value in a path, a query or a header: instants and days as ISO 8601, numbers in decimal,
/// "true" and "false". All functions may be called from any thread.
namespace orvane {

std::string parameterText(const std::string &value);
std::string parameterText(std::int64_t value);
std::string parameterText(double value);
std::string parameterText(bool value);
std::string parameterText(Instant value);
std::string parameterText(std::chrono::year_month_day value);

/// Specialised for the types above: `read`, the reverse of parameterText, and `form`, a sentence that says
/// what the text must be.
template <class T>
struct ParameterForm;

template <>
struct ParameterForm<std::string> {
    static constexpr std::string_view form = "Must be a text.";
    static std::optional<std::string> read(std::string_view text) { return std::string(text); }
};
template <>
struct ParameterForm<std::int64_t> {
    static constexpr std::string_view form = "Must be a whole number.";
    static std::optional<std::int64_t> read(std::string_view text);
};
template <>
struct ParameterForm<double> {
    static constexpr std::string_view form = "Must be a number.";
    static std::optional<double> read(std::string_view text);
};
template <>
struct ParameterForm<bool> {
    static constexpr std::string_view form = "Must be true or false.";
    static std::optional<bool> read(std::string_view text);
};
template <>
struct ParameterForm<Instant> {
    static constexpr std::string_view form = "Must be an instant such as 2026-03-01T09:30:00Z.";
    static std::optional<Instant> read(std::string_view text);
};
template <>
struct ParameterForm<std::chrono::year_month_day> {
    static constexpr std::string_view form = "Must be a day such as 2026-03-01.";
    static std::optional<std::chrono::year_month_day> read(std::string_view text);
};

} // namespace orvane
