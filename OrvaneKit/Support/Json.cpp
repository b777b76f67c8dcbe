// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/JsonImpl.h"
#include "Support/Require.h"

#include <charconv>
#include <cmath>
#include <memory>

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
    if (m_style.dates == DateCoding::SecondsSince2001) {
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

namespace orvane::json {

void Reader::inside(std::string_view name)
{
    const bool member = !error.path.empty() && error.path.front() != '[';
    error.path.insert(0, member ? std::string(name) + "." : std::string(name));
}

void Reader::inside(std::size_t index)
{
    const bool member = !error.path.empty() && error.path.front() != '[';
    error.path.insert(0, "[" + std::to_string(index) + "]" + (member ? "." : ""));
}

bool readInstant(Reader &reader, od::value value, Instant &out)
{
    std::optional<Instant> instant;
    if (reader.reading.dates == DateCoding::Iso8601) {
        std::string_view text;
        if (value.get_string().get(text) != simdjson::SUCCESS)
            return reader.fail("is not a date");
        instant = instantFromIso8601(text);
        if (!instant) {
            reader.error.message = "Not an ISO 8601 date: ";
            reader.error.message += text.substr(0, 40);
            return false;
        }
    } else {
        double seconds = 0;
        if (value.get_double().get(seconds) == simdjson::SUCCESS)
            instant = instantFromSecondsSince2001(seconds);
        if (!instant)
            return reader.fail("is not a date");
    }
    out = *instant;
    return true;
}

bool readDay(Reader &reader, od::value value, std::chrono::year_month_day &out)
{
    std::string_view text;
    if (value.get_string().get(text) == simdjson::SUCCESS) {
        if (const auto day = dayFromText(text)) {
            out = *day;
            return true;
        }
    }
    return reader.fail("is not a day");
}

bool readRaw(Reader &reader, od::value value, RawJson &out)
{
    od::json_type type{};
    std::string_view text;
    if (value.type().get(type) != simdjson::SUCCESS)
        return reader.fail("is broken JSON");
    auto error = simdjson::SUCCESS;
    if (type == od::json_type::object) {
        od::object object;
        error = value.get_object().get(object);
        if (error == simdjson::SUCCESS)
            error = object.raw_json().get(text);
    } else if (type == od::json_type::array) {
        od::array array;
        error = value.get_array().get(array);
        if (error == simdjson::SUCCESS)
            error = array.raw_json().get(text);
    } else {
        text = value.raw_json_token();
    }
    if (error != simdjson::SUCCESS)
        return reader.fail("is broken JSON");
    while (!text.empty() &&
           (text.back() == ' ' || text.back() == '\n' || text.back() == '\r' || text.back() == '\t'))
        text.remove_suffix(1);
    out.text.assign(text);
    return true;
}

bool atEnd(od::document &document)
{
    const char *place = nullptr;
    return document.current_location().get(place) != simdjson::SUCCESS;
}

namespace {
/// A text above this is read with a parser of its own, which is released afterwards.
constexpr std::size_t keptParserLimit = std::size_t{256} * 1024;
} // namespace

struct ParserLease::Parts {
    std::string padded;
    od::parser parser;
    bool isLeased = false;
};

ParserLease::ParserLease(std::string_view text)
{
    thread_local Parts kept;
    m_ownsParts = text.size() > keptParserLimit || kept.isLeased;
    m_parts = m_ownsParts ? new Parts : &kept;
    m_parts->isLeased = true;
    m_parts->padded.reserve(text.size() + simdjson::SIMDJSON_PADDING);
    m_parts->padded.assign(text);
}

ParserLease::~ParserLease()
{
    m_parts->isLeased = false;
    if (m_ownsParts)
        delete m_parts;
}

bool ParserLease::open(od::document &document)
{
    const simdjson::padded_string_view view(m_parts->padded.data(), m_parts->padded.size(),
                                            m_parts->padded.capacity());
    return m_parts->parser.iterate(view).get(document) == simdjson::SUCCESS;
}

} // namespace orvane::json
