// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The reading and writing behind Json.h. Only source files that instantiate a type include this header.

#include "Support/DateText.h"
#include "Support/Json.h"
#include "Support/JsonOutput.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <simdjson.h>
#include <type_traits>
#include <variant>
#include <vector>

#define ORVANE_JSON(Type)                                                                                    \
    template ::orvane::Result<Type, ::orvane::JsonError> orvane::decodeJson<Type>(std::string_view,          \
                                                                                  ::orvane::JsonReading);    \
    template std::string orvane::encodeJson<Type>(const Type &, ::orvane::JsonStyle);

namespace orvane::json {

namespace od = simdjson::ondemand;

template <class T>
concept Listed = requires { JsonFields<T>::list; };
template <class T>
concept Enumerated = std::is_enum_v<T> && requires { JsonEnum<T>::list; };
template <class T>
concept Aliased = requires { JsonAlias<T>::member; };
template <class T>
concept Cased = requires { JsonCases<T>::names; };
template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;
template <class T>
inline constexpr bool isVector = false;
template <class T, class A>
inline constexpr bool isVector<std::vector<T, A>> = true;
template <class T>
inline constexpr bool isMap = false;
template <class T, class C, class A>
inline constexpr bool isMap<std::map<std::string, T, C, A>> = true;

/// One reading: how to read, and the first thing that went wrong. The path is put together on the way out.
struct Reader {
    JsonReading reading;
    JsonError error;

    bool fail(const char *message)
    {
        error.message = message;
        return false;
    }
    void inside(std::string_view name);
    void inside(std::size_t index);
};

bool readInstant(Reader &reader, od::value value, Instant &out);
bool readDay(Reader &reader, od::value value, std::chrono::year_month_day &out);
bool readRaw(Reader &reader, od::value value, RawJson &out);
/// The whole text of a document behind its value, or an error when something else follows it.
bool atEnd(od::document &document);
/// `is_null` answers a plain bool in older simdjson and a result in newer ones.
template <class Value>
bool isNull(Value &value)
{
    if constexpr (std::is_same_v<decltype(value.is_null()), bool>) {
        return value.is_null();
    } else {
        bool null = false;
        return value.is_null().get(null) == simdjson::SUCCESS && null;
    }
}

template <class T>
bool readValue(Reader &reader, od::value value, T &out);

/// Where a key stands in the list, trying the expected place first: members mostly come in the listed order.
template <Listed T>
std::size_t fieldIndex(const char *key, std::size_t expected)
{
    static constexpr auto names = std::apply(
        [](const auto &...field) { return std::array{std::remove_cvref_t<decltype(field)>::name...}; },
        JsonFields<T>::list);
    for (std::size_t tried = 0; tried < names.size(); ++tried) {
        std::size_t index = expected + tried;
        if (index >= names.size())
            index -= names.size();
        const std::string_view name = names[index];
        // The reader's padding keeps the comparison inside the buffer.
        if (std::memcmp(key, name.data(), name.size()) == 0 && key[name.size()] == '"')
            return index;
    }
    return names.size();
}

template <Listed T, std::size_t Index>
bool readField(Reader &reader, od::value value, T &out)
{
    constexpr auto &field = std::get<Index>(JsonFields<T>::list);
    auto &member = out.*(field.member);
    if constexpr (field.presence == JsonPresence::Defaulted &&
                  !isOptional<std::remove_cvref_t<decltype(member)>>) {
        if (isNull(value))
            return true;
    }
    if (readValue(reader, value, member))
        return true;
    reader.inside(std::remove_cvref_t<decltype(field)>::name);
    return false;
}

template <Listed T, std::size_t Index>
bool fieldIsThere(Reader &reader, std::uint64_t seen)
{
    constexpr auto &field = std::get<Index>(JsonFields<T>::list);
    using Member = std::remove_cvref_t<decltype(std::declval<T &>().*(field.member))>;
    if constexpr (field.presence == JsonPresence::Required && !isOptional<Member>) {
        if ((seen >> Index & 1U) == 0) {
            reader.fail("is missing");
            reader.inside(std::remove_cvref_t<decltype(field)>::name);
            return false;
        }
    }
    return true;
}

template <Listed T, std::size_t... Index>
bool readObject(Reader &reader, od::value value, T &out, std::index_sequence<Index...>)
{
    using ReadField = bool (*)(Reader &, od::value, T &);
    static constexpr ReadField readers[] = {&readField<T, Index>...};
    static_assert(sizeof...(Index) <= 64, "the set of members seen is one word");
    od::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS)
        return reader.fail("is not an object");
    std::uint64_t seen = 0;
    std::size_t expected = 0;
    for (auto element : object) {
        od::field field;
        if (std::move(element).get(field) != simdjson::SUCCESS)
            return reader.fail("is broken JSON");
        const std::size_t index = fieldIndex<T>(field.key().raw(), expected);
        if (index == sizeof...(Index))
            continue;
        if (!readers[index](reader, field.value(), out))
            return false;
        seen |= std::uint64_t{1} << index;
        expected = index + 1 < sizeof...(Index) ? index + 1 : 0;
    }
    return (fieldIsThere<T, Index>(reader, seen) && ...);
}

