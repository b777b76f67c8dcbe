// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client/OrvaneClient.h"

#include "Client/NetworkThread.h"
#include "Client/ProblemMiddleware.h"
#include "Client/SyncConnection.h"
#include "OrvaneAPI/Client.h"
#include "Session/AuthMiddleware.h"
#include "Session/AuthSession.h"

namespace orvane {

namespace {

namespace ops = operations;

using Calls = Client<ClientChain>;

ClientChain chain(std::shared_ptr<HttpTransport> transport, std::shared_ptr<AuthSession> session,
                  std::shared_ptr<SyncConnection> sync)
{
    const std::string server = session->server();
    return {std::move(transport),
            server,
            {std::make_shared<ProblemMiddleware>(), std::make_shared<AuthMiddleware>(std::move(session)),
             std::make_shared<SyncConnectionMiddleware>(std::move(sync))}};
}

template <class T, class Operation, class... Wanted>
Task<CallResult<T>> bodyOf(Calls calls, typename Operation::Input input)
{
    co_return wantedBody<T, Wanted...>(co_await calls.call<Operation>(std::move(input)), Operation::name);
}

template <class Operation>
Task<CallResult<void>> noContentOf(Calls calls, typename Operation::Input input)
{
    co_return wantedCase<NoContent>(co_await calls.call<Operation>(std::move(input)), Operation::name);
}

Task<CallResult<std::optional<TimeEntryResponse>>> currentEntry(Calls calls)
{
    using Current = ops::GetCurrentTimeEntry;
    auto answer = co_await calls.call<Current>({});
    if (answer && std::holds_alternative<NoContent>(*answer))
        co_return std::optional<TimeEntryResponse>();
    co_return wantedBody<std::optional<TimeEntryResponse>, Ok<TimeEntryResponse>>(std::move(answer),
                                                                                  Current::name);
}

} // namespace

class OrvaneClient::Core {
public:
    Core(NetworkThread &thread, ClientChain chain) : m_thread(thread), m_calls(std::move(chain)) {}

    /// The body of one of the wanted successes.
    template <class Operation, class... Wanted>
    auto body(typename Operation::Input input)
    {
        using First = std::tuple_element_t<0, std::tuple<Wanted...>>;
        using T = decltype(First::body);
        return m_thread.run([calls = m_calls, input = std::move(input)] {
            return bodyOf<T, Operation, Wanted...>(calls, input);
        });
    }

    template <class Operation>
    Task<CallResult<void>> noContent(typename Operation::Input input)
    {
        return m_thread.run(
            [calls = m_calls, input = std::move(input)] { return noContentOf<Operation>(calls, input); });
    }

