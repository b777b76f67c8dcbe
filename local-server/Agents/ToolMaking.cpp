// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/ToolMaking.h"

#include "OrvaneAPI/SchemaFields.h"

#include <algorithm>

namespace orvane::server {

namespace {

Result<std::string, std::string> chosenWorkspace(AgentCall &agent, const std::optional<std::string> &named)
{
    if (named)
        return *named;
    const auto &allowed = agent.access.workspaceIds;
    const auto account = agent.call.accounts.byId(agent.call.caller.userId);
    if (account && account->defaultWorkspaceId && mayEnter(agent.access, *account->defaultWorkspaceId))
        return *account->defaultWorkspaceId;
    if (allowed.size() == 1)
        return allowed.front();
    return failure(std::string("Say in which workspace, by workspaceId. list_workspaces has them."));
}

} // namespace

bool mayEnter(const AgentAccess &access, const std::string &workspaceId)
{
    return std::ranges::find(access.workspaceIds, workspaceId) != access.workspaceIds.end();
}

Result<WorkspaceAccess, std::string> enterWorkspace(AgentCall &agent,
                                                    const std::optional<std::string> &workspaceId)
{
    const auto id = chosenWorkspace(agent, workspaceId);
    if (!id)
        return failure(id.error());
    auto access =
        mayEnter(agent.access, *id) ? WorkspaceAccess::enter(agent.call, *id) : failure(HttpResponse());
    if (!access)
        return failure(std::string("There is no such workspace for you. list_workspaces has those that the "
                                   "user let you into."));
    return std::move(*access);
}

std::string refusalSentence(const HttpResponse &refusal)
{
    const auto problem = decodeJson<ProblemDetails>(refusal.body);
    std::string fallback = "Orvane refused this.";
    if (!problem)
        return fallback;
    return problem->detail.value_or(problem->title.value_or(fallback));
}

std::string unreadable(const JsonError &error)
{
    const bool isAboutTime = error.message.contains("ISO 8601");
    std::string sentence = error.path.empty() ? "The arguments" : "The argument " + error.path;
    sentence += (isAboutTime ? ": " : " ") + error.message + ". ";
    sentence += isAboutTime ? "Write times with their offset from UTC, such as 2026-03-01T09:30:00+01:00."
                            : "See the tool's input schema.";
    return sentence;
}

std::string unknownArgument(const std::string &path)
{
    return "There is no argument " + path + ". See the tool's input schema.";
}

} // namespace orvane::server
