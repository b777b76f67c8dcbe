// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/AgentTool.h"
#include "Agents/ToolSchema.h"
#include "Workspaces/WorkspaceAccess.h"

#include <map>
#include <optional>
#include <utility>

/// What a tool is made of: a function from its arguments to its answer, both value types. Included by the
/// sources that make tools.
namespace orvane::server {

/// The workspace that an agent names, or the user's own default when it names none. One that the user did not
/// let it into is not there.
Result<WorkspaceAccess, std::string> enterWorkspace(AgentCall &agent,
                                                    const std::optional<std::string> &workspaceId);
bool mayEnter(const AgentAccess &access, const std::string &workspaceId);

/// An operation's refusal as a sentence for an agent.
std::string refusalSentence(const HttpResponse &refusal);
/// Arguments that could not be read.
std::string unreadable(const JsonError &error);
std::string unknownArgument(const std::string &path);

/// The path of a member that T does not have; nothing when all are known. A misspelt one would be passed over
/// otherwise, and an entry without its project proposed.
template <class T>
std::optional<std::string> unknownMember(const std::string &text, const std::string &path);

template <class Member>
std::optional<std::string> unknownWithin(const RawJson &value, const std::string &path)
{
    if constexpr (json::isOptional<Member>) {
        return unknownWithin<typename Member::value_type>(value, path);
    } else if constexpr (json::isVector<Member>) {
        const auto items = decodeJson<std::vector<RawJson>>(value.text);
        for (std::size_t i = 0; items && i < items->size(); ++i) {
            if (auto unknown = unknownWithin<typename Member::value_type>(
                    (*items)[i], path + "[" + std::to_string(i) + "]"))
                return unknown;
        }
        return std::nullopt;
    } else if constexpr (json::Listed<Member>) {
        return unknownMember<Member>(value.text, path + ".");
    } else {
        return std::nullopt;
    }
}

template <class T>
std::optional<std::string> unknownMember(const std::string &text, const std::string &path)
{
    const auto members = decodeJson<std::map<std::string, RawJson>>(text);
    if (!members)
        return std::nullopt;
    std::optional<std::string> unknown;
    for (const auto &[name, value] : *members) {
        bool isKnown = false;
        const auto look = [&]<JsonName Name, class Member>(const JsonField<Name, T, Member> &) {
            if (name != Name.view())
                return;
            isKnown = true;
            if (!unknown)
                unknown = unknownWithin<Member>(value, path + name);
        };
        json::withFields(JsonFields<T>::list, [&](const auto &...field) { (look(field), ...); });
        if (!isKnown)
            return path + name;
    }
    return unknown;
}

/// What tells one tool from another beside what it does.
struct ToolTraits {
    std::string_view name;
    std::string_view title;
    std::string_view description;
    Lane lane = Lane::reading;
    bool isIdempotent = true;
    MemberNotes notes = {};
};

template <class Arguments, class Answer>
AgentTool agentTool(const ToolTraits &traits,
                    Result<Answer, std::string> (*run)(AgentCall &, const Arguments &))
{
    AgentTool tool{.name = traits.name,
                   .title = traits.title,
                   .description = traits.description,
                   .lane = traits.lane,
                   .isIdempotent = traits.isIdempotent,
                   .inputSchema = "{" + schemaBody<Arguments>(traits.notes) + "}",
                   .outputSchema = "{" + schemaBody<Answer>({}) + "}",
                   .run = {}};
    tool.run = [run](AgentCall &agent, const RawJson &given) -> ToolAnswer {
        if (const auto unknown = unknownMember<Arguments>(given.text, {}))
            return failure(unknownArgument(*unknown));
        const auto arguments = decodeJson<Arguments>(given.text, {.strict = true});
        if (!arguments)
            return failure(unreadable(arguments.error()));
        const auto answer = run(agent, *arguments);
        if (!answer)
            return failure(answer.error());
        return encodeJson(*answer);
    };
    return tool;
}

} // namespace orvane::server
