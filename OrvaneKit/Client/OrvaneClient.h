// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Client/WantedAnswer.h"
#include "Support/Result.h"
#include "Support/Task.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

class AuthSession;
class HttpTransport;
class NetworkThread;
class SyncConnection;

/// The one object through which everything else talks to the server. There is one for each signed-in session;
/// drop it at sign-out.
///
/// Methods may be called from any thread that runs an event loop and resume there; requests, renewals of the
/// token and decoding happen on the network thread. Identifiers are opaque text, instants are whole
/// milliseconds, a `version` is what the server gave with the entry and travels as If-Match. A success other
/// than the one that a method wants comes back as a DecodingError. There is no time limit beyond the
/// transport's; dropping a task cancels nothing.
class OrvaneClient {
public:
    OrvaneClient(std::shared_ptr<NetworkThread> thread, std::shared_ptr<AuthSession> session,
                 std::shared_ptr<HttpTransport> transport);
    /// Over the network thread's own transport.
    OrvaneClient(std::shared_ptr<NetworkThread> thread, std::shared_ptr<AuthSession> session);
    OrvaneClient(const OrvaneClient &) = delete;
    OrvaneClient &operator=(const OrvaneClient &) = delete;
    ~OrvaneClient();

    const std::shared_ptr<AuthSession> &session() const { return m_session; }
    /// Where live sync leaves its connection's identifier for the requests to carry.
    const std::shared_ptr<SyncConnection> &syncConnection() const { return m_sync; }

    // The server and the account.
    Task<CallResult<ServerResponse>> getServer();
    Task<CallResult<MeResponse>> getMe();
    Task<CallResult<MeResponse>> updateProfile(ProfileRequest profile);
    Task<CallResult<PreferencesResponse>> updatePreferences(PreferencesRequest preferences);
    Task<CallResult<void>> setDefaultWorkspace(std::string workspaceId);
    Task<CallResult<WorkspaceSummary>> createWorkspace(CreateWorkspaceRequest workspace);
    Task<CallResult<std::vector<SessionResponse>>> listSessions();
    Task<CallResult<void>> revokeSession(std::string sessionId);

    // Time entries.
    /// Nothing while no timer runs.
    Task<CallResult<std::optional<TimeEntryResponse>>> getCurrentTimeEntry();
    /// The entries that start in [from, to).
    Task<CallResult<std::vector<TimeEntryResponse>>> listTimeEntries(std::string workspaceId, Instant from,
                                                                     Instant to);
    /// The request carries the entry's identifier; sending it again answers with the same entry.
    Task<CallResult<TimeEntryResponse>> createTimeEntry(std::string workspaceId,
                                                        CreateTimeEntryRequest entry);
    Task<CallResult<TimeEntryResponse>> getTimeEntry(std::string workspaceId, std::string entryId);
    Task<CallResult<TimeEntryResponse>> updateTimeEntry(std::string workspaceId, std::string entryId,
                                                        TimeEntryRequest entry,
                                                        std::optional<std::string> version);
    Task<CallResult<TimeEntryResponse>> stopTimeEntry(std::string workspaceId, std::string entryId,
                                                      StopTimeEntryRequest stop,
                                                      std::optional<std::string> version);
    Task<CallResult<void>> deleteTimeEntry(std::string workspaceId, std::string entryId,
                                           std::optional<std::string> version);
    Task<CallResult<std::vector<TimeEntryResponse>>>
    bulkUpdateTimeEntries(std::string workspaceId, BulkUpdateTimeEntriesRequest changes);
    Task<CallResult<void>> bulkDeleteTimeEntries(std::string workspaceId,
                                                 BulkDeleteTimeEntriesRequest entries);
    /// At most `limit` (1 to 50; the server's own choice when absent).
    Task<CallResult<std::vector<TimeEntrySuggestion>>>
    suggestTimeEntries(std::string workspaceId, std::optional<std::string> query,
                       std::optional<std::int64_t> limit = {});
    Task<CallResult<std::vector<std::string>>> suggestDescriptions(std::string workspaceId,
                                                                   std::optional<std::string> query,
                                                                   std::optional<std::int64_t> limit = {});

    // The catalog of a workspace. Lists leave archived items out unless asked for them.
    Task<CallResult<std::vector<ProjectResponse>>> listProjects(std::string workspaceId,
                                                                bool includeArchived = false);
    Task<CallResult<ProjectResponse>> createProject(std::string workspaceId, ProjectRequest project);
    Task<CallResult<ProjectResponse>> getProject(std::string workspaceId, std::string projectId);
    Task<CallResult<ProjectResponse>> updateProject(std::string workspaceId, std::string projectId,
                                                    ProjectRequest project);
    Task<CallResult<ProjectResponse>> archiveProject(std::string workspaceId, std::string projectId);
    Task<CallResult<ProjectResponse>> restoreProject(std::string workspaceId, std::string projectId);
    Task<CallResult<void>> deleteProject(std::string workspaceId, std::string projectId);

    Task<CallResult<TaskResponse>> createTask(std::string workspaceId, std::string projectId,
                                              TaskRequest task);
    Task<CallResult<TaskResponse>> updateTask(std::string workspaceId, std::string projectId,
                                              std::string taskId, TaskRequest task);
    Task<CallResult<void>> deleteTask(std::string workspaceId, std::string projectId, std::string taskId);

    Task<CallResult<std::vector<ClientResponse>>> listClients(std::string workspaceId,
                                                              bool includeArchived = false);
    Task<CallResult<ClientResponse>> createClient(std::string workspaceId, ClientRequest client);
    Task<CallResult<ClientResponse>> updateClient(std::string workspaceId, std::string clientId,
                                                  ClientRequest client);
    Task<CallResult<ClientResponse>> archiveClient(std::string workspaceId, std::string clientId);
    Task<CallResult<ClientResponse>> restoreClient(std::string workspaceId, std::string clientId);
    Task<CallResult<void>> deleteClient(std::string workspaceId, std::string clientId);

    Task<CallResult<std::vector<TagResponse>>> listTags(std::string workspaceId);
    Task<CallResult<TagResponse>> createTag(std::string workspaceId, TagRequest tag);
    Task<CallResult<TagResponse>> updateTag(std::string workspaceId, std::string tagId, TagRequest tag);
    Task<CallResult<void>> deleteTag(std::string workspaceId, std::string tagId);

    Task<CallResult<WorkspaceSettingsResponse>> getWorkspaceSettings(std::string workspaceId);
    Task<CallResult<WorkspaceSettingsResponse>> updateWorkspaceSettings(std::string workspaceId,
                                                                        WorkspaceSettingsRequest settings);

private:
    class Core;

    std::shared_ptr<NetworkThread> m_thread;
    std::shared_ptr<AuthSession> m_session;
    std::shared_ptr<SyncConnection> m_sync;
    std::shared_ptr<Core> m_core;
};

} // namespace orvane
