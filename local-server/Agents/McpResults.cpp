// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/McpResults.h"

#include "Support/JsonImpl.h"

namespace orvane::server {

struct AskedVersion {
    std::string protocolVersion;
};

struct ServerIdentity {
    std::string name = "orvane";
    std::string title = "Orvane";
    std::string version = ORVANE_VERSION;
};

struct Welcome {
    std::string protocolVersion;
    RawJson capabilities{R"({"tools":{}})"};
    ServerIdentity serverInfo;
    std::string instructions;
};

struct ToolHints {
    bool readOnlyHint = false;
    bool destructiveHint = false;
    bool idempotentHint = false;
    bool openWorldHint = false;
};

struct ListedTool {
    std::string name;
    std::string title;
    std::string description;
    RawJson inputSchema;
    RawJson outputSchema;
    ToolHints annotations;
};

struct ToolListing {
    std::vector<ListedTool> tools;
};

struct TextContent {
    std::string type = "text";
    std::string text;
};

struct ToolResult {
    std::vector<TextContent> content;
    std::optional<RawJson> structuredContent;
    bool isError = false;
};

} // namespace orvane::server

namespace orvane {

template <>
struct JsonFields<server::AskedVersion> {
    static constexpr auto list =
        JsonFieldList{jsonField<"protocolVersion">(&server::AskedVersion::protocolVersion)};
};

template <>
struct JsonFields<server::ToolCall> {
    static constexpr auto list = JsonFieldList{jsonField<"name">(&server::ToolCall::name),
                                               jsonField<"arguments">(&server::ToolCall::arguments)};
};

template <>
struct JsonFields<server::ServerIdentity> {
    static constexpr auto list = JsonFieldList{jsonField<"name">(&server::ServerIdentity::name),
                                               jsonField<"title">(&server::ServerIdentity::title),
                                               jsonField<"version">(&server::ServerIdentity::version)};
};

template <>
struct JsonFields<server::Welcome> {
    static constexpr auto list =
        JsonFieldList{jsonField<"protocolVersion">(&server::Welcome::protocolVersion),
                      jsonField<"capabilities">(&server::Welcome::capabilities),
                      jsonField<"serverInfo">(&server::Welcome::serverInfo),
                      jsonField<"instructions">(&server::Welcome::instructions)};
};

template <>
struct JsonFields<server::ToolHints> {
    static constexpr auto list =
        JsonFieldList{jsonField<"readOnlyHint">(&server::ToolHints::readOnlyHint),
                      jsonField<"destructiveHint">(&server::ToolHints::destructiveHint),
                      jsonField<"idempotentHint">(&server::ToolHints::idempotentHint),
                      jsonField<"openWorldHint">(&server::ToolHints::openWorldHint)};
};

template <>
struct JsonFields<server::ListedTool> {
    static constexpr auto list = JsonFieldList{jsonField<"name">(&server::ListedTool::name),
                                               jsonField<"title">(&server::ListedTool::title),
                                               jsonField<"description">(&server::ListedTool::description),
                                               jsonField<"inputSchema">(&server::ListedTool::inputSchema),
                                               jsonField<"outputSchema">(&server::ListedTool::outputSchema),
                                               jsonField<"annotations">(&server::ListedTool::annotations)};
};

template <>
struct JsonFields<server::ToolListing> {
    static constexpr auto list = JsonFieldList{jsonField<"tools">(&server::ToolListing::tools)};
};

template <>
struct JsonFields<server::TextContent> {
    static constexpr auto list = JsonFieldList{jsonField<"type">(&server::TextContent::type),
                                               jsonField<"text">(&server::TextContent::text)};
};

template <>
struct JsonFields<server::ToolResult> {
    static constexpr auto list =
        JsonFieldList{jsonField<"content">(&server::ToolResult::content),
                      jsonField<"structuredContent">(&server::ToolResult::structuredContent),
                      jsonField<"isError">(&server::ToolResult::isError)};
};

} // namespace orvane

namespace orvane::server {

namespace {

template <class T>
std::optional<T> readParams(const std::optional<RawJson> &params)
{
    auto read = params ? decodeJson<T>(params->text) : failure(JsonError{});
    return read ? std::optional(std::move(*read)) : std::nullopt;
}

ListedTool listed(const AgentTool &tool)
{
    ListedTool out;
    out.name = tool.name;
    out.title = tool.title;
    out.description = tool.description;
    out.inputSchema.text = tool.inputSchema;
    out.outputSchema.text = tool.outputSchema;
    out.annotations.readOnlyHint = tool.lane == Lane::reading;
    out.annotations.idempotentHint = tool.isIdempotent;
    return out;
}

} // namespace

std::optional<std::string> readAskedVersion(const std::optional<RawJson> &params)
{
    auto asked = readParams<AskedVersion>(params);
    return asked ? std::optional(std::move(asked->protocolVersion)) : std::nullopt;
}

std::optional<ToolCall> readToolCall(const std::optional<RawJson> &params)
{
    auto call = readParams<ToolCall>(params);
    const bool isCall = call && (!call->arguments || call->arguments->text.starts_with('{'));
    return isCall ? std::move(call) : std::nullopt;
}

std::string welcome(std::string version, std::string instructions)
{
    Welcome said;
    said.protocolVersion = std::move(version);
    said.instructions = std::move(instructions);
    return encodeJson(said);
}

std::string toolList(bool mayPropose)
{
    ToolListing listing;
    for (const AgentTool &tool : agentTools()) {
        if (mayPropose || tool.lane == Lane::reading)
            listing.tools.push_back(listed(tool));
    }
    return encodeJson(listing);
}

std::string toolResult(const ToolAnswer &answer)
{
    ToolResult result;
    result.isError = !answer;
    // Who does not read structured content gets the same as text.
    result.content.push_back({.text = answer ? *answer : answer.error()});
    if (answer)
        result.structuredContent = RawJson{*answer};
    return encodeJson(result);
}

} // namespace orvane::server
