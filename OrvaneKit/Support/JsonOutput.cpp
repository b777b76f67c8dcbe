// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/JsonOutput.h"

#include "Support/DateText.h"
#include "Support/Require.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <simdjson.h>

namespace orvane {

namespace {

constexpr auto escapes = [] {
    std::array<char, 256> table{};
    for (std::size_t c = 0; c < 0x20; ++c)
        table[c] = 'u';
    table['"'] = '"';
    table['\\'] = '\\';
    table['\b'] = 'b';
    table['\f'] = 'f';
    table['\n'] = 'n';
    table['\r'] = 'r';
    table['\t'] = 't';
    return table;
}();

void appendEscaped(std::string &out, std::string_view text)
{
    std::size_t plainFrom = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const char escape = escapes[c];
        if (escape == 0)
            continue;
        out.append(text, plainFrom, i - plainFrom);
        plainFrom = i + 1;
        out += '\\';
        out += escape;
        if (escape == 'u') {
            constexpr char hex[] = "0123456789abcdef";
            out += "00";
            out += hex[c >> 4U];
            out += hex[c & 15U];
        }
    }
    out.append(text, plainFrom);
}

/// How many bytes at the front are one valid UTF-8 character; 0 when the first byte begins none.
std::size_t validLength(std::string_view text)
{
    for (std::size_t length = 1; length <= 4 && length <= text.size(); ++length) {
        if (simdjson::validate_utf8(text.substr(0, length)))
            return length;
    }
    return 0;
}

std::string mended(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        const std::size_t length = validLength(text);
        if (length == 0)
            out += "\xEF\xBF\xBD";
        else
            out.append(text, 0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return out;
}

} // namespace

void JsonOutput::name(std::string_view name, bool &first)
{
    if (!std::exchange(first, false))
        m_text += ',';
    m_text += '"';
    m_text += name;
    m_text += "\":";
}

void JsonOutput::value(std::int64_t value)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    m_text.append(digits, end);
}

void JsonOutput::value(double value)
{
    ORVANE_REQUIRE(std::isfinite(value), "JSON has no form for a number that is not finite");
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    m_text.append(digits, end);
}

void JsonOutput::value(std::string_view value)
{
    m_text += '"';
    if (simdjson::validate_utf8(value.data(), value.size()))
        appendEscaped(m_text, value);
    else
        appendEscaped(m_text, mended(value));
    m_text += '"';
}

void JsonOutput::value(Instant instant)
{
    if (m_style.dates == DateCoding::secondsSince2001) {
        value(secondsSince2001(instant));
        return;
    }
    m_text += '"';
    appendIso8601Text(m_text, instant);
    m_text += '"';
}

void JsonOutput::value(std::chrono::year_month_day day)
{
    m_text += '"';
    m_text += dayText(day);
    m_text += '"';
}

} // namespace orvane
