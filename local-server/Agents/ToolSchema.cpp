// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/ToolSchema.h"

#include <algorithm>

namespace orvane::server {

namespace {

void appendMember(std::string &list, std::string_view text)
{
    list += list.empty() ? "" : ",";
    list += text;
}

} // namespace

std::string plainSchema(std::string_view type, std::string_view format)
{
    std::string schema = R"("type":)" + encodeJson(std::string(type));
    if (!format.empty())
        schema += R"(,"format":)" + encodeJson(std::string(format));
    return schema;
}

std::string choiceSchema(std::span<const std::string_view> choices)
{
    std::string listed;
    for (const std::string_view choice : choices)
        appendMember(listed, encodeJson(std::string(choice)));
    return plainSchema("string") + R"(,"enum":[)" + listed + "]";
}

void ObjectSchema::add(std::string_view name, const std::string &body, bool isRequired)
{
    const std::string quoted = encodeJson(std::string(name));
    const auto note = std::ranges::find(m_notes, name, &MemberNote::member);
    std::string schema = quoted + ":{" + body;
    if (note != m_notes.end())
        schema += R"(,"description":)" + encodeJson(std::string(note->note));
    appendMember(m_members, schema + "}");
    if (isRequired)
        appendMember(m_required, quoted);
}

std::string ObjectSchema::body() const
{
    std::string schema = plainSchema("object") + R"(,"properties":{)" + m_members + "}";
    if (!m_required.empty())
        schema += R"(,"required":[)" + m_required + "]";
    return schema + R"(,"additionalProperties":false)";
}

} // namespace orvane::server