template <Enumerated T>
bool readEnum(Reader &reader, od::value value, T &out)
{
    std::string_view text;
    if (value.get_string().get(text) != simdjson::SUCCESS)
        return reader.fail("is not a text");
    for (const auto &[listed, name] : JsonEnum<T>::list) {
        if (name == text) {
            out = listed;
            return true;
        }
    }
    if constexpr (requires { JsonEnum<T>::unrecognized; }) {
        if (!reader.reading.strict) {
            out = JsonEnum<T>::unrecognized;
            return true;
        }
    }
    return reader.fail("is none of the known values");
}

template <class Vector>
bool readArray(Reader &reader, od::value value, Vector &out)
{
    od::array array;
    if (value.get_array().get(array) != simdjson::SUCCESS)
        return reader.fail("is not a list");
    out.clear();
    for (auto element : array) {
        od::value item;
        if (element.get(item) != simdjson::SUCCESS)
            return reader.fail("is broken JSON");
        if (!readValue(reader, item, out.emplace_back())) {
            reader.inside(out.size() - 1);
            return false;
        }
    }
    return true;
}

template <class Map>
bool readMap(Reader &reader, od::value value, Map &out)
{
    od::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS)
        return reader.fail("is not an object");
    out.clear();
    for (auto element : object) {
        od::field field;
        std::string_view key;
        if (std::move(element).get(field) != simdjson::SUCCESS ||
            field.unescaped_key().get(key) != simdjson::SUCCESS)
            return reader.fail("is broken JSON");
        const std::string name(key);
        if (!readValue(reader, field.value(), out[name])) {
            reader.inside(name);
            return false;
        }
    }
    return true;
}

template <class Variant, std::size_t... Index>
bool readCases(Reader &reader, od::value value, Variant &out, std::index_sequence<Index...>)
{
    od::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS)
        return reader.fail("is not an object");
    std::size_t members = 0;
    bool known = false;
    for (auto element : object) {
        od::field field;
        if (std::move(element).get(field) != simdjson::SUCCESS)
            return reader.fail("is broken JSON");
        ++members;
        const od::raw_json_string key = field.key();
        bool ok = true;
        const auto readCase = [&]<std::size_t I>() {
            constexpr std::string_view name = JsonCases<Variant>::names[I];
            if (known || std::memcmp(key.raw(), name.data(), name.size()) != 0 ||
                key.raw()[name.size()] != '"')
                return;
            known = true;
            ok = readValue(reader, field.value(), out.template emplace<I>());
            if (!ok)
                reader.inside(name);
        };
        (readCase.template operator()<Index>(), ...);
        if (!ok)
            return false;
    }
    return (known && members == 1) || reader.fail("is not one known case");
}

