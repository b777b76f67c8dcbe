// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The reading and writing behind Json.h. Only source files that instantiate a type include this header. What
// does not depend on the type, the parser above all, is in Json.cpp behind plain functions: templates over
// the parser took minutes to compile.

#include "Support/Json.h"
#include "Support/JsonOutput.h"

#include <array>
#include <map>
#include <optional>
#include <span>
#include <type_traits>
#include <variant>
#include <vector>

#define ORVANE_JSON(Type)                                                                                    \
    template ::orvane::Result<Type, ::orvane::JsonError> orvane::decodeJson<Type>(std::string_view,          \
                                                                                  ::orvane::JsonReading);    \
    template std::optional<::orvane::JsonError> orvane::decodeJsonInto<Type>(std::string_view, void *);      \
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

/// A value that is being read. What it is made of is the parser's, and known to Json.cpp alone.
struct Node;

/// One reading: how to read, and the first thing that went wrong. The path is put together on the way out.
struct Reader {
    JsonReading reading;
    JsonError error;
    /// The text is not JSON, so no place of it is at fault.
    bool isBroken = false;

    bool fail(const char *message)
    {
        error.message = message;
        return false;
    }
    bool failBroken()
    {
        isBroken = true;
        return false;
    }
    void inside(std::string_view name);
    void inside(std::size_t index);
};

/// Reads a value into what `out` points at. Each of these functions knows the type behind the pointer.
using ReadInto = bool (*)(Reader &reader, Node &node, void *out);
using ReadEntry = bool (*)(Reader &reader, Node &node, std::string name, void *map);

enum class Absence { refused, accepted, acceptedLikeNull };

struct MemberReader {
    std::string_view name;
    Absence absence;
    ReadInto read;
};

bool readDocument(Reader &reader, std::string_view text, ReadInto read, void *out);
bool isNull(Node &node);
bool readText(Reader &reader, Node &node, std::string_view &out);
bool readPlain(Reader &reader, Node &node, std::string &out);
bool readPlain(Reader &reader, Node &node, bool &out);
bool readPlain(Reader &reader, Node &node, std::int64_t &out);
bool readPlain(Reader &reader, Node &node, double &out);
bool readPlain(Reader &reader, Node &node, Instant &out);
bool readPlain(Reader &reader, Node &node, std::chrono::year_month_day &out);
bool readPlain(Reader &reader, Node &node, RawJson &out);
bool readMembers(Reader &reader, Node &node, std::span<const MemberReader> members, void *out);
using Reserve = void (*)(void *list, std::size_t count);
/// Calls `readNext` for each item of a list, to append it; before that `reserve`, where there is one.
bool readItems(Reader &reader, Node &node, ReadInto readNext, Reserve reserve, void *list);
bool readEntries(Reader &reader, Node &node, ReadEntry readEntry, void *map);
/// Reads an object of exactly one member, which is one of `cases`.
bool readCase(Reader &reader, Node &node, std::span<const MemberReader> cases, void *out);

template <class T>
bool readValue(Reader &reader, Node &node, T &out);

template <class T>
bool readErased(Reader &reader, Node &node, void *out)
{
    return readValue(reader, node, *static_cast<T *>(out));
}

/// Calls `function` with each field of a type's list.
template <class Function, class... Fields>
constexpr auto withFields(const JsonFieldList<Fields...> &list, const Function &function)
{
    return function(static_cast<const Fields &>(list)...);
}
template <class Function, class... Fields>
constexpr auto withFields(const std::tuple<Fields...> &list, const Function &function)
{
    return function(std::get<Fields>(list)...);
}
template <class Field, class... Fields>
constexpr const Field &fieldOf(const JsonFieldList<Fields...> &list)
{
    return list;
}
template <class Field, class... Fields>
constexpr const Field &fieldOf(const std::tuple<Fields...> &list)
{
    return std::get<Field>(list);
}

template <class Owner, class Field>
bool readMember(Reader &reader, Node &node, void *owner)
{
    constexpr auto member = fieldOf<Field>(JsonFields<Owner>::list).member;
    return readValue(reader, node, static_cast<Owner *>(owner)->*member);
}

