// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/JsonImpl.h"
#include "Support/Require.h"

#include <charconv>
#include <cmath>
#include <cstring>
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

namespace od = simdjson::ondemand;

struct Value {
    od::value value;
};

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

bool readText(Reader &reader, Value &place, std::string &out)
{
    std::string_view text;
    if (place.value.get_string().get(text) != simdjson::SUCCESS)
        return reader.fail("is not a text");
    out.assign(text);
    return true;
}

bool readBool(Reader &reader, Value &place, bool &out)
{
    return place.value.get_bool().get(out) == simdjson::SUCCESS || reader.fail("is not true or false");
}

bool readInteger(Reader &reader, Value &place, std::int64_t &out)
{
    return place.value.get_int64().get(out) == simdjson::SUCCESS || reader.fail("is not a whole number");
}

bool readNumber(Reader &reader, Value &place, double &out)
{
    return place.value.get_double().get(out) == simdjson::SUCCESS || reader.fail("is not a number");
}

bool isNull(Value &place)
{
    // A plain bool in older simdjson, a result in newer ones.
    if constexpr (std::is_same_v<decltype(place.value.is_null()), bool>) {
        return place.value.is_null();
    } else {
        bool null = false;
        return place.value.is_null().get(null) == simdjson::SUCCESS && null;
    }
}

bool readInstant(Reader &reader, Value &place, Instant &out)
{
    std::optional<Instant> instant;
    if (reader.reading.dates == DateCoding::Iso8601) {
        std::string_view text;
        if (place.value.get_string().get(text) != simdjson::SUCCESS)
            return reader.fail("is not a date");
        instant = instantFromIso8601(text);
        if (!instant) {
            reader.error.message = "Not an ISO 8601 date: ";
            reader.error.message += text.substr(0, 40);
            return false;
        }
    } else {
        double seconds = 0;
        if (place.value.get_double().get(seconds) == simdjson::SUCCESS)
            instant = instantFromSecondsSince2001(seconds);
        if (!instant)
            return reader.fail("is not a date");
    }
    out = *instant;
    return true;
}

bool readDay(Reader &reader, Value &place, std::chrono::year_month_day &out)
{
    std::string_view text;
    if (place.value.get_string().get(text) == simdjson::SUCCESS) {
        if (const auto day = dayFromText(text)) {
            out = *day;
            return true;
        }
    }
    return reader.fail("is not a day");
}

bool readRaw(Reader &reader, Value &place, RawJson &out)
{
    od::json_type type{};
    std::string_view text;
    if (place.value.type().get(type) != simdjson::SUCCESS)
        return reader.fail("is broken JSON");
    auto error = simdjson::SUCCESS;
    if (type == od::json_type::object) {
        od::object object;
        error = place.value.get_object().get(object);
        if (error == simdjson::SUCCESS)
            error = object.raw_json().get(text);
    } else if (type == od::json_type::array) {
        od::array array;
        error = place.value.get_array().get(array);
        if (error == simdjson::SUCCESS)
            error = array.raw_json().get(text);
    } else {
        text = place.value.raw_json_token();
    }
    if (error != simdjson::SUCCESS)
        return reader.fail("is broken JSON");
    while (!text.empty() &&
           (text.back() == ' ' || text.back() == '\n' || text.back() == '\r' || text.back() == '\t'))
        text.remove_suffix(1);
    out.text.assign(text);
    return true;
}

namespace {

/// The reader's padding keeps the comparison inside the buffer.
bool isKey(const char *key, std::string_view name)
{
    return std::memcmp(key, name.data(), name.size()) == 0 && key[name.size()] == '"';
}

/// Where a key stands in the list, trying the expected place first: members mostly come in the listed order.
std::size_t fieldIndex(const char *key, std::span<const FieldEntry> fields, std::size_t expected)
{
    std::size_t index = expected < fields.size() ? expected : 0;
    for (std::size_t tried = 0; tried < fields.size(); ++tried) {
        if (isKey(key, fields[index].name))
            return index;
        index = index + 1 < fields.size() ? index + 1 : 0;
    }
    return fields.size();
}

bool readField(const FieldEntry &entry, Reader &reader, od::field &field, void *owner)
{
    Value value{field.value()};
    return entry.read(reader, value, owner);
}

} // namespace

