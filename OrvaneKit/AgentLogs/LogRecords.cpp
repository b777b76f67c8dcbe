// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/LogRecords.h"

#include "AgentLogs/JsonBytes.h"
#include "Support/JsonImpl.h"

namespace orvane {

using namespace logrecords;

template <>
struct JsonAlias<Loose> {
    static constexpr auto member = &Loose::value;
};

#define ORVANE_LOG_FIELD(Type, Member) jsonField<#Member>(&Type::Member)

template <>
struct JsonFields<Record> {
    static constexpr auto list =
        JsonFieldList{ORVANE_LOG_FIELD(Record, type),         ORVANE_LOG_FIELD(Record, timestamp),
                      ORVANE_LOG_FIELD(Record, sessionId),    ORVANE_LOG_FIELD(Record, cwd),
                      ORVANE_LOG_FIELD(Record, gitBranch),    ORVANE_LOG_FIELD(Record, isSidechain),
                      ORVANE_LOG_FIELD(Record, isMeta),       ORVANE_LOG_FIELD(Record, isCompactSummary),
                      ORVANE_LOG_FIELD(Record, promptSource), ORVANE_LOG_FIELD(Record, customTitle),
                      ORVANE_LOG_FIELD(Record, aiTitle),      ORVANE_LOG_FIELD(Record, message),
                      ORVANE_LOG_FIELD(Record, attachment),   ORVANE_LOG_FIELD(Record, payload)};
};
template <>
struct JsonFields<Block> {
    static constexpr auto list = JsonFieldList{ORVANE_LOG_FIELD(Block, type), ORVANE_LOG_FIELD(Block, text),
                                               ORVANE_LOG_FIELD(Block, name)};
};
template <>
struct JsonFields<Message> {
    static constexpr auto list = JsonFieldList{ORVANE_LOG_FIELD(Message, content)};
};
template <>
struct JsonFields<Attachment> {
    static constexpr auto list =
        JsonFieldList{ORVANE_LOG_FIELD(Attachment, type), ORVANE_LOG_FIELD(Attachment, prompt),
                      ORVANE_LOG_FIELD(Attachment, commandMode)};
};
template <>
struct JsonFields<Payload> {
    static constexpr auto list = JsonFieldList{ORVANE_LOG_FIELD(Payload, id),
                                               ORVANE_LOG_FIELD(Payload, cwd),
                                               ORVANE_LOG_FIELD(Payload, parent_thread_id),
                                               ORVANE_LOG_FIELD(Payload, type),
                                               ORVANE_LOG_FIELD(Payload, role),
                                               ORVANE_LOG_FIELD(Payload, message),
                                               ORVANE_LOG_FIELD(Payload, git),
                                               ORVANE_LOG_FIELD(Payload, source),
                                               ORVANE_LOG_FIELD(Payload, name),
                                               jsonField<"namespace">(&Payload::namespace_),
                                               ORVANE_LOG_FIELD(Payload, input),
                                               ORVANE_LOG_FIELD(Payload, turn_id)};
};
template <>
struct JsonFields<Git> {
    static constexpr auto list = JsonFieldList{ORVANE_LOG_FIELD(Git, branch)};
};
template <>
struct JsonFields<Source> {
    static constexpr auto list = JsonFieldList{ORVANE_LOG_FIELD(Source, subagent)};
};
template <>
struct JsonFields<Subagent> {
    static constexpr auto list = JsonFieldList{ORVANE_LOG_FIELD(Subagent, thread_spawn)};
};
template <>
struct JsonFields<Spawn> {
    static constexpr auto list = JsonFieldList{ORVANE_LOG_FIELD(Spawn, parent_thread_id)};
};
template <>
struct JsonFields<CodexIndexRow> {
    static constexpr auto list =
        JsonFieldList{ORVANE_LOG_FIELD(CodexIndexRow, id), ORVANE_LOG_FIELD(CodexIndexRow, thread_name)};
};
template <>
struct JsonFields<CopilotContext> {
    static constexpr auto list =
        JsonFieldList{ORVANE_LOG_FIELD(CopilotContext, cwd), ORVANE_LOG_FIELD(CopilotContext, branch)};
};
template <>
struct JsonFields<CopilotData> {
    static constexpr auto list = JsonFieldList{ORVANE_LOG_FIELD(CopilotData, sessionId),
                                               ORVANE_LOG_FIELD(CopilotData, context),
                                               ORVANE_LOG_FIELD(CopilotData, content),
                                               ORVANE_LOG_FIELD(CopilotData, source),
                                               ORVANE_LOG_FIELD(CopilotData, isAutopilotContinuation),
                                               ORVANE_LOG_FIELD(CopilotData, toolName),
                                               ORVANE_LOG_FIELD(CopilotData, mcpServerName),
                                               jsonField<"cwd">(&CopilotData::directory),
                                               ORVANE_LOG_FIELD(CopilotData, branch)};
};
template <>
struct JsonFields<CopilotEvent> {
    static constexpr auto list =
        JsonFieldList{ORVANE_LOG_FIELD(CopilotEvent, type), ORVANE_LOG_FIELD(CopilotEvent, timestamp),
                      ORVANE_LOG_FIELD(CopilotEvent, agentId), ORVANE_LOG_FIELD(CopilotEvent, data)};
};

#undef ORVANE_LOG_FIELD

} // namespace orvane

