// SPDX-License-Identifier: GPL-3.0-or-later
// What is told of what requests change.
#include "ServerFixture.h"

#include <utility>

namespace orvane::server {

using namespace operations;
using namespace std::chrono_literals;

class ChangesTold : public ServerFixture {
protected:
    ChangesTold()
    {
        signInLocally();
        userId = me().id;
        changes.clear();
    }

    std::vector<Change> told() { return std::exchange(changes, {}); }

    CreateTimeEntryRequest entry(std::string id) const
    {
        CreateTimeEntryRequest body;
        body.id = std::move(id);
        body.start = now - 1h;
        body.stop = now;
        return body;
    }
    Change mine() const { return {ChangeTopic::me, {}, userId}; }
    Change entries() const { return {ChangeTopic::timeEntries, workspaceId, userId}; }
    Change everybodysEntries() const { return {ChangeTopic::timeEntries, workspaceId, {}}; }
    Change catalog() const { return {ChangeTopic::catalog, workspaceId, {}}; }
    Change settings() const { return {ChangeTopic::settings, workspaceId, {}}; }

    using Told = std::vector<Change>;
    std::string userId;
};

TEST_F(ChangesTold, EntriesAreTheCallersOwn)
{
    call<CreateTimeEntry>({workspaceId, entry("a")});
    EXPECT_EQ(told(), Told{entries()});
    call<CreateTimeEntry>({workspaceId, entry("a")});
    EXPECT_EQ(told(), Told{}) << "the same one delivered again";
    call<ListTimeEntries>({workspaceId, now - 2h, now});
    EXPECT_EQ(told(), Told{});
    call<StopTimeEntry>({workspaceId, "a", {}, {now}});
    EXPECT_EQ(told(), Told{}) << "it ended then already";
    call<DeleteTimeEntry>({workspaceId, "a", {}});
    EXPECT_EQ(told(), Told{entries()});

    auto running = entry("b");
    running.stop.reset();
    call<CreateTimeEntry>({workspaceId, running});
    EXPECT_EQ(told(), Told{entries()});
    const std::string home = workspaceId;
    workspaceId = expect<CreateWorkspace, Created<WorkspaceSummary>>({{"Second", {}}}).body.id;
    EXPECT_EQ(told(), Told{mine()});
    running.id = "c";
    call<CreateTimeEntry>({workspaceId, running});
    EXPECT_EQ(told(), (Told{{ChangeTopic::timeEntries, home, userId}, entries()})) << "it stopped the other";
}

TEST_F(ChangesTold, TheCatalogIsEverybodys)
{
    ProjectRequest fields;
    fields.name = "Work";
    fields.color = "#336699";
    const auto project = expect<CreateProject, Created<ProjectResponse>>({workspaceId, fields}).body;
    EXPECT_EQ(told(), Told{catalog()});
    const auto task = expect<CreateTask, Created<TaskResponse>>({workspaceId, project.id, {"Docs", {}}}).body;
    const auto tag = expect<CreateTag, Created<TagResponse>>({workspaceId, {"urgent"}}).body;
    const auto client = expect<CreateClient, Created<ClientResponse>>({workspaceId, {"Acme"}}).body;
    EXPECT_EQ(told(), (Told{catalog(), catalog(), catalog()}));
    auto body = entry("a");
    body.projectId = project.id;
    body.taskId = task.id;
    call<CreateTimeEntry>({workspaceId, body});
    told();
    call<ArchiveClient>({workspaceId, client.id});
    call<DeleteTag>({workspaceId, tag.id});
    EXPECT_EQ(told(), (Told{catalog(), catalog()})) << "no entry had the tag";
    call<DeleteTask>({workspaceId, project.id, task.id});
    EXPECT_EQ(told(), (Told{everybodysEntries(), catalog()}));
}

TEST_F(ChangesTold, AccountsAndSettingsAreToldApart)
{
    call<UpdateProfile>({{"Ada", "UTC"}});
    call<UpdatePreferences>({{}});
    call<RevokeOtherSessions>({});
    EXPECT_EQ(told(), (Told{mine(), mine(), mine()}));
    WorkspaceSettingsRequest request;
    request.name = "Renamed";
    request.currency = "EUR";
    call<UpdateWorkspaceSettings>({workspaceId, request});
    EXPECT_EQ(told(), Told{settings()});
}

TEST_F(ChangesTold, WhatIsUndoneIsNotTold)
{
    call<CreateTimeEntry>({workspaceId, entry("a")});
    call<CreateTimeEntry>({workspaceId, entry("b")});
    told();
    BulkUpdateTimeEntriesRequest bulk;
    bulk.ids = {"a", "gone"};
    bulk.description = "both or none";
    EXPECT_EQ((call<BulkUpdateTimeEntries>({workspaceId, bulk}).status), 404);
    EXPECT_EQ(told(), Told{}) << "the first one was changed and changed back";
    bulk.ids = {"a", "b"};
    EXPECT_EQ((call<BulkUpdateTimeEntries>({workspaceId, bulk}).status), 200);
    EXPECT_EQ(told(), Told{entries()}) << "once";
    EXPECT_EQ((call<CreateTag>({workspaceId, {" "}}).status), 422);
    EXPECT_EQ(told(), Told{});
}

TEST_F(ChangesTold, EachTopicHasItsName)
{
    EXPECT_EQ(text(ChangeTopic::timeEntries), "time-entries");
    EXPECT_EQ(text(ChangeTopic::agentActivity), "agent-activity");
}

} // namespace orvane::server