bool readObject(Reader &reader, Value &place, void *owner, std::span<const FieldEntry> fields)
{
    od::object object;
    if (place.value.get_object().get(object) != simdjson::SUCCESS)
        return reader.fail("is not an object");
    std::uint64_t seen = 0;
    std::size_t expected = 0;
    for (auto element : object) {
        od::field field;
        if (std::move(element).get(field) != simdjson::SUCCESS)
            return reader.fail("is broken JSON");
        const std::size_t index = fieldIndex(field.key().raw(), fields, expected);
        if (index == fields.size())
            continue;
        if (!readField(fields[index], reader, field, owner)) {
            reader.inside(fields[index].name);
            return false;
        }
        seen |= std::uint64_t{1} << index;
        expected = index + 1;
    }
    for (std::size_t index = 0; index < fields.size(); ++index) {
        if (fields[index].isRequired && (seen >> index & 1U) == 0) {
            reader.fail("is missing");
            reader.inside(fields[index].name);
            return false;
        }
    }
    return true;
}

bool readArray(Reader &reader, Value &place, void *owner, bool (*readItem)(Reader &, Value &, void *))
{
    od::array array;
    if (place.value.get_array().get(array) != simdjson::SUCCESS)
        return reader.fail("is not a list");
    std::size_t index = 0;
    for (auto element : array) {
        Value item;
        if (element.get(item.value) != simdjson::SUCCESS)
            return reader.fail("is broken JSON");
        if (!readItem(reader, item, owner)) {
            reader.inside(index);
            return false;
        }
        ++index;
    }
    return true;
}

bool readMap(Reader &reader, Value &place, void *owner,
             bool (*readItem)(Reader &, Value &, std::string_view, void *))
{
    od::object object;
    if (place.value.get_object().get(object) != simdjson::SUCCESS)
        return reader.fail("is not an object");
    for (auto element : object) {
        od::field field;
        std::string_view key;
        if (std::move(element).get(field) != simdjson::SUCCESS ||
            field.unescaped_key().get(key) != simdjson::SUCCESS)
            return reader.fail("is broken JSON");
        const std::string name(key);
        Value item{field.value()};
        if (!readItem(reader, item, name, owner)) {
            reader.inside(name);
            return false;
        }
    }
    return true;
}

std::optional<std::size_t> readName(Reader &reader, Value &place, std::span<const std::string_view> names)
{
    std::string_view text;
    if (place.value.get_string().get(text) != simdjson::SUCCESS) {
        reader.fail("is not a text");
        return std::nullopt;
    }
    return static_cast<std::size_t>(std::ranges::find(names, text) - names.begin());
}

bool readCase(Reader &reader, Value &place, void *owner, std::span<const FieldEntry> cases)
{
    od::object object;
    if (place.value.get_object().get(object) != simdjson::SUCCESS)
        return reader.fail("is not an object");
    std::size_t members = 0;
    bool isKnown = false;
    for (auto element : object) {
        od::field field;
        if (std::move(element).get(field) != simdjson::SUCCESS)
            return reader.fail("is broken JSON");
        const std::size_t index = fieldIndex(field.key().raw(), cases, 0);
        if (++members > 1 || index == cases.size())
            continue;
        isKnown = true;
        if (!readField(cases[index], reader, field, owner)) {
            reader.inside(cases[index].name);
            return false;
        }
    }
    return (isKnown && members == 1) || reader.fail("is not one known case");
}

namespace {

/// A text above this is read with a parser of its own, which is released afterwards.
constexpr std::size_t keptParserLimit = 256 * 1024;

struct Parser {
    std::string padded;
    od::parser parser;
};

bool readWith(Parser &parts, std::string_view text, Reader &reader, void *owner,
              bool (*readRoot)(Reader &, Value &, void *))
{
    parts.padded.reserve(text.size() + simdjson::SIMDJSON_PADDING);
    parts.padded.assign(text);
    const simdjson::padded_string_view view(parts.padded.data(), parts.padded.size(),
                                            parts.padded.capacity());
    od::document document;
    Value root;
    if (parts.parser.iterate(view).get(document) != simdjson::SUCCESS ||
        document.get_value().get(root.value) != simdjson::SUCCESS)
        return reader.fail("is broken JSON");
    if (!readRoot(reader, root, owner))
        return false;
    const char *rest = nullptr;
    return document.current_location().get(rest) != simdjson::SUCCESS || reader.fail("is broken JSON");
}

} // namespace

std::optional<JsonError> readDocument(std::string_view text, JsonReading reading, void *owner,
                                      bool (*readRoot)(Reader &, Value &, void *))
{
    Reader reader{reading, {}};
    bool isRead = false;
    if (text.size() > keptParserLimit) {
        Parser parser;
        isRead = readWith(parser, text, reader, owner, readRoot);
    } else {
        thread_local Parser kept;
        isRead = readWith(kept, text, reader, owner, readRoot);
    }
    return isRead ? std::nullopt : std::optional{std::move(reader.error)};
}

} // namespace orvane::json
