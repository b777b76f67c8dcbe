// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/DateText.h"
#include "Support/JsonImpl.h"

#include <algorithm>
#include <cstring>
#include <simdjson.h>

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

simdjson::error_code parseAll(const std::string &padded)
{
    simdjson::dom::parser parser;
    simdjson::dom::element element;
    return parser.parse(padded.data(), padded.size(), false).get(element);
}

std::size_t digitsAt(std::string_view text, std::size_t at)
{
    std::size_t count = 0;
    while (at + count < text.size() && text[at + count] >= '0' && text[at + count] <= '9')
        ++count;
    return count;
}

/// How many bytes at `at` are a number by JSON's grammar.
std::size_t numberLength(std::string_view text, std::size_t at)
{
    const auto isAt = [&](std::size_t place, std::string_view any) {
        return place < text.size() && any.find(text[place]) != std::string_view::npos;
    };
    std::size_t end = at + (isAt(at, "-") ? 1U : 0U);
    const std::size_t whole = isAt(end, "0") ? 1 : digitsAt(text, end);
    if (whole == 0)
        return 0;
    end += whole;
    if (isAt(end, ".") && digitsAt(text, end + 1) > 0)
        end += 1 + digitsAt(text, end + 1);
    if (isAt(end, "eE")) {
        const std::size_t digits = end + (isAt(end + 1, "+-") ? 2U : 1U);
        if (digitsAt(text, digits) > 0)
            end = digits + digitsAt(text, digits);
    }
    return end - at;
}

/// The text with 0 in the place of each number.
std::string withoutNumbers(std::string_view text)
{
    std::string out;
    out.reserve(text.size() + simdjson::SIMDJSON_PADDING);
    bool isInText = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t number = isInText ? 0 : numberLength(text, i);
        out += number > 0 ? '0' : text[i];
        if (number > 0)
            i += number - 1;
        else if (isInText && text[i] == '\\' && i + 1 < text.size())
            out += text[++i];
        else if (text[i] == '"')
            isInText = !isInText;
    }
    return out;
}

bool isJson(const std::string &padded)
{
    const auto error = parseAll(padded);
    // The parser refuses numbers that no type here can hold, but they are JSON all the same.
    return error == simdjson::SUCCESS ||
           (error == simdjson::NUMBER_ERROR && parseAll(withoutNumbers(padded)) == simdjson::SUCCESS);
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
    return raw[name.size()] == '"' && std::memcmp(raw, name.data(), name.size()) == 0;
}

bool hasEscape(const char *raw)
{
    while (*raw != '"' && *raw != '\\')
        ++raw;
    return *raw == '\\';
}

/// Finds the member a field is for, beginning after `index`; a name may be written with escapes.
[[gnu::noinline]] bool searchMember(od::field &field, std::span<const MemberReader> members,
                                    std::size_t &index)
{
    const char *raw = field.key().raw();
    for (std::size_t tried = 1; tried < members.size(); ++tried) {
        const std::size_t wrapped = index + tried < members.size() ? 0 : members.size();
        if (isKey(raw, members[index + tried - wrapped].name)) {
            index += tried - wrapped;
            return true;
        }
    }
    index = members.size();
    if (!hasEscape(raw))
        return true;
    std::string_view name;
    if (field.unescaped_key().get(name) != simdjson::SUCCESS)
        return false;
    const auto found = std::ranges::find(members, name, &MemberReader::name);
    index = static_cast<std::size_t>(found - members.begin());
    return true;
}

/// Finds the member a field is for, trying the expected place first: members mostly come in the listed order.
bool findMember(od::field &field, std::span<const MemberReader> members, std::size_t expected,
                std::size_t &index)
{
    index = expected;
    return (index < members.size() && isKey(field.key().raw(), members[index].name)) ||
           searchMember(field, members, index);
}

bool readMember(Reader &reader, od::field &field, const MemberReader &member, void *out)
{
    Node node{field.value()};
    if (member.absence == Absence::acceptedLikeNull && isNullValue(node.value))
        return true;
    if (member.read(reader, node, out))
        return true;
    reader.inside(member.name);
    return false;
}

bool nothingIsMissing(Reader &reader, std::span<const MemberReader> members, std::uint64_t seen)
{
    for (std::size_t index = 0; index < members.size(); ++index) {
        if (members[index].absence != Absence::refused || (seen >> index & 1U) != 0)
            continue;
        reader.fail("is missing");
        reader.inside(members[index].name);
        return false;
    }
    return true;
}

/// The parser gives no value for a text that is a single scalar, so that is read as the only item of a list.
bool readScalar(Reader &reader, std::string_view text, ReadInto read, void *out)
{
    ParserLease lease("[" + std::string(text) + "]");
    od::document document;
    od::array list;
    if (!lease.open(document) || document.get_array().get(list) != simdjson::SUCCESS)
        return reader.failBroken();
    for (auto element : list) {
        Node node;
        return element.get(node.value) == simdjson::SUCCESS ? read(reader, node, out) : reader.failBroken();
    }
    return reader.failBroken();
}

bool readWhole(Reader &reader, ParserLease &lease, std::string_view text, ReadInto read, void *out)
{
    od::document document;
    Node node;
    if (!lease.open(document))
        return reader.failBroken();
    const auto error = document.get_value().get(node.value);
    if (error == simdjson::SCALAR_DOCUMENT_AS_VALUE)
        return lease.isWellFormed() ? readScalar(reader, text, read, out) : reader.failBroken();
    if (error != simdjson::SUCCESS)
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
    const bool ok = readWhole(reader, lease, text, read, out);
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
    // Mostly an empty text is filled, which making a new one does faster than assigning.
    out = std::string(text);
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
    if (reader.reading.dates == DateCoding::iso8601) {
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

bool readItems(Reader &reader, Node &node, ReadInto readNext, Reserve reserve, void *list)
{
    od::array array;
    if (node.value.get_array().get(array) != simdjson::SUCCESS)
        return reader.fail("is not a list");
    std::size_t count = 0;
    if (reserve != nullptr && array.count_elements().get(count) == simdjson::SUCCESS)
        reserve(list, count);
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