template <class Owner, JsonName Name, class Member>
constexpr MemberReader memberReader(const JsonField<Name, Owner, Member> &field)
{
    const Absence absence = isOptional<Member>                          ? Absence::accepted
                            : field.presence == JsonPresence::defaulted ? Absence::acceptedLikeNull
                                                                        : Absence::refused;
    return {Name.view(), absence, &readMember<Owner, JsonField<Name, Owner, Member>>};
}

template <Listed T>
inline constexpr auto memberReaders = withFields(JsonFields<T>::list, [](const auto &...field) {
    return std::array<MemberReader, sizeof...(field)>{memberReader<T>(field)...};
});

template <Enumerated T>
bool readEnum(Reader &reader, Node &node, T &out)
{
    std::string_view text;
    if (!readText(reader, node, text))
        return false;
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
bool readNext(Reader &reader, Node &node, void *list)
{
    auto &vector = *static_cast<Vector *>(list);
    if constexpr (std::is_same_v<typename Vector::value_type, bool>) {
        bool item = false;
        const bool ok = readValue(reader, node, item);
        vector.push_back(item);
        return ok;
    } else {
        return readValue(reader, node, vector.emplace_back());
    }
}

/// Counting the items first is worth it where moving them is dear.
template <class Vector>
constexpr Reserve reserveFor()
{
    if constexpr (sizeof(typename Vector::value_type) < 128)
        return nullptr;
    else
        return [](void *list, std::size_t count) { static_cast<Vector *>(list)->reserve(count); };
}

template <class Map>
bool readEntry(Reader &reader, Node &node, std::string name, void *map)
{
    const auto [entry, isNew] = static_cast<Map *>(map)->try_emplace(std::move(name));
    return isNew ? readValue(reader, node, entry->second) : reader.fail("is given twice");
}

template <class Variant, std::size_t Index>
bool readAlternative(Reader &reader, Node &node, void *variant)
{
    return readValue(reader, node, static_cast<Variant *>(variant)->template emplace<Index>());
}

template <Cased Variant, std::size_t... Index>
constexpr auto caseReaders(std::index_sequence<Index...>)
{
    return std::array<MemberReader, sizeof...(Index)>{MemberReader{
        JsonCases<Variant>::names[Index], Absence::accepted, &readAlternative<Variant, Index>}...};
}

template <class T>
bool readValue(Reader &reader, Node &node, T &out)
{
    if constexpr (isOptional<T>) {
        if (isNull(node)) {
            out.reset();
            return true;
        }
        return readValue(reader, node, out.emplace());
    } else if constexpr (Aliased<T>) {
        return readValue(reader, node, out.*JsonAlias<T>::member);
    } else if constexpr (Enumerated<T>) {
        return readEnum(reader, node, out);
    } else if constexpr (isVector<T>) {
        out.clear();
        return readItems(reader, node, &readNext<T>, reserveFor<T>(), &out);
    } else if constexpr (isMap<T>) {
        out.clear();
        return readEntries(reader, node, &readEntry<T>, &out);
    } else if constexpr (Cased<T>) {
        static constexpr auto cases = caseReaders<T>(std::make_index_sequence<std::variant_size_v<T>>());
        return readCase(reader, node, cases, &out);
    } else if constexpr (Listed<T>) {
        static_assert(memberReaders<T>.size() <= 64, "the set of members seen is one word");
        return readMembers(reader, node, memberReaders<T>, &out);
    } else {
        return readPlain(reader, node, out);
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
        withFields(JsonFields<T>::list,
                   [&](const auto &...field) { (writeField(output, value, field, first), ...); });
        output.raw("}");
    } else {
        output.value(value);
    }
}

} // namespace orvane::json

namespace orvane {

template <class T>
Result<T, JsonError> decodeJson(std::string_view text, JsonReading reading)
{
    json::Reader reader{reading, {}};
    T out{};
    if (!json::readDocument(reader, text, &json::readErased<T>, &out))
        return failure(std::move(reader.error));
    return out;
}

template <class T>
std::optional<JsonError> decodeJsonInto(std::string_view text, void *value)
{
    json::Reader reader;
    if (!json::readDocument(reader, text, &json::readErased<T>, value))
        return std::move(reader.error);
    return {};
}

template <class T>
std::string encodeJson(const T &value, JsonStyle style)
{
    JsonOutput output(style);
    json::writeValue(output, value);
    return output.take();
}

} // namespace orvane
