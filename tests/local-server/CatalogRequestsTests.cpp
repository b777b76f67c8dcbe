// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServerFixture.h"

namespace orvane::server {

using namespace std::chrono_literals;
using namespace operations;

class CatalogRequests : public ServerFixture {
protected:
    CatalogRequests() { signInLocally(); }

    static ProjectRequest fields(const std::string &name)
    {
        ProjectRequest body;
        body.name = name;
        body.color = "#445566";
        return body;
    }
    ProjectResponse project(const std::string &name)
    {
        return expect<CreateProject, Created<ProjectResponse>>({workspaceId, fields(name)}).body;
    }
    std::vector<std::string> projectNames(std::optional<bool> includeArchived = {})
    {
        std::vector<std::string> names;
        for (const auto &found :
             expect<ListProjects, Ok<std::vector<ProjectResponse>>>({workspaceId, includeArchived}).body)
            names.push_back(found.name);
        return names;
    }
    TimeEntryResponse entryOn(const std::string &projectId, const std::string &taskId,
                              const std::string &tagId)
    {
        CreateTimeEntryRequest body;
        body.id = newIdentifier();
        body.projectId = projectId;
        body.taskId = taskId;
        body.tagIds = {tagId};
        body.shares = {{projectId, taskId, true, 100, ""}};
        body.start = now - 2h;
        body.stop = now;
        return expect<CreateTimeEntry, Created<TimeEntryResponse>>({workspaceId, body}).body;
    }
    TimeEntryResponse get(const std::string &id)
    {
        return expect<GetTimeEntry, Ok<TimeEntryResponse>>({workspaceId, id}).body;
    }
};

TEST_F(CatalogRequests, ProjectsAreMadeChangedArchivedAndRestored)
{
    const auto client = expect<CreateClient, Created<ClientResponse>>({workspaceId, {"Acme"}}).body;
    ProjectRequest body = fields("  Website ");
    body.clientId = client.id;
    body.estimateSeconds = 7200;
    body.hourlyRate = 99.5;
    const auto made = expect<CreateProject, Created<ProjectResponse>>({workspaceId, body}).body;
    EXPECT_EQ(made.name, "Website");
    EXPECT_EQ((expect<GetProject, Ok<ProjectResponse>>({workspaceId, made.id}).body), made);
    project("apples");

    body.name = "Zebra";
    body.clientId.reset();
    EXPECT_FALSE((expect<UpdateProject, Ok<ProjectResponse>>({workspaceId, made.id, body}).body.clientId));
    EXPECT_EQ(projectNames(), (std::vector<std::string>{"apples", "Zebra"}));

    EXPECT_TRUE((expect<ArchiveProject, Ok<ProjectResponse>>({workspaceId, made.id}).body.isArchived));
    EXPECT_EQ(projectNames(), std::vector<std::string>{"apples"});
    EXPECT_EQ(projectNames(true), (std::vector<std::string>{"apples", "Zebra"}));
    const std::string successor = project("ZEBRA").id;
    EXPECT_EQ((call<RestoreProject>({workspaceId, made.id}).status), 409);
    EXPECT_EQ((call<DeleteProject>({workspaceId, successor}).status), 204);
    EXPECT_FALSE((expect<RestoreProject, Ok<ProjectResponse>>({workspaceId, made.id}).body.isArchived));

    body.clientId = "gone";
    EXPECT_EQ(fieldErrors(call<UpdateProject>({workspaceId, made.id, body})).count("clientId"), 1U);
    EXPECT_EQ(fieldErrors(call<CreateProject>({workspaceId, fields(" \t")})).count("name"), 1U);
}

TEST_F(CatalogRequests, NamesOfAKindAreUniqueWhateverTheirCase)
{
    const ProjectResponse work = project("Straße");
    const ProjectResponse other = project("Other");
    EXPECT_EQ((call<CreateProject>({workspaceId, fields("STRASSE")}).status), 409);
    EXPECT_EQ((call<UpdateProject>({workspaceId, other.id, fields("straße")}).status), 409);
    EXPECT_EQ((call<UpdateProject>({workspaceId, work.id, fields("STRASSE")}).status), 200) << "its own";

    EXPECT_EQ((call<CreateTask>({workspaceId, work.id, {"Docs", {}}}).status), 201);
    EXPECT_EQ((call<CreateTask>({workspaceId, work.id, {"DOCS", {}}}).status), 409);
    EXPECT_EQ((call<CreateTask>({workspaceId, other.id, {"Docs", {}}}).status), 201) << "of another project";
    EXPECT_EQ((call<CreateTag>({workspaceId, {"caf\u00e9"}}).status), 201);
    EXPECT_EQ((call<CreateTag>({workspaceId, {"CAFE\u0301"}}).status), 409) << "an accent encoded apart";
    EXPECT_EQ((call<CreateClient>({workspaceId, {"Acme"}}).status), 201);
    EXPECT_EQ((call<CreateClient>({workspaceId, {"acme "}}).status), 409);

    const std::string home = workspaceId;
    workspaceId = expect<CreateWorkspace, Created<WorkspaceSummary>>({{"Second", {}}}).body.id;
    project("Straße");
    EXPECT_EQ((call<GetProject>({workspaceId, work.id}).status), 404) << "it is in the other workspace";
}

TEST_F(CatalogRequests, DeletingWhatEntriesUseLeavesTheirTime)
{
    const ProjectResponse work = project("Work");
    const auto docs = expect<CreateTask, Created<TaskResponse>>({workspaceId, work.id, {"Docs", {}}}).body;
    const auto urgent = expect<CreateTag, Created<TagResponse>>({workspaceId, {"urgent"}}).body;
    const TimeEntryResponse made = entryOn(work.id, docs.id, urgent.id);

    EXPECT_EQ((call<DeleteTag>({workspaceId, urgent.id}).status), 204);
    const TimeEntryResponse untagged = get(made.id);
    EXPECT_TRUE(untagged.tagIds.empty());
    EXPECT_NE(untagged.version, made.version);

    EXPECT_EQ((call<DeleteTask>({workspaceId, work.id, docs.id}).status), 204);
    const TimeEntryResponse untasked = get(made.id);
    EXPECT_FALSE(untasked.taskId || untasked.shares.at(0).taskId);
    EXPECT_EQ(untasked.projectId, work.id);
    EXPECT_NE(untasked.version, untagged.version);

    EXPECT_EQ((call<DeleteProject>({workspaceId, work.id}).status), 204);
    const TimeEntryResponse bare = get(made.id);
    EXPECT_FALSE(bare.projectId || bare.shares.at(0).projectId);
    EXPECT_EQ(bare.start, made.start);
    EXPECT_NE(bare.version, untasked.version);
    EXPECT_EQ((call<DeleteProject>({workspaceId, work.id}).status), 404);
}

TEST_F(CatalogRequests, WhatLockedTimeUsesIsNotDeleted)
{
    const ProjectResponse work = project("Work");
    const auto docs = expect<CreateTask, Created<TaskResponse>>({workspaceId, work.id, {"Docs", {}}}).body;
    const auto urgent = expect<CreateTag, Created<TagResponse>>({workspaceId, {"urgent"}}).body;
    const TimeEntryResponse made = entryOn(work.id, docs.id, urgent.id);
    WorkspaceSettingsRequest settings;
    settings.name = "My workspace";
    settings.currency = "EUR";
    settings.lockedBefore = now - 1h;
    expect<UpdateWorkspaceSettings, Ok<WorkspaceSettingsResponse>>({workspaceId, settings});
    EXPECT_EQ((call<DeleteTag>({workspaceId, urgent.id}).status), 403);
    EXPECT_EQ((call<DeleteTask>({workspaceId, work.id, docs.id}).status), 403);
    EXPECT_EQ((call<DeleteProject>({workspaceId, work.id}).status), 403);
    EXPECT_EQ(get(made.id), made);
}

TEST_F(CatalogRequests, WhatTheWorkspaceRequiresIsNotTakenFromFinishedEntries)
{
    const ProjectResponse work = project("Work");
    const auto docs = expect<CreateTask, Created<TaskResponse>>({workspaceId, work.id, {"Docs", {}}}).body;
    const auto urgent = expect<CreateTag, Created<TagResponse>>({workspaceId, {"urgent"}}).body;
    const auto calm = expect<CreateTag, Created<TagResponse>>({workspaceId, {"calm"}}).body;
    WorkspaceSettingsRequest settings;
    settings.name = "My workspace";
    settings.currency = "EUR";
    const auto require = [&](bool aProject, bool aTask, bool aTag) {
        settings.requireProject = aProject;
        settings.requireTask = aTask;
        settings.requireTag = aTag;
        expect<UpdateWorkspaceSettings, Ok<WorkspaceSettingsResponse>>({workspaceId, settings});
    };
    const auto expectRefused = [](const HttpResponse &answer, const std::string &detail) {
        EXPECT_EQ(answer.status, 403) << answer.body;
        EXPECT_NE(answer.body.find("urn:orvane:problem:detail-required"), std::string::npos) << answer.body;
        EXPECT_NE(answer.body.find("lose the " + detail), std::string::npos) << answer.body;
    };
    const TimeEntryResponse split = entryOn(work.id, docs.id, urgent.id);
    CreateTimeEntryRequest plain;
    plain.id = newIdentifier();
    plain.projectId = project("Other").id;
    plain.tagIds = {urgent.id, calm.id};
    plain.start = now - 2h;
    plain.stop = now;
    expect<CreateTimeEntry, Created<TimeEntryResponse>>({workspaceId, plain});
    CreateTimeEntryRequest running = plain;
    running.id = newIdentifier();
    running.projectId = project("Running").id;
    running.tagIds = {};
    running.stop.reset();
    expect<CreateTimeEntry, Created<TimeEntryResponse>>({workspaceId, running});

    require(true, true, true);
    expectRefused(call<DeleteProject>({workspaceId, work.id}), "project");
    expectRefused(call<DeleteProject>({workspaceId, *plain.projectId}), "project");
    expectRefused(call<DeleteTask>({workspaceId, work.id, docs.id}), "task");
    expectRefused(call<DeleteTag>({workspaceId, urgent.id}), "tag");
    EXPECT_EQ(get(split.id), split);
    EXPECT_EQ((call<DeleteProject>({workspaceId, *running.projectId}).status), 204) << "it can still get one";
    EXPECT_EQ((call<DeleteTag>({workspaceId, calm.id}).status), 204) << "its entry has another one";

    require(false, true, false);
    expectRefused(call<DeleteProject>({workspaceId, work.id}), "task");
    EXPECT_EQ((call<DeleteProject>({workspaceId, *plain.projectId}).status), 204) << "no task is lost";
    require(true, false, false);
    EXPECT_EQ((call<DeleteTask>({workspaceId, work.id, docs.id}).status), 204);
    EXPECT_EQ((call<DeleteTag>({workspaceId, urgent.id}).status), 204);
}

TEST_F(CatalogRequests, TasksClientsAndTagsAreChanged)
{
    const ProjectResponse work = project("Work");
    const auto docs = expect<CreateTask, Created<TaskResponse>>({workspaceId, work.id, {"Docs", {}}}).body;
    EXPECT_TRUE(docs.isActive);
    expect<UpdateTask, Ok<TaskResponse>>({workspaceId, work.id, docs.id, {"Documents", false}});
    const TaskResponse kept =
        expect<UpdateTask, Ok<TaskResponse>>({workspaceId, work.id, docs.id, {"Docs", {}}}).body;
    EXPECT_FALSE(kept.isActive) << "an absent member stays as it is";
    EXPECT_EQ((expect<GetProject, Ok<ProjectResponse>>({workspaceId, work.id}).body.tasks),
              std::vector{kept});
    EXPECT_EQ((call<UpdateTask>({workspaceId, project("Other").id, docs.id, {"Docs", {}}}).status), 404);

    const auto client = expect<CreateClient, Created<ClientResponse>>({workspaceId, {"Acme"}}).body;
    ProjectRequest body = fields("Website");
    body.clientId = client.id;
    const auto website = expect<CreateProject, Created<ProjectResponse>>({workspaceId, body}).body;
    EXPECT_EQ((expect<UpdateClient, Ok<ClientResponse>>({workspaceId, client.id, {"Acme Ltd"}}).body.name),
              "Acme Ltd");
    expect<ArchiveClient, Ok<ClientResponse>>({workspaceId, client.id});
    EXPECT_TRUE((expect<ListClients, Ok<std::vector<ClientResponse>>>({workspaceId, {}}).body.empty()));
    EXPECT_EQ((expect<ListClients, Ok<std::vector<ClientResponse>>>({workspaceId, true}).body.size()), 1U);
    expect<RestoreClient, Ok<ClientResponse>>({workspaceId, client.id});
    EXPECT_EQ((call<DeleteClient>({workspaceId, client.id}).status), 204);
    EXPECT_FALSE((expect<GetProject, Ok<ProjectResponse>>({workspaceId, website.id}).body.clientId));

    const auto tag = expect<CreateTag, Created<TagResponse>>({workspaceId, {"urgent"}}).body;
    expect<UpdateTag, Ok<TagResponse>>({workspaceId, tag.id, {"calm"}});
    EXPECT_EQ((expect<ListTags, Ok<std::vector<TagResponse>>>({workspaceId}).body.at(0).name), "calm");
}

TEST_F(CatalogRequests, AccountAndWorkspaceKeepWhatIsSet)
{
    PreferencesRequest changes;
    changes.timeFormat = "12h";
    changes.pomodoroMinutes = 50;
    const PreferencesResponse before = me().preferences;
    PreferencesResponse expected = before;
    expected.timeFormat = "12h";
    expected.pomodoroMinutes = 50;
    EXPECT_EQ((expect<UpdatePreferences, Ok<PreferencesResponse>>({changes}).body), expected);
    changes.timeFormat = "13h";
    EXPECT_EQ(fieldErrors(call<UpdatePreferences>({changes})).count("timeFormat"), 1U);
    EXPECT_EQ((call<UpdateProfile>({{"Ada L.", "Europe/Nowhere"}}).status), 422);
    EXPECT_EQ((expect<UpdateProfile, Ok<MeResponse>>({{"Ada L.", "Asia/Tokyo"}}).body.timeZone),
              "Asia/Tokyo");
    EXPECT_EQ((call<UpdateFirstSteps>({{{"timer", "project"}}}).status), 204);

    const auto second = expect<CreateWorkspace, Created<WorkspaceSummary>>({{"Second", {}}}).body;
    EXPECT_EQ((call<SetDefaultWorkspace>({{second.id}}).status), 204);
    EXPECT_EQ((call<SetDefaultWorkspace>({{"gone"}}).status), 404);
    const MeResponse account = me();
    EXPECT_EQ(account.preferences, expected);
    EXPECT_EQ(account.fullName, "Ada L.");
    EXPECT_EQ(account.firstSteps, (std::vector<std::string>{"timer", "project"}));
    EXPECT_EQ(account.defaultWorkspaceId, second.id);
    ASSERT_EQ(account.workspaces.size(), 2U);
    EXPECT_EQ(account.organizations.size(), 2U);

    WorkspaceSettingsRequest settings;
    settings.name = "Renamed";
    settings.currency = "usd";
    EXPECT_EQ((call<UpdateWorkspaceSettings>({second.id, settings}).status), 422);
    settings.currency = "USD";
    settings.defaultHourlyRate = 80.25;
    settings.requireTag = true;
    settings.lockedBefore = now;
    const auto kept =
        expect<UpdateWorkspaceSettings, Ok<WorkspaceSettingsResponse>>({second.id, settings}).body;
    EXPECT_EQ(kept.lockedBefore, now);
    EXPECT_EQ(kept.defaultHourlyRate, 80.25);
    EXPECT_EQ((expect<GetWorkspaceSettings, Ok<WorkspaceSettingsResponse>>({second.id}).body), kept);
    registerAccount();
    EXPECT_EQ((call<GetWorkspaceSettings>({second.id}).status), 404);
    EXPECT_EQ((call<CreateWorkspace>({{"Third", second.organizationId}}).status), 404);
}

} // namespace orvane::server
