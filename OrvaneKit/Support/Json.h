// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Result.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

/// JSON for value types. A type lists its fields once and the same list reads and writes it:
///
///     template <> struct JsonFields<TagResponse> {
///         static constexpr auto list = JsonFieldList{jsonField<"id">(&TagResponse::id),
///                                                    jsonField<"name">(&TagResponse::name)};
///     };
///
/// `decodeJson` and `encodeJson` are only declared here. The source file that owns a type includes
/// "Support/JsonImpl.h" and instantiates both with `ORVANE_JSON(Type)`.
///
/// Members may be: bool, std::int64_t, double, std::string (UTF-8), Instant, std::chrono::year_month_day,
/// enumerations with a JsonEnum, std::optional, std::vector and std::map<std::string, ...> of these, other
/// listed types, variants with JsonCases, and RawJson. Everything here may be called from any thread.
namespace orvane {

/// How instants are written: ISO 8601 text (the server, people's programs) or seconds since 2001 (the local
/// store).
enum class DateCoding { iso8601, secondsSince2001 };

struct JsonReading {
    DateCoding dates = DateCoding::iso8601;
    /// Refuses texts that an enumeration does not list, which are otherwise read as its `unrecognized`.
    bool strict = false;
};

struct JsonStyle {
    DateCoding dates = DateCoding::iso8601;
    /// Writes `null` for a member without a value; otherwise it is left out.
    bool writeNulls = false;
};

/// Why a text could not be read. `path` names the place ("entries[3].start"); it is empty when the text as a
/// whole is not JSON. `message` says what is wrong there; that of a date that could not be read quotes its
/// first 40 bytes.
struct JsonError {
    std::string path;
    std::string message;

    bool operator==(const JsonError &) const = default;
};

/// Any JSON value, kept as its text.
struct RawJson {
    std::string text = "null";

    bool operator==(const RawJson &) const = default;
};

/// Whether a member must be there when reading. A Defaulted one keeps its default when absent or null.
enum class JsonPresence { required, defaulted };

/// A text that can be a template argument.
template <std::size_t N>
struct JsonName {
    char text[N]{};
    consteval JsonName(const char (&source)[N]) { std::copy_n(source, N, text); }
    constexpr std::string_view view() const { return {text, N - 1}; }
};

template <JsonName Name, class Owner, class Member>
struct JsonField {
    static constexpr std::string_view name = Name.view();
    Member Owner::*member;
    JsonPresence presence;
};

template <JsonName Name, class Owner, class Member>
constexpr auto jsonField(Member Owner::*member, JsonPresence presence = JsonPresence::required)
{
    return JsonField<Name, Owner, Member>{member, presence};
}

/// The fields of a type; each has a name of its own. (A std::tuple may stand in its place, but a long one
/// takes the compiler a hundred times as long.)
template <class... Fields>
struct JsonFieldList : Fields... {
    static constexpr std::size_t size = sizeof...(Fields);

    constexpr explicit JsonFieldList(Fields... fields) : Fields(fields)... {}
};

/// Specialised for each struct that is an object: `static constexpr auto list`, a JsonFieldList of jsonField.
/// A name that is given twice in a text is refused, one that is not listed is passed over.
template <class T>
struct JsonFields;

/// Specialised for each enumeration: `list`, an array of (value, text) pairs, and optionally `unrecognized`.
template <class T>
struct JsonEnum;

/// Specialised for a std::variant written as an object of one member named after the case: `names`, in order.
template <class T>
struct JsonCases;

/// Specialised for a struct that is written as one of its members alone: `static constexpr auto member`.
template <class T>
struct JsonAlias;

template <class T>
Result<T, JsonError> decodeJson(std::string_view text, JsonReading reading = {});

/// The same into what `value` points at, a T, for who holds it without knowing its type. After an error it is
/// a T that holds anything.
template <class T>
std::optional<JsonError> decodeJsonInto(std::string_view text, void *value);

template <class T>
std::string encodeJson(const T &value, JsonStyle style = {});

/// The text that stands for an enumeration's value; empty for `unrecognized`.
template <class T>
constexpr std::string_view jsonText(T value)
{
    for (const auto &[listed, text] : JsonEnum<T>::list) {
        if (listed == value)
            return text;
    }
    return {};
}

} // namespace orvane
