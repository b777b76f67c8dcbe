// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/DateText.h"
#include "Support/JsonImpl.h"
#include "Support/Require.h"

#include <algorithm>
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

struct Node {
    od::value value;
};

namespace {

/// A text above this is read with a parser of its own, which is released afterwards.
constexpr std::size_t keptParserLimit = std::size_t{256} * 1024;

/// A padded copy of the text and a parser for it: this thread's, unless they are in use or the text is so
/// large that keeping their memory would be a burden.
class ParserLease {
public:
    explicit ParserLease(std::string_view text);
    ParserLease(const ParserLease &) = delete;
    ParserLease &operator=(const ParserLease &) = delete;
    ~ParserLease();

    bool open(od::document &document);
    /// Whether the whole text is JSON: what is passed over on the way is not looked at.
    bool isWellFormed() const;

private:
    struct Parts {
        std::string padded;
        od::parser parser;
        bool isLeased = false;
    };
    Parts *m_parts;
    bool m_ownsParts;
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

bool isJson(const std::string &padded)
{
    simdjson::dom::parser parser;
    simdjson::dom::element element;
    const auto error = parser.parse(padded.data(), padded.size(), false).get(element);
    // A number that no type here can hold is JSON all the same.
    return error == simdjson::SUCCESS || error == simdjson::NUMBER_ERROR;
}

bool ParserLease::isWellFormed() const
{
    return isJson(m_parts->padded);
}

/// `is_null` answers a plain bool in older simdjson and a result in newer ones.
template <class Value>
bool isNullValue(Value &value)
{
    if constexpr (std::is_same_v<decltype(value.is_null()), bool>) {
        return value.is_null();
    } else {
        bool null = false;
        return value.is_null().get(null) == simdjson::SUCCESS && null;
    }
}

bool isKey(const char *raw, std::string_view name)
{
    // The reader's padding keeps the comparison inside the buffer.
    return std::memcmp(raw, name.data(), name.size()) == 0 && raw[name.size()] == '"';
}

/// Where a key stands in the list, trying the expected place first: members mostly come in the listed order.
std::size_t memberIndex(const char *raw, std::span<const MemberReader> members, std::size_t expected)
{
    for (std::size_t tried = 0; tried < members.size(); ++tried) {
        std::size_t index = expected + tried;
        if (index >= members.size())
            index -= members.size();
        if (isKey(raw, members[index].name))
            return index;
    }
    return members.size();
}

bool hasEscape(const char *raw)
{
    while (*raw != '"' && *raw != '\\')
        ++raw;
    return *raw == '\\';
}

/// Finds the member a field is for; a name may be written with escapes.
bool findMember(od::field &field, std::span<const MemberReader> members, std::size_t expected,
                std::size_t &index)
{
    const char *raw = field.key().raw();
    index = memberIndex(raw, members, expected);
    if (index < members.size() || !hasEscape(raw))
        return true;
    std::string_view name;
    if (field.unescaped_key().get(name) != simdjson::SUCCESS)
        return false;
    const auto found = std::ranges::find(members, name, &MemberReader::name);
    index = static_cast<std::size_t>(found - members.begin());
    return true;
}

bool readMember(Reader &reader, od::field &field, const MemberReader &member, void *out)
{
    Node node{field.value()};
    if (member.absence == Absence::AcceptedLikeNull && isNullValue(node.value))
        return true;
    if (member.read(reader, node, out))
        return true;
    reader.inside(member.name);
    return false;
}

bool nothingIsMissing(Reader &reader, std::span<const MemberReader> members, std::uint64_t seen)
{
    for (std::size_t index = 0; index < members.size(); ++index) {
        if (members[index].absence != Absence::Refused || (seen >> index & 1U) != 0)
            continue;
        reader.fail("is missing");
        reader.inside(members[index].name);
        return false;
    }
    return true;
}

bool readWhole(Reader &reader, ParserLease &lease, ReadInto read, void *out)
{
    od::document document;
    Node node;
    if (!lease.open(document) || document.get_value().get(node.value) != simdjson::SUCCESS)
        return reader.failBroken();
    if (!read(reader, node, out))
        return false;
    const char *place = nullptr;
    const bool isAtEnd = document.current_location().get(place) != simdjson::SUCCESS;
    return isAtEnd || reader.failBroken();
}

} // namespace

bool readDocument(Reader &reader, std::string_view text, ReadInto read, void *out)
{
    ParserLease lease(text);
    const bool ok = readWhole(reader, lease, read, out);
    // Finding which is at fault, the text or a value in it, is worth another look at a text that is refused.
    if (reader.isBroken || ((!ok || reader.reading.strict) && !lease.isWellFormed())) {
        reader.error = {{}, "is broken JSON"};
        return false;
    }
    return ok;
}

bool isNull(Node &node)
{
    return isNullValue(node.value);
}

bool readText(Reader &reader, Node &node, std::string_view &out)
{
    return node.value.get_string().get(out) == simdjson::SUCCESS || reader.fail("is not a text");
}

bool readPlain(Reader &reader, Node &node, std::string &out)
{
    std::string_view text;
    if (!readText(reader, node, text))
        return false;
    out.assign(text);
    return true;
}

bool readPlain(Reader &reader, Node &node, bool &out)
{
    return node.value.get_bool().get(out) == simdjson::SUCCESS || reader.fail("is not true or false");
}

bool readPlain(Reader &reader, Node &node, std::int64_t &out)
{
    return node.value.get_int64().get(out) == simdjson::SUCCESS || reader.fail("is not a whole number");
}

bool readPlain(Reader &reader, Node &node, double &out)
{
    return node.value.get_double().get(out) == simdjson::SUCCESS || reader.fail("is not a number");
}

namespace {
/// At most `limit` bytes, no character cut in two.
std::string_view frontOf(std::string_view text, std::size_t limit)
{
    if (text.size() <= limit)
        return text;
    while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xC0U) == 0x80U)
        --limit;
    return text.substr(0, limit);
}
} // namespace

