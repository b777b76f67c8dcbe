// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/ToolMaking.h"
#include "Clients/ClientRecords.h"
#include "Names/NameText.h"
#include "Projects/ProjectRecords.h"
#include "Tags/TagRecords.h"

#include <map>

namespace orvane::server {

struct NoArguments {};

struct AgentWorkspace {
    std::string id;
    std::string name;
    bool isDefault = false;
};

struct AgentWorkspaces {
    ZonedTime now;
    std::string timeZone;
    std::vector<AgentWorkspace> workspaces;
};

struct NameSearch {
    std::optional<std::string> workspaceId;
    std::optional<std::string> search;
};

struct AgentTask {
    std::string id;
    std::string name;
};

struct AgentProject {
    std::string id;
    std::string name;
    std::optional<std::string> client;
    bool isBillable = false;
    std::vector<AgentTask> tasks;
};

struct AgentProjects {
    std::vector<AgentProject> projects;
    std::optional<std::string> notice;
};

struct AgentTag {
    std::string id;
    std::string name;
};

struct AgentTags {
    std::vector<AgentTag> tags;
    std::optional<std::string> notice;
};

} // namespace orvane::server

namespace orvane {

template <>
struct JsonFields<server::NoArguments> {
    static constexpr auto list = JsonFieldList{};
};

template <>
struct JsonFields<server::AgentWorkspace> {
    static constexpr auto list = JsonFieldList{jsonField<"id">(&server::AgentWorkspace::id),
                                               jsonField<"name">(&server::AgentWorkspace::name),
                                               jsonField<"isDefault">(&server::AgentWorkspace::isDefault)};
};

template <>
struct JsonFields<server::AgentWorkspaces> {
    static constexpr auto list = JsonFieldList{jsonField<"now">(&server::AgentWorkspaces::now),
                                               jsonField<"timeZone">(&server::AgentWorkspaces::timeZone),
                                               jsonField<"workspaces">(&server::AgentWorkspaces::workspaces)};
};

template <>
struct JsonFields<server::NameSearch> {
    static constexpr auto list = JsonFieldList{jsonField<"workspaceId">(&server::NameSearch::workspaceId),
                                               jsonField<"search">(&server::NameSearch::search)};
};

template <>
struct JsonFields<server::AgentTask> {
    static constexpr auto list =
        JsonFieldList{jsonField<"id">(&server::AgentTask::id), jsonField<"name">(&server::AgentTask::name)};
};

template <>
struct JsonFields<server::AgentProject> {
    static constexpr auto list = JsonFieldList{jsonField<"id">(&server::AgentProject::id),
                                               jsonField<"name">(&server::AgentProject::name),
                                               jsonField<"client">(&server::AgentProject::client),
                                               jsonField<"isBillable">(&server::AgentProject::isBillable),
                                               jsonField<"tasks">(&server::AgentProject::tasks)};
};

template <>
struct JsonFields<server::AgentProjects> {
    static constexpr auto list = JsonFieldList{jsonField<"projects">(&server::AgentProjects::projects),
                                               jsonField<"notice">(&server::AgentProjects::notice)};
};

template <>
struct JsonFields<server::AgentTag> {
    static constexpr auto list =
        JsonFieldList{jsonField<"id">(&server::AgentTag::id), jsonField<"name">(&server::AgentTag::name)};
};

template <>
struct JsonFields<server::AgentTags> {
    static constexpr auto list = JsonFieldList{jsonField<"tags">(&server::AgentTags::tags),
                                               jsonField<"notice">(&server::AgentTags::notice)};
};

} // namespace orvane