ORVANE_JSON(orvane::logrecords::Record)
ORVANE_JSON(orvane::logrecords::Message)
ORVANE_JSON(orvane::logrecords::Attachment)
ORVANE_JSON(orvane::logrecords::Block)
ORVANE_JSON(std::vector<orvane::logrecords::Loose>)
ORVANE_JSON(orvane::logrecords::Payload)
ORVANE_JSON(orvane::logrecords::Git)
ORVANE_JSON(orvane::logrecords::Source)
ORVANE_JSON(orvane::logrecords::Subagent)
ORVANE_JSON(orvane::logrecords::Spawn)
ORVANE_JSON(orvane::logrecords::CodexIndexRow)
ORVANE_JSON(orvane::logrecords::CopilotContext)
ORVANE_JSON(orvane::logrecords::CopilotData)
ORVANE_JSON(orvane::logrecords::CopilotEvent)

namespace orvane::logrecords {

std::optional<std::string> Loose::text() const
{
    const std::string_view raw = value.text;
    if (raw.size() < 2 || raw.front() != '"' || raw.back() != '"')
        return {};
    return jsonbytes::unescaped(raw.substr(1, raw.size() - 2));
}

template <class T>
std::optional<T> read(std::string_view line)
{
    auto read = decodeJson<T>(line, {.strict = true});
    if (!read && (line.contains("\\ud") || line.contains("\\uD")))
        read = decodeJson<T>(jsonbytes::withWholeCharacters(line), {.strict = true});
    return read ? std::optional(std::move(*read)) : std::nullopt;
}

template <class T>
T inside(const Field &field)
{
    return field ? decodeJson<T>(field->value.text).value_or(T{}) : T{};
}

template std::optional<Record> read<Record>(std::string_view);
template std::optional<CodexIndexRow> read<CodexIndexRow>(std::string_view);
template std::optional<CopilotEvent> read<CopilotEvent>(std::string_view);
template Message inside<Message>(const Field &);
template Attachment inside<Attachment>(const Field &);
template Payload inside<Payload>(const Field &);
template Git inside<Git>(const Field &);
template Source inside<Source>(const Field &);
template Subagent inside<Subagent>(const Field &);
template Spawn inside<Spawn>(const Field &);
template CopilotContext inside<CopilotContext>(const Field &);
template CopilotData inside<CopilotData>(const Field &);

namespace {

void addBlock(Content &content, const Block &block)
{
    const std::string type = textOr(block.type);
    if (type == "tool_result") {
        content.hasToolResults = true;
    } else if (type == "tool_use" || type == "server_tool_use") {
        content.calls.push_back(textOr(block.name));
    } else if (type == "text") {
        const std::string text = textOr(block.text);
        if (!content.text.empty() && !text.empty())
            content.text += '\n';
        content.text += text;
    }
}

} // namespace

Content content(const Field &field)
{
    Content content;
    if (auto whole = text(field)) {
        content.text = std::move(*whole);
        return content;
    }
    const auto blocks = field ? decodeJson<std::vector<Loose>>(field->value.text) : std::vector<Loose>{};
    for (const Loose &block : blocks.value_or(std::vector<Loose>{}))
        addBlock(content, inside<Block>(block));
    return content;
}

} // namespace orvane::logrecords
