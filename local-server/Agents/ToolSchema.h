// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/UserZone.h"
#include "Support/JsonImpl.h"

#include <array>
#include <chrono>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// JSON schemas of value types, out of the same lists of fields that read and write them: what an agent is
/// told cannot differ from what is understood. Included by the sources that make tools, as JsonImpl.h is.
namespace orvane::server {

/// What a member of that name is, for the agent's model, wherever in a tool's arguments it stands.
struct MemberNote {
    std::string_view member;
    std::string_view note;
};
using MemberNotes = std::span<const MemberNote>;

template <class T>
std::string schemaBody(MemberNotes notes);

/// The inside of a plain value's schema.
std::string plainSchema(std::string_view type, std::string_view format = {});
/// The inside of a text's schema that is one of a few.
std::string choiceSchema(std::span<const std::string_view> choices);

/// Puts an object's schema together, member by member.
class ObjectSchema {
public:
    explicit ObjectSchema(MemberNotes notes) : m_notes(notes) {}

    void add(std::string_view name, const std::string &body, bool isRequired);
    std::string body() const;

private:
    MemberNotes m_notes;
    std::string m_members;
    std::string m_required;
};

template <class T>
    requires json::Listed<T>
std::string objectSchema(MemberNotes notes)
{
    ObjectSchema schema(notes);
    const auto add = [&]<JsonName Name, class Member>(const JsonField<Name, T, Member> &field) {
        schema.add(Name.view(), schemaBody<Member>(notes),
                   !json::isOptional<Member> && field.presence == JsonPresence::required);
    };
    json::withFields(JsonFields<T>::list, [&](const auto &...field) { (add(field), ...); });
    return schema.body();
}

template <class T>
std::string enumSchema()
{
    std::array<std::string_view, JsonEnum<T>::list.size()> choices;
    std::ranges::transform(JsonEnum<T>::list, choices.begin(), [](const auto &item) { return item.second; });
    return choiceSchema(choices);
}

template <class T>
std::string schemaBody(MemberNotes notes)
{
    if constexpr (json::isOptional<T>)
        return schemaBody<typename T::value_type>(notes);
    else if constexpr (json::isVector<T>)
        return plainSchema("array") + ",\"items\":{" + schemaBody<typename T::value_type>(notes) + "}";
    else if constexpr (json::Enumerated<T>)
        return enumSchema<T>();
    else if constexpr (std::is_same_v<T, std::string>)
        return plainSchema("string");
    else if constexpr (std::is_same_v<T, bool>)
        return plainSchema("boolean");
    else if constexpr (std::is_same_v<T, std::int64_t>)
        return plainSchema("integer");
    else if constexpr (std::is_same_v<T, Instant> || std::is_same_v<T, ZonedTime>)
        return plainSchema("string", "date-time");
    else if constexpr (std::is_same_v<T, std::chrono::year_month_day>)
        return plainSchema("string", "date");
    else
        return objectSchema<T>(notes);
}

} // namespace orvane::server
