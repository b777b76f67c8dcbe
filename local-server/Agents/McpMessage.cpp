// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/McpMessage.h"

#include "Support/JsonImpl.h"

#include <algorithm>

namespace orvane::server {

/// Any message as it lies on the wire: which it is shows in the members that it has.
struct McpEnvelope {
    std::string jsonrpc;
    std::optional<RawJson> id;
    std::optional<std::string> method;
    std::optional<RawJson> params;
    std::optional<RawJson> result;
    std::optional<RawJson> error;
};

struct McpErrorBody {
    std::int64_t code = 0;
    std::string message;
};

struct McpReply {
    std::string jsonrpc = "2.0";
    RawJson id;
    std::optional<RawJson> result;
    std::optional<McpErrorBody> error;
};

} // namespace orvane::server

namespace orvane {

template <>
struct JsonFields<server::McpEnvelope> {
    static constexpr auto list = JsonFieldList{jsonField<"jsonrpc">(&server::McpEnvelope::jsonrpc),
                                               jsonField<"id">(&server::McpEnvelope::id),
                                               jsonField<"method">(&server::McpEnvelope::method),
                                               jsonField<"params">(&server::McpEnvelope::params),
                                               jsonField<"result">(&server::McpEnvelope::result),
                                               jsonField<"error">(&server::McpEnvelope::error)};
};

template <>
struct JsonFields<server::McpErrorBody> {
    static constexpr auto list = JsonFieldList{jsonField<"code">(&server::McpErrorBody::code),
                                               jsonField<"message">(&server::McpErrorBody::message)};
};

template <>
struct JsonFields<server::McpReply> {
    static constexpr auto list = JsonFieldList{
        jsonField<"jsonrpc">(&server::McpReply::jsonrpc), jsonField<"id">(&server::McpReply::id),
        jsonField<"result">(&server::McpReply::result), jsonField<"error">(&server::McpReply::error)};
};

} // namespace orvane

namespace orvane::server {

namespace {

bool isId(const RawJson &id)
{
    const char first = id.text.front();
    return first == '"' || ((first == '-' || (first >= '0' && first <= '9')) &&
                            decodeJson<std::int64_t>(id.text).has_value());
}

McpMessage faulty(std::string message, RawJson id = {})
{
    return McpFault{std::move(id), {McpCode::invalidRequest, std::move(message)}};
}

McpMessage messageFrom(const std::string &text)
{
    auto envelope = decodeJson<McpEnvelope>(text);
    if (!envelope)
        return faulty("This is no JSON-RPC message: " + envelope.error().path + " " +
                      envelope.error().message + ".");
    auto &[version, id, method, params, result, error] = *envelope;
    if (id && !isId(*id))
        return faulty("A message's id is a text or a whole number.");
    RawJson known = id.value_or(RawJson{});
    if (version != "2.0")
        return faulty("The messages here are those of JSON-RPC 2.0.", std::move(known));
    if (!method)
        return result || error ? McpMessage(McpNotice{}) : faulty("There is no method.", std::move(known));
    if (!id)
        return McpNotice{};
    if (params && !params->text.starts_with('{'))
        return McpFault{std::move(known), {McpCode::invalidParams, "The params are an object."}};
    return McpRequest{std::move(known), std::move(*method), std::move(params)};
}

} // namespace

Result<McpPost, McpError> readMcpPost(std::string_view body)
{
    const auto whole = decodeJson<RawJson>(body, {.strict = true});
    if (!whole)
        return failure(McpError{McpCode::parseError, "The request's body is not JSON."});
    const bool isBatch = whole->text.starts_with('[');
    if (!isBatch)
        return McpPost{{messageFrom(whole->text)}, false};
    const auto items = decodeJson<std::vector<RawJson>>(whole->text);
    if (!items || items->empty() || items->size() > mostMcpMessages)
        return failure(McpError{McpCode::invalidRequest,
                                "A batch has from 1 to " + std::to_string(mostMcpMessages) + " messages."});
    McpPost post{{}, true};
    for (const RawJson &item : *items)
        post.messages.push_back(messageFrom(item.text));
    return post;
}

std::string mcpAnswer(const RawJson &id, std::string result)
{
    McpReply reply;
    reply.id = id;
    reply.result = RawJson{std::move(result)};
    return encodeJson(reply);
}

std::string mcpAnswer(const RawJson &id, const McpError &error)
{
    McpReply reply;
    reply.id = id;
    reply.error = McpErrorBody{static_cast<std::int64_t>(error.code), error.message};
    return encodeJson(reply);
}

} // namespace orvane::server
