// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/CatalogEditor.h"

#include "Client/AllEntries.h"
#include "Time/AppClock.h"
#include "Tracker/Overlay.h"
#include "Tracker/Tracker.h"

#include <set>

namespace orvane {

namespace {

/// The change's answer, once the catalog knows of it.
template <class T>
Task<CallResult<T>> thenReloaded(QPointer<Tracker> tracker, Task<CallResult<T>> change)
{
    CallResult<T> result = co_await change;
    if (result && tracker)
        co_await tracker->reloadCatalog();
    co_return result;
}

Task<CallResult<CatalogUse>> useAmong(QPointer<Tracker> tracker, CatalogItem item,
                                      Task<CallResult<std::vector<TimeEntryResponse>>> listing)
{
    auto listed = co_await listing;
    if (!listed)
        co_return failure(std::move(listed.error()));
    if (!tracker)
        co_return failure(CallError(ConnectionError{}));
    const std::vector<EntryChange> changes = tracker->outbox().changes();
    std::set<std::string> waiting;
    for (const EntryChange &change : changes)
        waiting.insert(change.entryId());
    // A timer that runs in this workspace is among the listed ones.
    const ShownEntries shown = overlay(std::move(*listed), std::nullopt, changes, tracker->workspace().id);
    co_return CatalogUse::of(item, shown.entries, waiting, AppClock::now());
}

} // namespace

CatalogEditor::CatalogEditor(OrvaneClient &client, Tracker &tracker)
    : m_client(client), m_tracker(&tracker), m_workspace(tracker.workspace().id)
{
}

Task<CallResult<ClientResponse>> CatalogEditor::createClient(std::string name)
{
    return thenReloaded(m_tracker, m_client.createClient(m_workspace, {std::move(name)}));
}

Task<CallResult<ClientResponse>> CatalogEditor::renameClient(std::string id, std::string name)
{
    return thenReloaded(m_tracker, m_client.updateClient(m_workspace, std::move(id), {std::move(name)}));
}

Task<CallResult<ClientResponse>> CatalogEditor::archiveClient(std::string id)
{
    return thenReloaded(m_tracker, m_client.archiveClient(m_workspace, std::move(id)));
}

Task<CallResult<ClientResponse>> CatalogEditor::restoreClient(std::string id)
{
    return thenReloaded(m_tracker, m_client.restoreClient(m_workspace, std::move(id)));
}

Task<CallResult<void>> CatalogEditor::deleteClient(std::string id)
{
    return thenReloaded(m_tracker, m_client.deleteClient(m_workspace, std::move(id)));
}

Task<CallResult<ProjectResponse>> CatalogEditor::createProject(ProjectFields fields)
{
    return thenReloaded(m_tracker, m_client.createProject(m_workspace, fields.request()));
}

Task<CallResult<ProjectResponse>> CatalogEditor::updateProject(std::string id, ProjectFields fields)
{
    return thenReloaded(m_tracker, m_client.updateProject(m_workspace, std::move(id), fields.request()));
}

Task<CallResult<ProjectResponse>> CatalogEditor::archiveProject(std::string id)
{
    return thenReloaded(m_tracker, m_client.archiveProject(m_workspace, std::move(id)));
}

Task<CallResult<ProjectResponse>> CatalogEditor::restoreProject(std::string id)
{
    return thenReloaded(m_tracker, m_client.restoreProject(m_workspace, std::move(id)));
}

Task<CallResult<void>> CatalogEditor::deleteProject(std::string id)
{
    return thenReloaded(m_tracker, m_client.deleteProject(m_workspace, std::move(id)));
}

Task<CallResult<TaskResponse>> CatalogEditor::createTask(std::string projectId, std::string name)
{
    return thenReloaded(m_tracker,
                        m_client.createTask(m_workspace, std::move(projectId), {.name = std::move(name)}));
}

Task<CallResult<TaskResponse>> CatalogEditor::updateTask(TaskResponse task)
{
    return thenReloaded(m_tracker, m_client.updateTask(m_workspace, task.projectId, task.id,
                                                       {.name = task.name, .isActive = task.isActive}));
}

Task<CallResult<void>> CatalogEditor::deleteTask(std::string projectId, std::string id)
{
    return thenReloaded(m_tracker, m_client.deleteTask(m_workspace, std::move(projectId), std::move(id)));
}

Task<CallResult<TagResponse>> CatalogEditor::createTag(std::string name)
{
    return thenReloaded(m_tracker, m_client.createTag(m_workspace, {std::move(name)}));
}

Task<CallResult<TagResponse>> CatalogEditor::renameTag(std::string id, std::string name)
{
    return thenReloaded(m_tracker, m_client.updateTag(m_workspace, std::move(id), {std::move(name)}));
}

Task<CallResult<void>> CatalogEditor::deleteTag(std::string id)
{
    return thenReloaded(m_tracker, m_client.deleteTag(m_workspace, std::move(id)));
}

Task<CallResult<CatalogUse>> CatalogEditor::useOf(CatalogItem item, std::function<void()> onAnswer)
{
    return useAmong(m_tracker, std::move(item),
                    listAllEntries(m_client, m_workspace, AppClock::now(), std::move(onAnswer)));
}

} // namespace orvane
