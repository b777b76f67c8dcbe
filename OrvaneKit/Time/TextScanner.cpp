// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/TextScanner.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

using namespace std::string_view_literals;

/// The white space of Unicode beyond ASCII, as UTF-8.
constexpr std::array wideSpaces = {
    "\xC2\x85"sv,     "\xC2\xA0"sv,     "\xE1\x9A\x80"sv, "\xE2\x80\x80"sv, "\xE2\x80\x81"sv,
    "\xE2\x80\x82"sv, "\xE2\x80\x83"sv, "\xE2\x80\x84"sv, "\xE2\x80\x85"sv, "\xE2\x80\x86"sv,
    "\xE2\x80\x87"sv, "\xE2\x80\x88"sv, "\xE2\x80\x89"sv, "\xE2\x80\x8A"sv, "\xE2\x80\xA8"sv,
    "\xE2\x80\xA9"sv, "\xE2\x80\xAF"sv, "\xE2\x81\x9F"sv, "\xE3\x80\x80"sv,
};

bool isAsciiSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

std::size_t spaceAtFront(std::string_view text)
{
    if (text.empty())
        return 0;
    if (isAsciiSpace(text.front()))
        return 1;
    const auto *found =
        std::ranges::find_if(wideSpaces, [&](std::string_view space) { return text.starts_with(space); });
    return found == wideSpaces.end() ? 0 : found->size();
}

std::size_t spaceAtBack(std::string_view text)
{
    if (text.empty())
        return 0;
    if (isAsciiSpace(text.back()))
        return 1;
    const auto *found =
        std::ranges::find_if(wideSpaces, [&](std::string_view space) { return text.ends_with(space); });
    return found == wideSpaces.end() ? 0 : found->size();
}

} // namespace

std::string_view TextScanner::trimmed(std::string_view text)
{
    while (const std::size_t size = spaceAtFront(text))
        text.remove_prefix(size);
    while (const std::size_t size = spaceAtBack(text))
        text.remove_suffix(size);
    return text;
}

bool TextScanner::skipSpace()
{
    bool any = false;
    while (const std::size_t size = spaceAtFront(m_rest)) {
        m_rest.remove_prefix(size);
        any = true;
    }
    return any;
}

bool TextScanner::take(char lower)
{
    if (m_rest.empty() || lowered(m_rest.front()) != lower)
        return false;
    m_rest.remove_prefix(1);
    return true;
}

bool TextScanner::takeWord(std::string_view lower)
{
    if (m_rest.size() < lower.size() ||
        !std::ranges::equal(m_rest.substr(0, lower.size()), lower, {}, lowered))
        return false;
    m_rest.remove_prefix(lower.size());
    return true;
}

std::string_view TextScanner::takeDigits()
{
    const auto count =
        static_cast<std::size_t>(std::ranges::find_if_not(m_rest, isAsciiDigit) - m_rest.begin());
    const std::string_view digits = m_rest.substr(0, count);
    m_rest.remove_prefix(count);
    return digits;
}

std::string asciiLowered(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    });
    return lower;
}

std::int64_t cappedValue(std::string_view digits)
{
    constexpr std::int64_t cap = 1'000'000'000'000;
    std::int64_t value = 0;
    for (const char c : digits)
        value = std::min(cap, value * 10 + (c - '0'));
    return value;
}

} // namespace orvane
