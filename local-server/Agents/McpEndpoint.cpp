// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/McpEndpoint.h"

#include "Agents/AgentPace.h"
#include "Agents/AgentSignIn.h"
#include "Agents/McpResults.h"
#include "Http/Problems.h"
#include "Requests/PathRoutes.h"

#include <algorithm>
#include <array>

namespace orvane::server {

namespace {

/// The newest first.
constexpr std::array<std::string_view, 2> mcpVersions{"2025-06-18", "2025-03-26"};
/// What an agent speaks that does not say: the version header came with the one after it.
constexpr std::string_view unsaidVersion = "2025-03-26";
/// The last one with batches.
constexpr std::string_view batchVersion = "2025-03-26";

constexpr std::string_view instructions =
    "Orvane is the user's time tracker. Read projects, tags and entries, and propose new entries or changes. "
    "Nothing you do here changes an entry: each proposal waits until the user applies or dismisses it, so "
    "say "
    "that you proposed something, never that it is done. Begin with list_workspaces for today's date and the "
    "user's time zone. Before proposing entries, look with list_entries at what is tracked already and with "
    "list_projects at what there is to book on.";

bool isSpoken(std::string_view version)
{
    return std::ranges::find(mcpVersions, version) != mcpVersions.end();
}

bool takesJson(const std::string &accept)
{
    return accept.empty() || accept.contains("application/json") || accept.contains("application/*") ||
           accept.contains("*/*");
}

const McpRequest *requestIn(const McpMessage &message)
{
    return std::get_if<McpRequest>(&message);
}

/// Null when the request calls no tool that there is.
const AgentTool *calledTool(const McpRequest &request)
{
    if (request.method != "tools/call")
        return nullptr;
    const auto called = readToolCall(request.params);
    return called ? findAgentTool(called->name) : nullptr;
}

Result<std::string, McpError> invalidParams(std::string message)
{
    return failure(McpError{McpCode::invalidParams, std::move(message)});
}

Result<std::string, McpError> initialize(const McpRequest &request)
{
    const auto asked = readAskedVersion(request.params);
    if (!asked)
        return invalidParams("initialize needs a protocolVersion, such as " + std::string(mcpVersions[0]) +
                             ".");
    return welcome(isSpoken(*asked) ? std::string(*asked) : std::string(mcpVersions[0]),
                   std::string(instructions));
}

Result<std::string, McpError> callTool(AgentCall &agent, const McpRequest &request)
{
    const auto called = readToolCall(request.params);
    if (!called)
        return invalidParams("tools/call needs the name of a tool, and arguments that are an object.");
    const AgentTool *tool = findAgentTool(called->name);
    if (!tool)
        return invalidParams("There is no such tool. See tools/list.");
    if (tool->lane == Lane::writing && !agent.access.mayPropose)
        return toolResult(
            failure(std::string("The user lets you read, and not propose. Ask them to sign you in "
                                "again and to allow it.")));
    return toolResult(tool->run(agent, called->arguments.value_or(RawJson{"{}"})));
}

Result<std::string, McpError> resultOf(AgentCall &agent, const McpRequest &request, bool isInBatch)
{
    if (request.method == "initialize") {
        if (isInBatch)
            return failure(McpError{McpCode::invalidRequest, "initialize stands alone."});
        return initialize(request);
    }
    if (request.method == "ping")
        return std::string("{}");
    if (request.method == "tools/list")
        return toolList(agent.access.mayPropose);
    if (request.method == "tools/call")
        return callTool(agent, request);
    return failure(McpError{McpCode::methodNotFound, "This server has tools alone."});
}

/// Nothing for a message that wants no answer.
std::optional<std::string> answerTo(AgentCall &agent, const McpMessage &message, bool isInBatch)
{
    if (const auto *fault = std::get_if<McpFault>(&message))
        return mcpAnswer(fault->id, fault->error);
    const McpRequest *request = requestIn(message);
    if (!request)
        return std::nullopt;
    auto result = resultOf(agent, *request, isInBatch);
    return result ? mcpAnswer(request->id, std::move(*result)) : mcpAnswer(request->id, result.error());
}

HttpResponse answersTo(AgentCall &agent, const McpPost &post)
{
    const auto &[messages, isBatch] = post;
    if (!isBatch && std::holds_alternative<McpFault>(messages.front()))
        return jsonBody(400, *answerTo(agent, messages.front(), false));
    std::string answers;
    for (const McpMessage &message : messages) {
        if (const auto answer = answerTo(agent, message, isBatch))
            answers += (answers.empty() ? "" : ",") + *answer;
    }
    if (answers.empty())
        return noBody(202);
    return jsonBody(200, isBatch ? "[" + answers + "]" : std::move(answers));
}

Step takeMcp(Call &call, const RequestParts &parts)
{
    const auto visit = readMcpVisit(parts);
    const int weight = visit && visit->post ? static_cast<int>(visit->post->messages.size()) : 1;
    if (const auto wait = call.services.agentPace.take(call.agent->grantId, weight, call.now))
        return tooMany(*wait);
    if (!visit)
        return visit.error();
    AgentCall agent{call, *call.agent};
    return answerMcp(agent, *visit);
}

bool mcpMayWrite(const RequestParts &parts)
{
    const auto visit = readMcpVisit(parts);
    return visit && visit->mayWrite();
}

} // namespace

void addAgentToolPaths(PathRoutes &paths)
{
    paths.add(HttpMethod::post, agentPath,
              {.handle = takeMcp,
               .entrance = Router::Entrance::agent,
               .lane = Lane::reading,
               .mayWrite = mcpMayWrite});
}

bool McpVisit::mayWrite() const
{
    return post && std::ranges::any_of(post->messages, [](const McpMessage &message) {
               const McpRequest *request = requestIn(message);
               const AgentTool *tool = request ? calledTool(*request) : nullptr;
               return tool && tool->lane == Lane::writing;
           });
}

Result<McpVisit, HttpResponse> readMcpVisit(const RequestParts &parts)
{
    if (!takesJson(parts.headers.find("Accept").value_or("")))
        return failure(problem(406, "The answer is JSON.", "Accept application/json."));
    const std::string version =
        parts.headers.find("MCP-Protocol-Version").value_or(std::string(unsaidVersion));
    if (!isSpoken(version))
        return failure(problem(400, "The request was not understood.",
                               "This server speaks the protocol's versions 2025-06-18 and 2025-03-26."));
    auto post = readMcpPost(parts.body);
    if (post && post->isBatch && version != batchVersion)
        post = failure(McpError{McpCode::invalidRequest, "This version of the protocol has no batches."});
    return McpVisit{std::move(post)};
}

HttpResponse answerMcp(AgentCall &agent, const McpVisit &visit)
{
    return visit.post ? answersTo(agent, *visit.post)
                      : jsonBody(400, mcpAnswer(RawJson{}, visit.post.error()));
}

} // namespace orvane::server
