// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The messages of MCP: JSON-RPC 2.0, read from what an agent posts and written back. Pure; any thread.
namespace orvane::server {

/// Why a message was not done, in the protocol's numbers.
enum class McpCode : std::int64_t {
    parseError = -32700,
    invalidRequest = -32600,
    methodNotFound = -32601,
    invalidParams = -32602
};

struct McpError {
    McpCode code = McpCode::invalidRequest;
    /// A sentence for who reads the agent's log.
    std::string message;

    bool operator==(const McpError &) const = default;
};

/// A message that wants an answer.
struct McpRequest {
    /// A text or a whole number, as it was sent; the answer carries it back.
    RawJson id;
    std::string method;
    /// An object, when there are any.
    std::optional<RawJson> params;

    bool operator==(const McpRequest &) const = default;
};

/// A message that wants none: a notification, or the answer to what this server never asked.
struct McpNotice {
    bool operator==(const McpNotice &) const = default;
};

/// One that is none of these; `id` is "null" where it has none that can be told.
struct McpFault {
    RawJson id;
    McpError error;

    bool operator==(const McpFault &) const = default;
};

using McpMessage = std::variant<McpRequest, McpNotice, McpFault>;

/// What one post brings.
struct McpPost {
    /// Never empty.
    std::vector<McpMessage> messages;
    bool isBatch = false;
};

inline constexpr std::size_t mostMcpMessages = 50;

/// The error is that of a text that is no JSON, and of a batch without messages or with too many.
Result<McpPost, McpError> readMcpPost(std::string_view body);

/// `result` is JSON.
std::string mcpAnswer(const RawJson &id, std::string result);
std::string mcpAnswer(const RawJson &id, const McpError &error);

} // namespace orvane::server