template <class T>
bool readValue(Reader &reader, od::value value, T &out)
{
    if constexpr (isOptional<T>) {
        if (isNull(value)) {
            out.reset();
            return true;
        }
        return readValue(reader, value, out.emplace());
    } else if constexpr (std::is_same_v<T, std::string>) {
        std::string_view text;
        if (value.get_string().get(text) != simdjson::SUCCESS)
            return reader.fail("is not a text");
        out.assign(text);
        return true;
    } else if constexpr (std::is_same_v<T, bool>) {
        return value.get_bool().get(out) == simdjson::SUCCESS || reader.fail("is not true or false");
    } else if constexpr (std::is_same_v<T, std::int64_t>) {
        return value.get_int64().get(out) == simdjson::SUCCESS || reader.fail("is not a whole number");
    } else if constexpr (std::is_same_v<T, double>) {
        return value.get_double().get(out) == simdjson::SUCCESS || reader.fail("is not a number");
    } else if constexpr (std::is_same_v<T, Instant>) {
        return readInstant(reader, value, out);
    } else if constexpr (std::is_same_v<T, std::chrono::year_month_day>) {
        return readDay(reader, value, out);
    } else if constexpr (std::is_same_v<T, RawJson>) {
        return readRaw(reader, value, out);
    } else if constexpr (Aliased<T>) {
        return readValue(reader, value, out.*JsonAlias<T>::member);
    } else if constexpr (Enumerated<T>) {
        return readEnum(reader, value, out);
    } else if constexpr (isVector<T>) {
        return readArray(reader, value, out);
    } else if constexpr (isMap<T>) {
        return readMap(reader, value, out);
    } else if constexpr (Cased<T>) {
        return readCases(reader, value, out, std::make_index_sequence<std::variant_size_v<T>>());
    } else {
        static_assert(Listed<T>, "this type has no JSON form");
        return readObject(reader, value, out,
                          std::make_index_sequence<
                              std::tuple_size_v<std::remove_cvref_t<decltype(JsonFields<T>::list)>>>());
    }
}

template <class T>
void writeValue(JsonOutput &output, const T &value);

template <class T, class Field>
void writeField(JsonOutput &output, const T &value, const Field &field, bool &first)
{
    const auto &member = value.*(field.member);
    if constexpr (isOptional<std::remove_cvref_t<decltype(member)>>) {
        if (!member && !output.style().writeNulls)
            return;
    }
    output.name(Field::name, first);
    writeValue(output, member);
}

template <class T>
void writeValue(JsonOutput &output, const T &value)
{
    if constexpr (isOptional<T>) {
        if (value)
            writeValue(output, *value);
        else
            output.raw("null");
    } else if constexpr (Aliased<T>) {
        writeValue(output, value.*JsonAlias<T>::member);
    } else if constexpr (Enumerated<T>) {
        output.value(jsonText(value));
    } else if constexpr (isVector<T>) {
        output.raw("[");
        bool first = true;
        for (const auto &item : value) {
            if (!std::exchange(first, false))
                output.raw(",");
            writeValue(output, item);
        }
        output.raw("]");
    } else if constexpr (isMap<T>) {
        output.raw("{");
        bool first = true;
        for (const auto &[key, item] : value) {
            if (!std::exchange(first, false))
                output.raw(",");
            output.value(std::string_view(key));
            output.raw(":");
            writeValue(output, item);
        }
        output.raw("}");
    } else if constexpr (Cased<T>) {
        std::visit(
            [&](const auto &alternative) {
                output.raw("{");
                output.value(std::string_view(JsonCases<T>::names[value.index()]));
                output.raw(":");
                writeValue(output, alternative);
                output.raw("}");
            },
            value);
    } else if constexpr (Listed<T>) {
        output.raw("{");
        bool first = true;
        std::apply([&](const auto &...field) { (writeField(output, value, field, first), ...); },
                   JsonFields<T>::list);
        output.raw("}");
    } else {
        output.value(value);
    }
}

/// A padded copy of the text and a parser for it: this thread's, unless the text is so large that keeping the
/// parser's memory would be a burden.
class ParserLease {
public:
    explicit ParserLease(std::string_view text);
    ParserLease(const ParserLease &) = delete;
    ParserLease &operator=(const ParserLease &) = delete;
    ~ParserLease();

    bool open(od::document &document);

private:
    struct Parts;
    Parts *m_parts;
    bool m_ownsParts;
};

} // namespace orvane::json

namespace orvane {

template <class T>
Result<T, JsonError> decodeJson(std::string_view text, JsonReading reading)
{
    json::Reader reader{reading, {}};
    json::ParserLease lease(text);
    json::od::document document;
    json::od::value value;
    T out{};
    if (!lease.open(document) || document.get_value().get(value) != simdjson::SUCCESS)
        return failure(JsonError{{}, "is broken JSON"});
    if (!json::readValue(reader, value, out))
        return failure(std::move(reader.error));
    if (!json::atEnd(document))
        return failure(JsonError{{}, "is broken JSON"});
    return out;
}

template <class T>
std::string encodeJson(const T &value, JsonStyle style)
{
    JsonOutput output(style);
    json::writeValue(output, value);
    return output.take();
}

} // namespace orvane
