// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/Checks.h"

#include "OrvaneAPI/ParameterText.h"

#include <algorithm>

namespace orvane {

namespace {

std::size_t codePoints(std::string_view text)
{
    const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
    return static_cast<std::size_t>(std::ranges::count_if(text, isFirstByte));
}

std::string counted(std::size_t count, std::string_view noun)
{
    return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

} // namespace

std::size_t Checks::enter(std::string_view name)
{
    const std::size_t outside = m_path.size();
    if (outside > 0)
        m_path += '.';
    m_path += name;
    return outside;
}

std::size_t Checks::enter(std::size_t index)
{
    const std::size_t outside = m_path.size();
    m_path += '[' + std::to_string(index) + ']';
    return outside;
}

void Checks::refuse(std::string sentence)
{
    m_errors[m_path].push_back(std::move(sentence));
}

void Checks::refuse(std::string_view path, std::string sentence)
{
    const std::size_t outside = enter(path);
    refuse(std::move(sentence));
    m_path.resize(outside);
}

void TextRule::apply(const std::string &value, Checks &checks) const
{
    const std::size_t length = codePoints(value);
    if (length >= minimum && length <= maximum)
        return;
    if (length == 0 && minimum > 0)
        checks.refuse("Must not be empty.");
    else if (minimum == maximum)
        checks.refuse("Must be exactly " + counted(maximum, "character") + ".");
    else if (length < minimum)
        checks.refuse("Must be at least " + counted(minimum, "character") + ".");
    else
        checks.refuse("Must be at most " + counted(maximum, "character") + ".");
}

void NumberRule::apply(double value, Checks &checks) const
{
    if (value < minimum)
        checks.refuse("Must be at least " + parameterText(minimum) + ".");
    if (value > maximum)
        checks.refuse("Must be at most " + parameterText(maximum) + ".");
}

void checkCount(std::size_t count, std::size_t minimum, std::size_t maximum, Checks &checks)
{
    if (count < minimum)
        checks.refuse("Must have at least " + counted(minimum, "item") + ".");
    if (count > maximum)
        checks.refuse("Must have at most " + counted(maximum, "item") + ".");
}

void ObjectRule::apply(const RawJson &value, Checks &checks) const
{
    if (!value.text.starts_with('{'))
        checks.refuse("Must be an object.");
}

} // namespace orvane
