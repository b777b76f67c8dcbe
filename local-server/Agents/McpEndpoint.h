// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/AgentTool.h"
#include "Agents/McpMessage.h"
#include "OrvaneAPI/HttpMessage.h"
#include "OrvaneAPI/RequestReader.h"

/// Where agents reach the server: MCP over streamable HTTP, each message answered by the request that brought
/// it. Nothing is kept between two requests, and nothing is ever sent unasked, so there are no sessions and
/// no streams.
namespace orvane::server {

class PathRoutes;
void addAgentToolPaths(PathRoutes &paths);

/// What a request to the endpoint comes to, however it is answered; pure. The refusal is for what no message
/// can mend, such as a version of the protocol that is not spoken here; the error for a body that is none.
struct McpVisit {
    Result<McpPost, McpError> post;

    /// Whether any of its messages calls a tool that writes.
    bool mayWrite() const;
};
Result<McpVisit, HttpResponse> readMcpVisit(const RequestParts &parts);

/// Inside a transaction, which may write when the visit may.
HttpResponse answerMcp(AgentCall &agent, const McpVisit &visit);

} // namespace orvane::server
