// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentEntry.h"

#include "Projects/ProjectRecords.h"
#include "Tags/TagRecords.h"

#include <algorithm>

namespace orvane::server {

EntryDescriber::EntryDescriber(Call &call, const std::string &workspaceId)
    : m_zone(zoneOf(call)), m_now(call.now)
{
    // What is archived still stands in entries.
    for (ProjectResponse &project : ProjectRecords(call.database).list(workspaceId, true)) {
        for (TaskResponse &task : project.tasks)
            m_tasks[task.id] = std::move(task.name);
        m_projects[project.id] = std::move(project.name);
    }
    for (TagResponse &tag : TagRecords(call.database).list(workspaceId))
        m_tags[tag.id] = std::move(tag.name);
}

std::optional<std::string> EntryDescriber::nameIn(const Names &names, const std::optional<std::string> &id)
{
    const auto found = id ? names.find(*id) : names.end();
    return found == names.end() ? std::nullopt : std::optional(found->second);
}

AgentPart EntryDescriber::describe(const TimeShareResponse &share) const
{
    AgentPart part;
    part.percent = share.percent;
    part.projectId = share.projectId;
    part.project = nameIn(m_projects, share.projectId);
    part.taskId = share.taskId;
    part.task = nameIn(m_tasks, share.taskId);
    part.isBillable = share.isBillable;
    if (!share.description.empty())
        part.description = share.description;
    return part;
}

AgentEntry EntryDescriber::describe(const TimeEntryResponse &entry) const
{
    AgentEntry out;
    out.id = entry.id;
    out.version = entry.version;
    out.start = m_zone.time(entry.start);
    if (entry.stop)
        out.stop = m_zone.time(*entry.stop);
    const auto length = std::max(entry.stop.value_or(m_now) - entry.start, Instant::duration::zero());
    out.seconds = std::chrono::floor<std::chrono::seconds>(length).count();
    out.description = entry.description;
    out.projectId = entry.projectId;
    out.project = nameIn(m_projects, entry.projectId);
    out.taskId = entry.taskId;
    out.task = nameIn(m_tasks, entry.taskId);
    if (!entry.tagIds.empty()) {
        out.tagIds = entry.tagIds;
        for (const std::string &id : entry.tagIds)
            (out.tags ? *out.tags : out.tags.emplace()).push_back(nameIn(m_tags, id).value_or(""));
    }
    out.isBillable = entry.isBillable;
    for (const TimeShareResponse &share : entry.shares)
        (out.parts ? *out.parts : out.parts.emplace()).push_back(describe(share));
    return out;
}

UserZone zoneOf(Call &call)
{
    const auto account = call.accounts.byId(call.caller.userId);
    return UserZone(account ? account->timeZone : "UTC");
}

} // namespace orvane::server
