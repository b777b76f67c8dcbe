// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/Catalog.h"

namespace orvane {

namespace {

template <class T>
void addAll(std::unordered_map<std::string_view, const T *> &index, const std::vector<T> &list)
{
    for (const T &item : list)
        index.try_emplace(item.id, &item);
}

template <class T>
const T *lookUp(const std::unordered_map<std::string_view, const T *> &index, std::string_view id)
{
    const auto found = index.find(id);
    return found == index.end() ? nullptr : found->second;
}

} // namespace

Catalog::Catalog(QObject *parent) : QObject(parent) {}

void Catalog::setProjects(std::vector<ProjectResponse> projects)
{
    if (takeProjects(std::move(projects)))
        Q_EMIT changed();
}

void Catalog::setClients(std::vector<ClientResponse> clients)
{
    if (takeClients(std::move(clients)))
        Q_EMIT changed();
}

void Catalog::setTags(std::vector<TagResponse> tags)
{
    if (takeTags(std::move(tags)))
        Q_EMIT changed();
}

void Catalog::replace(std::vector<ProjectResponse> projects, std::vector<ClientResponse> clients,
                      std::vector<TagResponse> tags)
{
    bool any = takeProjects(std::move(projects));
    any |= takeClients(std::move(clients));
    any |= takeTags(std::move(tags));
    if (any)
        Q_EMIT changed();
}

bool Catalog::takeProjects(std::vector<ProjectResponse> projects)
{
    if (projects == m_projects)
        return false;
    m_projectsById.clear();
    m_tasksById.clear();
    m_projects = std::move(projects);
    addAll(m_projectsById, m_projects);
    for (const ProjectResponse &project : m_projects)
        addAll(m_tasksById, project.tasks);
    return true;
}

bool Catalog::takeClients(std::vector<ClientResponse> clients)
{
    if (clients == m_clients)
        return false;
    m_clientsById.clear();
    m_clients = std::move(clients);
    addAll(m_clientsById, m_clients);
    return true;
}

bool Catalog::takeTags(std::vector<TagResponse> tags)
{
    if (tags == m_tags)
        return false;
    m_tagsById.clear();
    m_tags = std::move(tags);
    addAll(m_tagsById, m_tags);
    return true;
}

const ProjectResponse *Catalog::project(std::string_view id) const
{
    return lookUp(m_projectsById, id);
}

const TaskResponse *Catalog::task(std::string_view id) const
{
    return lookUp(m_tasksById, id);
}

const ClientResponse *Catalog::client(std::string_view id) const
{
    return lookUp(m_clientsById, id);
}

const TagResponse *Catalog::tag(std::string_view id) const
{
    return lookUp(m_tagsById, id);
}

} // namespace orvane
