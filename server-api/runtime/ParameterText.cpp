// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/ParameterText.h"

#include "Support/DateText.h"

#include <charconv>
#include <cmath>

namespace orvane {

namespace {

template <class Number>
std::string decimal(Number value)
{
    char digits[40];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

template <class Number>
std::optional<Number> wholeText(std::string_view text)
{
    Number value{};
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc{} && stop == end ? std::optional{value} : std::nullopt;
}

} // namespace

std::string parameterText(const std::string &value)
{
    return value;
}

std::string parameterText(std::int64_t value)
{
    return decimal(value);
}

std::string parameterText(double value)
{
    return decimal(value);
}

std::string parameterText(bool value)
{
    return value ? "true" : "false";
}

std::string parameterText(Instant value)
{
    return iso8601Text(value);
}

std::string parameterText(std::chrono::year_month_day value)
{
    return dayText(value);
}

std::optional<std::int64_t> ParameterForm<std::int64_t>::read(std::string_view text)
{
    return wholeText<std::int64_t>(text);
}

std::optional<double> ParameterForm<double>::read(std::string_view text)
{
    const auto value = wholeText<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<bool> ParameterForm<bool>::read(std::string_view text)
{
    if (text == "true" || text == "false")
        return text == "true";
    return std::nullopt;
}

std::optional<Instant> ParameterForm<Instant>::read(std::string_view text)
{
    return instantFromIso8601(text);
}

std::optional<std::chrono::year_month_day>
ParameterForm<std::chrono::year_month_day>::read(std::string_view text)
{
    return dayFromText(text);
}

} // namespace orvane