bool readPlain(Reader &reader, Node &node, Instant &out)
{
    std::optional<Instant> instant;
    if (reader.reading.dates == DateCoding::Iso8601) {
        std::string_view text;
        if (node.value.get_string().get(text) != simdjson::SUCCESS)
            return reader.fail("is not a date");
        instant = instantFromIso8601(text);
        if (!instant) {
            reader.error.message = "Not an ISO 8601 date: ";
            reader.error.message += frontOf(text, 40);
            return false;
        }
    } else {
        double seconds = 0;
        if (node.value.get_double().get(seconds) == simdjson::SUCCESS)
            instant = instantFromSecondsSince2001(seconds);
        if (!instant)
            return reader.fail("is not a date");
    }
    out = *instant;
    return true;
}

bool readPlain(Reader &reader, Node &node, std::chrono::year_month_day &out)
{
    std::string_view text;
    if (node.value.get_string().get(text) == simdjson::SUCCESS) {
        if (const auto day = dayFromText(text)) {
            out = *day;
            return true;
        }
    }
    return reader.fail("is not a day");
}

bool readPlain(Reader &reader, Node &node, RawJson &out)
{
    od::json_type type{};
    std::string_view text;
    if (node.value.type().get(type) != simdjson::SUCCESS)
        return reader.failBroken();
    auto error = simdjson::SUCCESS;
    if (type == od::json_type::object) {
        od::object object;
        error = node.value.get_object().get(object);
        if (error == simdjson::SUCCESS)
            error = object.raw_json().get(text);
    } else if (type == od::json_type::array) {
        od::array array;
        error = node.value.get_array().get(array);
        if (error == simdjson::SUCCESS)
            error = array.raw_json().get(text);
    } else {
        text = node.value.raw_json_token();
    }
    if (error != simdjson::SUCCESS)
        return reader.failBroken();
    while (!text.empty() &&
           (text.back() == ' ' || text.back() == '\n' || text.back() == '\r' || text.back() == '\t'))
        text.remove_suffix(1);
    // It is written again as it is, so it has to be JSON in all its parts.
    out.text.reserve(text.size() + simdjson::SIMDJSON_PADDING);
    out.text.assign(text);
    return isJson(out.text) || reader.failBroken();
}

bool readMembers(Reader &reader, Node &node, std::span<const MemberReader> members, void *out)
{
    od::object object;
    if (node.value.get_object().get(object) != simdjson::SUCCESS)
        return reader.fail("is not an object");
    std::uint64_t seen = 0;
    std::size_t expected = 0;
    for (auto element : object) {
        od::field field;
        std::size_t index = 0;
        if (std::move(element).get(field) != simdjson::SUCCESS ||
            !findMember(field, members, expected, index))
            return reader.failBroken();
        if (index == members.size())
            continue;
        if ((seen >> index & 1U) != 0) {
            reader.fail("is given twice");
            reader.inside(members[index].name);
            return false;
        }
        if (!readMember(reader, field, members[index], out))
            return false;
        seen |= std::uint64_t{1} << index;
        expected = index + 1 < members.size() ? index + 1 : 0;
    }
    return nothingIsMissing(reader, members, seen);
}

bool readItems(Reader &reader, Node &node, ReadInto readNext, void *list)
{
    od::array array;
    if (node.value.get_array().get(array) != simdjson::SUCCESS)
        return reader.fail("is not a list");
    std::size_t index = 0;
    for (auto element : array) {
        Node item;
        if (element.get(item.value) != simdjson::SUCCESS)
            return reader.failBroken();
        if (!readNext(reader, item, list)) {
            reader.inside(index);
            return false;
        }
        ++index;
    }
    return true;
}

bool readEntries(Reader &reader, Node &node, ReadEntry readEntry, void *map)
{
    od::object object;
    if (node.value.get_object().get(object) != simdjson::SUCCESS)
        return reader.fail("is not an object");
    for (auto element : object) {
        od::field field;
        std::string_view key;
        if (std::move(element).get(field) != simdjson::SUCCESS ||
            field.unescaped_key().get(key) != simdjson::SUCCESS)
            return reader.failBroken();
        const std::string name(key);
        Node item{field.value()};
        if (!readEntry(reader, item, name, map)) {
            reader.inside(name);
            return false;
        }
    }
    return true;
}

bool readCase(Reader &reader, Node &node, std::span<const MemberReader> cases, void *out)
{
    od::object object;
    if (node.value.get_object().get(object) != simdjson::SUCCESS)
        return reader.fail("is not an object");
    std::size_t members = 0;
    bool isKnown = false;
    for (auto element : object) {
        od::field field;
        std::size_t index = 0;
        if (std::move(element).get(field) != simdjson::SUCCESS || !findMember(field, cases, 0, index))
            return reader.failBroken();
        ++members;
        if (members > 1 || index == cases.size())
            continue;
        isKnown = true;
        if (!readMember(reader, field, cases[index], out))
            return false;
    }
    return (isKnown && members == 1) || reader.fail("is not one known case");
}

} // namespace orvane::json
