// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/CatalogLookup.h"

namespace orvane {

namespace {

Result<std::string, NoSingleItem> lookUpIn(std::string_view typed, const std::vector<NamedItem> &items)
{
    const auto found = lookUpActive(typed, items);
    if (!found)
        return failure(found.error());
    return items[*found].id;
}

} // namespace

std::vector<NamedItem> namedItems(const std::vector<ProjectResponse> &projects, const Catalog &catalog)
{
    std::vector<NamedItem> items;
    for (const ProjectResponse &project : projects) {
        const ClientResponse *client = project.clientId ? catalog.client(*project.clientId) : nullptr;
        items.push_back(
            {project.id, project.name, client ? client->name : std::string(), project.isArchived});
    }
    return items;
}

std::vector<NamedItem> namedItems(const std::vector<ClientResponse> &clients)
{
    std::vector<NamedItem> items;
    for (const ClientResponse &client : clients)
        items.push_back({client.id, client.name, {}, client.isArchived});
    return items;
}

std::vector<NamedItem> namedItems(const std::vector<TagResponse> &tags)
{
    std::vector<NamedItem> items;
    for (const TagResponse &tag : tags)
        items.push_back({tag.id, tag.name});
    return items;
}

std::vector<NamedItem> namedItems(const std::vector<TaskResponse> &tasks, const Catalog &catalog)
{
    std::vector<NamedItem> items;
    for (const TaskResponse &task : tasks) {
        const ProjectResponse *project = catalog.project(task.projectId);
        items.push_back({task.id, task.name, project ? project->name : std::string(), !task.isActive});
    }
    return items;
}

std::vector<TaskResponse> tasksOf(const Catalog &catalog, const std::optional<std::string> &projectId)
{
    std::vector<TaskResponse> tasks;
    for (const ProjectResponse &project : catalog.projects()) {
        if (!projectId || project.id == *projectId)
            tasks.insert(tasks.end(), project.tasks.begin(), project.tasks.end());
    }
    return tasks;
}

Result<std::string, NoSingleItem> lookUpProject(std::string_view typed, const Catalog &catalog)
{
    return lookUpIn(typed, namedItems(catalog.projects(), catalog));
}

Result<std::string, NoSingleItem> lookUpTask(std::string_view typed, const Catalog &catalog,
                                             const std::optional<std::string> &projectId)
{
    return lookUpIn(typed, namedItems(tasksOf(catalog, projectId), catalog));
}

Result<std::string, NoSingleItem> lookUpTag(std::string_view typed, const Catalog &catalog)
{
    return lookUpIn(typed, namedItems(catalog.tags()));
}

} // namespace orvane
