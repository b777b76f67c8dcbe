// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/ProjectGroup.h"
#include "OrvaneAPI/Schemas.h"

#include <QObject>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvane {

/// The reference data of one workspace: what its entries point into. The tracker owns it and replaces its
/// lists; screens read it. Main thread only.
///
/// A lookup gives null for an identifier that is not there, which is no error: things are deleted elsewhere.
/// What it gives stays valid until the list is replaced.
class Catalog : public QObject {
    Q_OBJECT

public:
    explicit Catalog(QObject *parent = nullptr);

    const std::vector<ProjectResponse> &projects() const { return m_projects; }
    const std::vector<ClientResponse> &clients() const { return m_clients; }
    const std::vector<TagResponse> &tags() const { return m_tags; }

    void setProjects(std::vector<ProjectResponse> projects);
    void setClients(std::vector<ClientResponse> clients);
    void setTags(std::vector<TagResponse> tags);
    /// All three with one signal.
    void replace(std::vector<ProjectResponse> projects, std::vector<ClientResponse> clients,
                 std::vector<TagResponse> tags);

    const ProjectResponse *project(std::string_view id) const;
    const TaskResponse *task(std::string_view id) const;
    const ClientResponse *client(std::string_view id) const;
    const TagResponse *tag(std::string_view id) const;

    /// The projects for pickers, put together anew at each call.
    std::vector<ProjectGroup> projectGroups() const { return ProjectGroup::of(m_projects, m_clients); }

Q_SIGNALS:
    /// Some list is another one than before; not sent for an equal list.
    void changed();

private:
    /// The keys are views into the lists, so an index goes with its list.
    template <class T>
    using Index = std::unordered_map<std::string_view, const T *>;

    bool takeProjects(std::vector<ProjectResponse> projects);
    bool takeClients(std::vector<ClientResponse> clients);
    bool takeTags(std::vector<TagResponse> tags);

    std::vector<ProjectResponse> m_projects;
    std::vector<ClientResponse> m_clients;
    std::vector<TagResponse> m_tags;
    Index<ProjectResponse> m_projectsById;
    Index<TaskResponse> m_tasksById;
    Index<ClientResponse> m_clientsById;
    Index<TagResponse> m_tagsById;
};

} // namespace orvane
