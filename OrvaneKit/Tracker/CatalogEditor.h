// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/ProjectFields.h"
#include "Client/OrvaneClient.h"
#include "OrvaneAPI/Schemas.h"
#include "Support/Task.h"
#include "Tracker/CatalogUse.h"

#include <QPointer>
#include <functional>
#include <string>

namespace orvane {

class Tracker;

/// Changes what a workspace's entries point into, at the server; such a change cannot wait in the outbox.
/// Once one is done, the tracker's catalog is loaded again before the call answers, so that what is shown and
/// what is kept for when the server is away know of it.
///
/// Each call answers with the thing as the server has it now, or with why it was not changed. A reload that
/// fails is no failure of the change: the catalog stays as it was until the next load.
///
/// Made where it is needed. Client and tracker outlive it; calls that are under way may outlive all three.
/// Main thread.
class CatalogEditor {
public:
    CatalogEditor(OrvaneClient &client, Tracker &tracker);

    Task<CallResult<ClientResponse>> createClient(std::string name);
    Task<CallResult<ClientResponse>> renameClient(std::string id, std::string name);
    Task<CallResult<ClientResponse>> archiveClient(std::string id);
    Task<CallResult<ClientResponse>> restoreClient(std::string id);
    Task<CallResult<void>> deleteClient(std::string id);

    /// `newProjectColor` has a colour when none was chosen.
    Task<CallResult<ProjectResponse>> createProject(ProjectFields fields);
    /// All of the fields, as ProjectFields::of has them before some are changed.
    Task<CallResult<ProjectResponse>> updateProject(std::string id, ProjectFields fields);
    Task<CallResult<ProjectResponse>> archiveProject(std::string id);
    Task<CallResult<ProjectResponse>> restoreProject(std::string id);
    Task<CallResult<void>> deleteProject(std::string id);

    Task<CallResult<TaskResponse>> createTask(std::string projectId, std::string name);
    /// One that is not active can no longer be chosen; its entries keep it.
    Task<CallResult<TaskResponse>> updateTask(TaskResponse task);
    Task<CallResult<void>> deleteTask(std::string projectId, std::string id);

    Task<CallResult<TagResponse>> createTag(std::string name);
    Task<CallResult<TagResponse>> renameTag(std::string id, std::string name);
    Task<CallResult<void>> deleteTag(std::string id);

    /// What of the user's time a deletion would touch: of all their entries at the server, with the changes
    /// on top that wait in the outbox. The server is asked several times; `onAnswer` is told of each answer.
    Task<CallResult<CatalogUse>> useOf(CatalogItem item, std::function<void()> onAnswer);

private:
    OrvaneClient &m_client;
    QPointer<Tracker> m_tracker;
    std::string m_workspace;
};

} // namespace orvane