    Task<CallResult<std::optional<TimeEntryResponse>>> current()
    {
        return m_thread.run([calls = m_calls] { return currentEntry(calls); });
    }

private:
    NetworkThread &m_thread;
    Calls m_calls;
};

OrvaneClient::OrvaneClient(std::shared_ptr<NetworkThread> thread, std::shared_ptr<AuthSession> session,
                           std::shared_ptr<HttpTransport> transport)
    : m_thread(std::move(thread))
    , m_session(std::move(session))
    , m_sync(std::make_shared<SyncConnection>())
    , m_core(std::make_shared<Core>(*m_thread, chain(std::move(transport), m_session, m_sync)))
{
}

OrvaneClient::OrvaneClient(std::shared_ptr<NetworkThread> thread, std::shared_ptr<AuthSession> session)
    : OrvaneClient(thread, std::move(session), thread->transport())
{
}

OrvaneClient::~OrvaneClient() = default;

Task<CallResult<ServerResponse>> OrvaneClient::getServer()
{
    return m_core->body<ops::GetServer, Ok<ServerResponse>>({});
}

Task<CallResult<MeResponse>> OrvaneClient::getMe()
{
    return m_core->body<ops::GetMe, Ok<MeResponse>>({});
}

Task<CallResult<MeResponse>> OrvaneClient::updateProfile(ProfileRequest profile)
{
    return m_core->body<ops::UpdateProfile, Ok<MeResponse>>({.body = std::move(profile)});
}

Task<CallResult<PreferencesResponse>> OrvaneClient::updatePreferences(PreferencesRequest preferences)
{
    return m_core->body<ops::UpdatePreferences, Ok<PreferencesResponse>>({.body = std::move(preferences)});
}

Task<CallResult<void>> OrvaneClient::setDefaultWorkspace(std::string workspaceId)
{
    return m_core->noContent<ops::SetDefaultWorkspace>({.body = {.workspaceId = std::move(workspaceId)}});
}

Task<CallResult<WorkspaceSummary>> OrvaneClient::createWorkspace(CreateWorkspaceRequest workspace)
{
    return m_core->body<ops::CreateWorkspace, Created<WorkspaceSummary>>({.body = std::move(workspace)});
}

Task<CallResult<std::vector<SessionResponse>>> OrvaneClient::listSessions()
{
    return m_core->body<ops::ListSessions, Ok<std::vector<SessionResponse>>>({});
}

Task<CallResult<void>> OrvaneClient::revokeSession(std::string sessionId)
{
    return m_core->noContent<ops::RevokeSession>({.sessionId = std::move(sessionId)});
}

Task<CallResult<std::optional<TimeEntryResponse>>> OrvaneClient::getCurrentTimeEntry()
{
    return m_core->current();
}

Task<CallResult<std::vector<TimeEntryResponse>>> OrvaneClient::listTimeEntries(std::string workspaceId,
                                                                               Instant from, Instant to)
{
    return m_core->body<ops::ListTimeEntries, Ok<std::vector<TimeEntryResponse>>>(
        {.workspaceId = std::move(workspaceId), .from = from, .to = to});
}

Task<CallResult<TimeEntryResponse>> OrvaneClient::createTimeEntry(std::string workspaceId,
                                                                  CreateTimeEntryRequest entry)
{
    return m_core->body<ops::CreateTimeEntry, Created<TimeEntryResponse>, Ok<TimeEntryResponse>>(
        {.workspaceId = std::move(workspaceId), .body = std::move(entry)});
}

Task<CallResult<TimeEntryResponse>> OrvaneClient::getTimeEntry(std::string workspaceId, std::string entryId)
{
    return m_core->body<ops::GetTimeEntry, Ok<TimeEntryResponse>>(
        {.workspaceId = std::move(workspaceId), .entryId = std::move(entryId)});
}

Task<CallResult<TimeEntryResponse>> OrvaneClient::updateTimeEntry(std::string workspaceId,
                                                                  std::string entryId, TimeEntryRequest entry,
                                                                  std::optional<std::string> version)
{
    return m_core->body<ops::UpdateTimeEntry, Ok<TimeEntryResponse>>({.workspaceId = std::move(workspaceId),
                                                                      .entryId = std::move(entryId),
                                                                      .ifMatch = std::move(version),
                                                                      .body = std::move(entry)});
}

Task<CallResult<TimeEntryResponse>> OrvaneClient::stopTimeEntry(std::string workspaceId, std::string entryId,
                                                                StopTimeEntryRequest stop,
                                                                std::optional<std::string> version)
{
    return m_core->body<ops::StopTimeEntry, Ok<TimeEntryResponse>>({.workspaceId = std::move(workspaceId),
                                                                    .entryId = std::move(entryId),
                                                                    .ifMatch = std::move(version),
                                                                    .body = std::move(stop)});
}

Task<CallResult<void>> OrvaneClient::deleteTimeEntry(std::string workspaceId, std::string entryId,
                                                     std::optional<std::string> version)
{
    return m_core->noContent<ops::DeleteTimeEntry>({.workspaceId = std::move(workspaceId),
                                                    .entryId = std::move(entryId),
                                                    .ifMatch = std::move(version)});
}

Task<CallResult<std::vector<TimeEntryResponse>>>
OrvaneClient::bulkUpdateTimeEntries(std::string workspaceId, BulkUpdateTimeEntriesRequest changes)
{
    return m_core->body<ops::BulkUpdateTimeEntries, Ok<std::vector<TimeEntryResponse>>>(
        {.workspaceId = std::move(workspaceId), .body = std::move(changes)});
}

Task<CallResult<void>> OrvaneClient::bulkDeleteTimeEntries(std::string workspaceId,
                                                           BulkDeleteTimeEntriesRequest entries)
{
    return m_core->noContent<ops::BulkDeleteTimeEntries>(
        {.workspaceId = std::move(workspaceId), .body = std::move(entries)});
}

Task<CallResult<std::vector<TimeEntrySuggestion>>>
OrvaneClient::suggestTimeEntries(std::string workspaceId, std::optional<std::string> query,
                                 std::optional<std::int64_t> limit)
{
    return m_core->body<ops::SuggestTimeEntries, Ok<std::vector<TimeEntrySuggestion>>>(
        {.workspaceId = std::move(workspaceId), .query = std::move(query), .limit = limit});
}

Task<CallResult<std::vector<std::string>>>
OrvaneClient::suggestDescriptions(std::string workspaceId, std::optional<std::string> query,
                                  std::optional<std::int64_t> limit)
{
    return m_core->body<ops::SuggestDescriptions, Ok<std::vector<std::string>>>(
        {.workspaceId = std::move(workspaceId), .query = std::move(query), .limit = limit});
}

Task<CallResult<std::vector<ProjectResponse>>> OrvaneClient::listProjects(std::string workspaceId,
                                                                          bool includeArchived)
{
    return m_core->body<ops::ListProjects, Ok<std::vector<ProjectResponse>>>(
        {.workspaceId = std::move(workspaceId), .includeArchived = includeArchived});
}

Task<CallResult<ProjectResponse>> OrvaneClient::createProject(std::string workspaceId, ProjectRequest project)
{
    return m_core->body<ops::CreateProject, Created<ProjectResponse>>(
        {.workspaceId = std::move(workspaceId), .body = std::move(project)});
}

Task<CallResult<ProjectResponse>> OrvaneClient::getProject(std::string workspaceId, std::string projectId)
{
    return m_core->body<ops::GetProject, Ok<ProjectResponse>>(
        {.workspaceId = std::move(workspaceId), .projectId = std::move(projectId)});
}

Task<CallResult<ProjectResponse>> OrvaneClient::updateProject(std::string workspaceId, std::string projectId,
                                                              ProjectRequest project)
{
    return m_core->body<ops::UpdateProject, Ok<ProjectResponse>>({.workspaceId = std::move(workspaceId),
                                                                  .projectId = std::move(projectId),
                                                                  .body = std::move(project)});
}

Task<CallResult<ProjectResponse>> OrvaneClient::archiveProject(std::string workspaceId, std::string projectId)
{
    return m_core->body<ops::ArchiveProject, Ok<ProjectResponse>>(
        {.workspaceId = std::move(workspaceId), .projectId = std::move(projectId)});
}

Task<CallResult<ProjectResponse>> OrvaneClient::restoreProject(std::string workspaceId, std::string projectId)
{
    return m_core->body<ops::RestoreProject, Ok<ProjectResponse>>(
        {.workspaceId = std::move(workspaceId), .projectId = std::move(projectId)});
}

Task<CallResult<void>> OrvaneClient::deleteProject(std::string workspaceId, std::string projectId)
{
    return m_core->noContent<ops::DeleteProject>(
        {.workspaceId = std::move(workspaceId), .projectId = std::move(projectId)});
}

Task<CallResult<TaskResponse>> OrvaneClient::createTask(std::string workspaceId, std::string projectId,
                                                        TaskRequest task)
{
    return m_core->body<ops::CreateTask, Created<TaskResponse>>(
        {.workspaceId = std::move(workspaceId), .projectId = std::move(projectId), .body = std::move(task)});
}

Task<CallResult<TaskResponse>> OrvaneClient::updateTask(std::string workspaceId, std::string projectId,
                                                        std::string taskId, TaskRequest task)
{
    return m_core->body<ops::UpdateTask, Ok<TaskResponse>>({.workspaceId = std::move(workspaceId),
                                                            .projectId = std::move(projectId),
                                                            .taskId = std::move(taskId),
                                                            .body = std::move(task)});
}

Task<CallResult<void>> OrvaneClient::deleteTask(std::string workspaceId, std::string projectId,
                                                std::string taskId)
{
    return m_core->noContent<ops::DeleteTask>({.workspaceId = std::move(workspaceId),
                                               .projectId = std::move(projectId),
                                               .taskId = std::move(taskId)});
}

Task<CallResult<std::vector<ClientResponse>>> OrvaneClient::listClients(std::string workspaceId,
                                                                        bool includeArchived)
{
    return m_core->body<ops::ListClients, Ok<std::vector<ClientResponse>>>(
        {.workspaceId = std::move(workspaceId), .includeArchived = includeArchived});
}

Task<CallResult<ClientResponse>> OrvaneClient::createClient(std::string workspaceId, ClientRequest client)
{
    return m_core->body<ops::CreateClient, Created<ClientResponse>>(
        {.workspaceId = std::move(workspaceId), .body = std::move(client)});
}

Task<CallResult<ClientResponse>> OrvaneClient::updateClient(std::string workspaceId, std::string clientId,
                                                            ClientRequest client)
{
    return m_core->body<ops::UpdateClient, Ok<ClientResponse>>(
        {.workspaceId = std::move(workspaceId), .clientId = std::move(clientId), .body = std::move(client)});
}

Task<CallResult<ClientResponse>> OrvaneClient::archiveClient(std::string workspaceId, std::string clientId)
{
    return m_core->body<ops::ArchiveClient, Ok<ClientResponse>>(
        {.workspaceId = std::move(workspaceId), .clientId = std::move(clientId)});
}

Task<CallResult<ClientResponse>> OrvaneClient::restoreClient(std::string workspaceId, std::string clientId)
{
    return m_core->body<ops::RestoreClient, Ok<ClientResponse>>(
        {.workspaceId = std::move(workspaceId), .clientId = std::move(clientId)});
}

Task<CallResult<void>> OrvaneClient::deleteClient(std::string workspaceId, std::string clientId)
{
    return m_core->noContent<ops::DeleteClient>(
        {.workspaceId = std::move(workspaceId), .clientId = std::move(clientId)});
}

Task<CallResult<std::vector<TagResponse>>> OrvaneClient::listTags(std::string workspaceId)
{
    return m_core->body<ops::ListTags, Ok<std::vector<TagResponse>>>({.workspaceId = std::move(workspaceId)});
}

Task<CallResult<TagResponse>> OrvaneClient::createTag(std::string workspaceId, TagRequest tag)
{
    return m_core->body<ops::CreateTag, Created<TagResponse>>(
        {.workspaceId = std::move(workspaceId), .body = std::move(tag)});
}

Task<CallResult<TagResponse>> OrvaneClient::updateTag(std::string workspaceId, std::string tagId,
                                                      TagRequest tag)
{
    return m_core->body<ops::UpdateTag, Ok<TagResponse>>(
        {.workspaceId = std::move(workspaceId), .tagId = std::move(tagId), .body = std::move(tag)});
}

Task<CallResult<void>> OrvaneClient::deleteTag(std::string workspaceId, std::string tagId)
{
    return m_core->noContent<ops::DeleteTag>(
        {.workspaceId = std::move(workspaceId), .tagId = std::move(tagId)});
}

Task<CallResult<WorkspaceSettingsResponse>> OrvaneClient::getWorkspaceSettings(std::string workspaceId)
{
    return m_core->body<ops::GetWorkspaceSettings, Ok<WorkspaceSettingsResponse>>(
        {.workspaceId = std::move(workspaceId)});
}

Task<CallResult<WorkspaceSettingsResponse>>
OrvaneClient::updateWorkspaceSettings(std::string workspaceId, WorkspaceSettingsRequest settings)
{
    return m_core->body<ops::UpdateWorkspaceSettings, Ok<WorkspaceSettingsResponse>>(
        {.workspaceId = std::move(workspaceId), .body = std::move(settings)});
}

} // namespace orvane
