// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The reading and writing behind Json.h. Only source files that instantiate a type include this header.

#include "Support/DateText.h"
#include "Support/Json.h"
#include "Support/JsonOutput.h"

#include <algorithm>
#include <map>
#include <optional>
#include <span>
#include <type_traits>
#include <variant>
#include <vector>

#define ORVANE_JSON(Type)                                                                                    \
    template ::orvane::Result<Type, ::orvane::JsonError> orvane::decodeJson<Type>(std::string_view,          \
                                                                                  ::orvane::JsonReading);    \
    template std::string orvane::encodeJson<Type>(const Type &, ::orvane::JsonStyle);

namespace orvane::json {

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

/// A place in the text that is being read; known to Json.cpp alone, which keeps the parser out of everybody
/// else's compiling.
struct Value;

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

// What every type needs is compiled once, behind plain functions: inlined into each of some hundred types,
// the library's reading would cost minutes of compiling and win nothing.
bool readText(Reader &reader, Value &value, std::string &out);
bool readBool(Reader &reader, Value &value, bool &out);
bool readInteger(Reader &reader, Value &value, std::int64_t &out);
bool readNumber(Reader &reader, Value &value, double &out);
bool readInstant(Reader &reader, Value &value, Instant &out);
bool readDay(Reader &reader, Value &value, std::chrono::year_month_day &out);
bool readRaw(Reader &reader, Value &value, RawJson &out);
bool isNull(Value &value);

/// One field of a type, the types forgotten.
struct FieldEntry {
    std::string_view name;
    bool (*read)(Reader &, Value &, void *owner);
    bool isRequired;
};
bool readObject(Reader &reader, Value &value, void *owner, std::span<const FieldEntry> fields);
/// Calls `readItem` for each element.
bool readArray(Reader &reader, Value &value, void *owner, bool (*readItem)(Reader &, Value &, void *owner));
bool readMap(Reader &reader, Value &value, void *owner,
             bool (*readItem)(Reader &, Value &, std::string_view key, void *owner));
/// The index of the text among the names, or their count when it is none of them; nothing for another type of
/// value.
std::optional<std::size_t> readName(Reader &reader, Value &value, std::span<const std::string_view> names);
/// Reads an object of one member, whose reader is the one that stands with its name.
bool readCase(Reader &reader, Value &value, void *owner, std::span<const FieldEntry> cases);

template <class T>
bool readValue(Reader &reader, Value &value, T &out);

template <Listed T, std::size_t Index>
constexpr FieldEntry fieldEntry()
{
    constexpr auto &field = std::get<Index>(JsonFields<T>::list);
    using Member = std::remove_cvref_t<decltype(std::declval<T &>().*(field.member))>;
    constexpr bool isRequired = field.presence == JsonPresence::Required && !isOptional<Member>;
    return {std::remove_cvref_t<decltype(field)>::name,
            [](Reader &reader, Value &value, void *owner) {
                constexpr auto &listed = std::get<Index>(JsonFields<T>::list);
                if constexpr (!isRequired && !isOptional<Member>) {
                    if (isNull(value))
                        return true;
                }
                return readValue(reader, value, static_cast<T *>(owner)->*(listed.member));
            },
            isRequired};
}

template <Listed T, std::size_t... Index>
bool readListed(Reader &reader, Value &value, T &out, std::index_sequence<Index...>)
{
    static constexpr std::array<FieldEntry, sizeof...(Index)> fields{fieldEntry<T, Index>()...};
    static_assert(fields.size() <= 64, "the set of members seen is one word");
    return readObject(reader, value, &out, fields);
}

template <Enumerated T>
bool readEnum(Reader &reader, Value &value, T &out)
{
    static constexpr auto names = [] {
        std::array<std::string_view, JsonEnum<T>::list.size()> texts;
        std::ranges::transform(JsonEnum<T>::list, texts.begin(),
                               [](const auto &listed) { return listed.second; });
        return texts;
    }();
    const auto index = readName(reader, value, names);
    if (!index)
        return false;
    if (*index < names.size()) {
        out = JsonEnum<T>::list[*index].first;
        return true;
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
bool readVector(Reader &reader, Value &value, Vector &out)
{
    out.clear();
    return readArray(reader, value, &out, [](Reader &inner, Value &item, void *owner) {
        return readValue(inner, item, static_cast<Vector *>(owner)->emplace_back());
    });
}

template <class Map>
bool readKeyed(Reader &reader, Value &value, Map &out)
{
    out.clear();
    return readMap(reader, value, &out, [](Reader &inner, Value &item, std::string_view key, void *owner) {
        return readValue(inner, item, (*static_cast<Map *>(owner))[std::string(key)]);
    });
}

template <class Variant, std::size_t... Index>
bool readVariant(Reader &reader, Value &value, Variant &out, std::index_sequence<Index...>)
{
    static constexpr std::array<FieldEntry, sizeof...(Index)> cases{FieldEntry{
        JsonCases<Variant>::names[Index],
        [](Reader &inner, Value &item, void *owner) {
            return readValue(inner, item, static_cast<Variant *>(owner)->template emplace<Index>());
        },
        true}...};
    return readCase(reader, value, &out, cases);
}

template <class T>
bool readValue(Reader &reader, Value &value, T &out)
{
    if constexpr (isOptional<T>) {
        if (isNull(value)) {
            out.reset();
            return true;
        }
        return readValue(reader, value, out.emplace());
    } else if constexpr (std::is_same_v<T, std::string>) {
        return readText(reader, value, out);
    } else if constexpr (std::is_same_v<T, bool>) {
        return readBool(reader, value, out);
    } else if constexpr (std::is_same_v<T, std::int64_t>) {
        return readInteger(reader, value, out);
    } else if constexpr (std::is_same_v<T, double>) {
        return readNumber(reader, value, out);
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
        return readVector(reader, value, out);
    } else if constexpr (isMap<T>) {
        return readKeyed(reader, value, out);
    } else if constexpr (Cased<T>) {
        return readVariant(reader, value, out, std::make_index_sequence<std::variant_size_v<T>>());
    } else {
        static_assert(Listed<T>, "this type has no JSON form");
        return readListed(reader, value, out,
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

/// Reads a whole text with `readRoot`; an error when that fails, the JSON is broken or something follows it.
std::optional<JsonError> readDocument(std::string_view text, JsonReading reading, void *owner,
                                      bool (*readRoot)(Reader &, Value &, void *owner));

} // namespace orvane::json

namespace orvane {

template <class T>
Result<T, JsonError> decodeJson(std::string_view text, JsonReading reading)
{
    T out{};
    auto error =
        json::readDocument(text, reading, &out, [](json::Reader &reader_, json::Value &value, void *owner) {
            return json::readValue(reader_, value, *static_cast<T *>(owner));
        });
    if (error)
        return failure(std::move(*error));
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
