// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orvane {

/// Reads typed text from the front, for the small grammars of times and durations: ASCII letters in either
/// case, ASCII digits, and white space of every script (pasted text is full of no-break spaces).
///
/// Written by hand since std::regex is slow and its stack grows with the text.
class TextScanner {
public:
    explicit TextScanner(std::string_view text) : m_rest(text) {}

    /// Without white space at its two ends.
    static std::string_view trimmed(std::string_view text);

    std::string_view rest() const { return m_rest; }
    bool atEnd() const { return m_rest.empty(); }
    /// Whether any was there.
    bool skipSpace();
    /// Takes one character if it is the next; `lower` is a lower-case letter or a sign.
    bool take(char lower);
    /// Takes a text if it comes next, in either case.
    bool takeWord(std::string_view lower);
    /// All the digits that come next.
    std::string_view takeDigits();

private:
    std::string_view m_rest;
};

inline constexpr std::string_view enDash = "\xE2\x80\x93";

constexpr bool isAsciiDigit(char c)
{
    return c >= '0' && c <= '9';
}
/// The text with its ASCII letters in lower case.
std::string asciiLowered(std::string_view text);

/// The value of a run of digits; anything from 10^12 on counts as 10^12, which is out of every range here.
std::int64_t cappedValue(std::string_view digits);

} // namespace orvane