namespace orvane::server {

namespace {

constexpr std::size_t mostNames = 500;

constexpr MemberNote searchNotes[] = {
    {"workspaceId", "From list_workspaces; left out, the user's default workspace."},
    {"search", "Part of a name, in any case; left out, all are listed."},
};

/// Cuts a list down, and says so.
template <class T>
std::optional<std::string> cut(std::vector<T> &list)
{
    if (list.size() <= mostNames)
        return std::nullopt;
    std::string notice = "Only " + std::to_string(mostNames) + " of " + std::to_string(list.size()) +
                         " are listed. Narrow them down by search.";
    list.resize(mostNames);
    return notice;
}

bool isSought(const std::optional<std::string> &search, const std::string &name)
{
    return !search || nameKey(name).contains(nameKey(*search));
}

Result<AgentWorkspaces, std::string> listWorkspaces(AgentCall &agent, const NoArguments &)
{
    const auto account = agent.call.accounts.byId(agent.call.caller.userId);
    if (!account)
        return failure(std::string("This account no longer exists."));
    const UserZone zone(account->timeZone);
    AgentWorkspaces out{zone.time(std::chrono::floor<std::chrono::seconds>(agent.call.now)), zone.name(), {}};
    for (WorkspaceSummary &workspace : agent.call.workspaces.of(account->id)) {
        if (mayEnter(agent.access, workspace.id))
            out.workspaces.push_back(
                {workspace.id, std::move(workspace.name), workspace.id == account->defaultWorkspaceId});
    }
    return out;
}

AgentProject describedProject(ProjectResponse &project, const std::map<std::string, std::string> &clients)
{
    AgentProject out{std::move(project.id), std::move(project.name), {}, project.isBillable, {}};
    if (const auto client = clients.find(project.clientId.value_or("")); client != clients.end())
        out.client = client->second;
    for (TaskResponse &task : project.tasks) {
        if (task.isActive)
            out.tasks.push_back({std::move(task.id), std::move(task.name)});
    }
    return out;
}

Result<AgentProjects, std::string> listProjects(AgentCall &agent, const NameSearch &arguments)
{
    const auto workspace = enterWorkspace(agent, arguments.workspaceId);
    if (!workspace)
        return failure(workspace.error());
    std::map<std::string, std::string> clients;
    for (ClientResponse &client : ClientRecords(agent.call.database).list(workspace->id(), true))
        clients[client.id] = std::move(client.name);
    AgentProjects out;
    for (ProjectResponse &project : ProjectRecords(agent.call.database).list(workspace->id(), false)) {
        if (isSought(arguments.search, project.name))
            out.projects.push_back(describedProject(project, clients));
    }
    out.notice = cut(out.projects);
    return out;
}

Result<AgentTags, std::string> listTags(AgentCall &agent, const NameSearch &arguments)
{
    const auto workspace = enterWorkspace(agent, arguments.workspaceId);
    if (!workspace)
        return failure(workspace.error());
    AgentTags out;
    for (TagResponse &tag : TagRecords(agent.call.database).list(workspace->id())) {
        if (isSought(arguments.search, tag.name))
            out.tags.push_back({std::move(tag.id), std::move(tag.name)});
    }
    out.notice = cut(out.tags);
    return out;
}

} // namespace

void addCatalogTools(std::vector<AgentTool> &tools)
{
    tools.push_back(
        agentTool({.name = "list_workspaces",
                   .title = "List Workspaces",
                   .description = "The workspaces that the user let you into, with the user's time zone and "
                                  "the time there now. Call this first: days are the user's days, and every "
                                  "time that you send needs its offset."},
                  listWorkspaces));
    tools.push_back(
        agentTool({.name = "list_projects",
                   .title = "List Projects",
                   .description =
                       "The projects that time can be booked on, each with its client and its tasks. Use the "
                       "ids in proposals. Projects and tasks that are no longer used are left out.",
                   .notes = searchNotes},
                  listProjects));
    tools.push_back(agentTool({.name = "list_tags",
                               .title = "List Tags",
                               .description = "The tags that entries can carry. Use the ids in proposals.",
                               .notes = searchNotes},
                              listTags));
}

} // namespace orvane::server
