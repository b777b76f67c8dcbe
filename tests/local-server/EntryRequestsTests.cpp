// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServerFixture.h"

#include <QTemporaryDir>

namespace orvane::server {

using namespace std::chrono_literals;
using namespace operations;

class EntryRequests : public ServerFixture {
protected:
    EntryRequests() { signInLocally(); }

    CreateTimeEntryRequest entry(std::string id, Instant start, std::optional<Instant> stop = {})
    {
        CreateTimeEntryRequest body;
        body.id = std::move(id);
        body.description = "Write the README";
        body.start = start;
        body.stop = stop;
        return body;
    }
    TimeEntryRequest contents(const TimeEntryResponse &from)
    {
        TimeEntryRequest body;
        body.description = from.description;
        body.projectId = from.projectId;
        body.taskId = from.taskId;
        body.tagIds = from.tagIds;
        body.isBillable = from.isBillable;
        body.start = from.start;
        body.stop = from.stop;
        return body;
    }
    HttpResponse create(const CreateTimeEntryRequest &body)
    {
        return call<CreateTimeEntry>({workspaceId, body});
    }
    TimeEntryResponse created(const CreateTimeEntryRequest &body)
    {
        return expect<CreateTimeEntry, Created<TimeEntryResponse>>({workspaceId, body}).body;
    }
    TimeEntryResponse get(const std::string &id)
    {
        return expect<GetTimeEntry, Ok<TimeEntryResponse>>({workspaceId, id}).body;
    }
    HttpResponse stop(const std::string &id, Instant at, std::optional<std::string> version = {})
    {
        return call<StopTimeEntry>({workspaceId, id, std::move(version), {at}});
    }
    HttpResponse update(const std::string &id, const TimeEntryRequest &body,
                        std::optional<std::string> version = {})
    {
        return call<UpdateTimeEntry>({workspaceId, id, std::move(version), body});
    }
    std::vector<std::string> listed(Instant from, Instant to)
    {
        std::vector<std::string> ids;
        for (const auto &found :
             expect<ListTimeEntries, Ok<std::vector<TimeEntryResponse>>>({workspaceId, from, to}).body)
            ids.push_back(found.id);
        return ids;
    }
    ProjectResponse project(const std::string &name)
    {
        ProjectRequest body;
        body.name = name;
        body.color = "#445566";
        return expect<CreateProject, Created<ProjectResponse>>({workspaceId, body}).body;
    }
    TaskResponse task(const std::string &projectId, const std::string &name)
    {
        TaskRequest body;
        body.name = name;
        return expect<CreateTask, Created<TaskResponse>>({workspaceId, projectId, body}).body;
    }
    std::string tag(const std::string &name)
    {
        return expect<CreateTag, Created<TagResponse>>({workspaceId, {name}}).body.id;
    }
    void changeSettings(const std::function<void(WorkspaceSettingsRequest &)> &change)
    {
        WorkspaceSettingsRequest body;
        body.name = "My workspace";
        body.currency = "EUR";
        change(body);
        expect<UpdateWorkspaceSettings, Ok<WorkspaceSettingsResponse>>({workspaceId, body});
    }
};

TEST_F(EntryRequests, AnEntryComesBackAsItWasSent)
{
    const ProjectResponse work = project("Work");
    CreateTimeEntryRequest body = entry("one", now, now + 90min + 7ms);
    body.projectId = work.id;
    body.taskId = task(work.id, "Docs").id;
    body.tagIds = {tag("b"), tag("a")};
    body.isBillable = true;
    body.shares = {{work.id, std::nullopt, true, 60, "most"},
                   {std::nullopt, std::nullopt, false, 40, "rest"}};
    body.describeParts = true;
    const TimeEntryResponse made = created(body);
    EXPECT_EQ(made.start, body.start);
    EXPECT_EQ(made.stop, body.stop);
    EXPECT_EQ(made.tagIds, body.tagIds);
    EXPECT_EQ(made.taskId, body.taskId);
    ASSERT_EQ(made.shares.size(), 2U);
    EXPECT_EQ(made.shares[1], (TimeShareResponse{std::nullopt, std::nullopt, false, 40, "rest"}));
    EXPECT_EQ(get("one"), made);
    const auto all =
        expect<ListTimeEntries, Ok<std::vector<TimeEntryResponse>>>({workspaceId, now, now + 1h});
    EXPECT_EQ(all.body, std::vector{made});
}

TEST_F(EntryRequests, TheSameCreationIsRecordedOnce)
{
    const CreateTimeEntryRequest body = entry("one", now - 1h);
    const TimeEntryResponse made = created(body);
    EXPECT_EQ((expect<CreateTimeEntry, Ok<TimeEntryResponse>>({workspaceId, body}).body), made);
    ASSERT_EQ(stop("one", now, made.version).status, 200);
    EXPECT_EQ((expect<CreateTimeEntry, Ok<TimeEntryResponse>>({workspaceId, body}).body), get("one"))
        << "delivered late, after a change to it";

    CreateTimeEntryRequest other = body;
    other.description = "Something else";
    EXPECT_EQ(create(other).status, 409);
    EXPECT_EQ(call<DeleteTimeEntry>({workspaceId, "one", std::nullopt}).status, 204);
    EXPECT_EQ(create(body).status, 409) << "what was deleted does not come back";
    EXPECT_TRUE(listed(now - 1h, now).empty());
}

TEST_F(EntryRequests, EntriesOfOthersCannotBeSeen)
{
    created(entry("mine", now - 1h, now));
    const std::string home = workspaceId;
    registerAccount();
    EXPECT_EQ((call<GetTimeEntry>({home, "mine"}).status), 404);
    workspaceId = me().workspaces.at(0).id;
    EXPECT_EQ((call<GetTimeEntry>({workspaceId, "mine"}).status), 404);
    EXPECT_EQ(create(entry("mine", now - 1h, now)).status, 409);
    EXPECT_EQ(stop("mine", now).status, 404);
    EXPECT_TRUE(listed(now - 1h, now).empty());
}

/// The other one is a member of the same workspace and asks for the very same thing, so that nothing but the
/// owner tells the two creations apart.
TEST_F(EntryRequests, AnIdentifierOfSomebodyElsesEntryIsRefused)
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("server.sqlite")).toStdString();
    openServer({}, {}, path);
    signInLocally();
    const auto body = entry("known", now - 1h, now);
    ASSERT_EQ(create(body).status, 201);
    const std::string owner = accessToken;

    const std::string registeredToken = registerAccount().accessToken;
    const std::string other = me().id;
    const auto database = Database::open(path);
    ASSERT_TRUE(database) << database.error();
    (*database)->run("INSERT INTO workspace_members (workspace_id, user_id, role) VALUES (?, ?, 'member')",
                     workspaceId, other);
    ASSERT_EQ(call<GetWorkspaceSettings>({workspaceId}).status, 200) << "a member by now";
    EXPECT_EQ(create(body).status, 409);
    EXPECT_EQ(create(entry("own", now - 1h, now)).status, 201);

    accessToken = owner;
    EXPECT_EQ(call<DeleteTimeEntry>({workspaceId, "known", {}}).status, 204);
    accessToken = registeredToken;
    EXPECT_EQ(create(body).status, 409) << "deleted or not";
}

TEST_F(EntryRequests, AVersionThatIsNotTheCurrentOneIsRefusedWithTheEntryAsItIs)
{
    const TimeEntryResponse made = created(entry("one", now - 1h));
    TimeEntryRequest body = contents(made);
    body.description = "Changed";
    ASSERT_EQ(update("one", body, made.version).status, 200);
    const TimeEntryResponse changed = get("one");
    EXPECT_NE(changed.version, made.version);

    for (const HttpResponse &refused : {update("one", body, made.version), stop("one", now, made.version),
                                        call<DeleteTimeEntry>({workspaceId, "one", made.version})}) {
        EXPECT_EQ(refused.status, 412);
        const auto problem = decodeJson<TimeEntryChangedProblem>(refused.body);
        ASSERT_TRUE(problem);
        EXPECT_EQ(problem->type, "urn:orvane:problem:entry-changed");
        EXPECT_EQ(problem->current, changed);
    }
    EXPECT_EQ(update("one", body).status, 200) << "without a version any will do";
    EXPECT_EQ(get("one").version, changed.version) << "what changes nothing makes no version";
    EXPECT_EQ(stop("one", now, "\"" + changed.version + "\"").status, 200);
    EXPECT_EQ(stop("one", now).status, 200) << "stopped already, at that time";
    EXPECT_EQ(stop("one", now + 1min).status, 412);
}

TEST_F(EntryRequests, StartingAnEntryStopsTheOneThatRuns)
{
    created(entry("first", now - 2h));
    created(entry("second", now - 1h));
    EXPECT_EQ(get("first").stop, now - 1h);
    EXPECT_EQ((expect<GetCurrentTimeEntry, Ok<TimeEntryResponse>>({}).body.id), "second");

    created(entry("earlier", now - 90min));
    EXPECT_EQ(get("second").stop, now) << "its time is not lost to a start entered for earlier";

    TimeEntryRequest again = contents(get("first"));
    again.stop.reset();
    EXPECT_EQ(update("first", again).status, 200);
    EXPECT_EQ(get("earlier").stop, now);
    EXPECT_EQ((expect<GetCurrentTimeEntry, Ok<TimeEntryResponse>>({}).body.id), "first");
    EXPECT_EQ(stop("first", now).status, 200);
    EXPECT_EQ(call<GetCurrentTimeEntry>({}).status, 204);
}

TEST_F(EntryRequests, AListHoldsWhatOverlapsItsRange)
{
    created(entry("before", now - 2h, now));
    created(entry("into", now - 1h, now + 1ms));
    created(entry("empty", now, now));
    created(entry("across", now - 1h, now + 2h));
    created(entry("last", now + 1h - 1ms, now + 2h));
    created(entry("after", now + 1h, now + 2h));
    created(entry("running", now - 3h));
    EXPECT_EQ(listed(now, now + 1h),
              (std::vector<std::string>{"running", "across", "into", "empty", "last"}));
    EXPECT_EQ(listed(now - 4h, now - 3h), std::vector<std::string>{});
    EXPECT_EQ((call<ListTimeEntries>({workspaceId, now, now}).status), 400);
}

TEST_F(EntryRequests, WhatCannotBeAnEntryIsRefusedByField)
{
    const ProjectResponse work = project("Work");
    const std::string foreignTask = task(project("Play").id, "Chess").id;
    const auto faultsOf = [&](const std::function<void(CreateTimeEntryRequest &)> &spoil) {
        CreateTimeEntryRequest body = entry("one", now - 1h, now);
        spoil(body);
        const HttpResponse response = create(body);
        EXPECT_EQ(response.status, 422) << response.body;
        std::vector<std::string> fields;
        for (const auto &[field, sentences] : fieldErrors(response))
            fields.push_back(field);
        return fields;
    };
    using Fields = std::vector<std::string>;
    EXPECT_EQ(faultsOf([&](auto &body) { body.stop = now - 2h; }), Fields{"stop"});
    EXPECT_EQ(faultsOf([&](auto &body) {
                  body.start = now + std::chrono::days{3650};
                  body.stop.reset();
              }),
              Fields{"start"});
    EXPECT_EQ(faultsOf([&](auto &body) { body.id = "../one"; }), Fields{"id"});
    EXPECT_EQ(faultsOf([&](auto &body) { body.description = std::string("a\0b", 3); }),
              Fields{"description"});
    EXPECT_EQ(faultsOf([&](auto &body) { body.projectId = "gone"; }), Fields{"projectId"});
    EXPECT_EQ(faultsOf([&](auto &body) { body.taskId = foreignTask; }), Fields{"taskId"});
    EXPECT_EQ(faultsOf([&](auto &body) {
                  body.projectId = work.id;
                  body.taskId = foreignTask;
              }),
              Fields{"taskId"});
    EXPECT_EQ(faultsOf([&](auto &body) { body.tagIds = {"gone"}; }), Fields{"tagIds"});
    EXPECT_EQ(
        faultsOf([&](auto &body) { body.shares = {{work.id, {}, true, 60, ""}, {{}, {}, true, 39, ""}}; }),
        Fields{"shares"});
    EXPECT_EQ(faultsOf([&](auto &body) { body.shares = {{"gone", {}, true, 100, ""}}; }),
              Fields{"shares[0].projectId"});
    EXPECT_TRUE(listed(now - 1h, now).empty());
}

TEST_F(EntryRequests, RequiredDetailsAreRequiredOnceAnEntryIsStopped)
{
    const ProjectResponse work = project("Work");
    const std::string docs = task(work.id, "Docs").id;
    const std::string urgent = tag("urgent");
    changeSettings([](auto &settings) {
        settings.requireDescription = settings.requireProject = settings.requireTask = settings.requireTag =
            true;
    });
    CreateTimeEntryRequest body = entry("one", now - 1h);
    body.description = "  ";
    const TimeEntryResponse running = created(body);
    const HttpResponse refused = stop("one", now, running.version);
    EXPECT_EQ(refused.status, 422);
    EXPECT_EQ(fieldErrors(refused).size(), 4U) << refused.body;
    EXPECT_FALSE(get("one").stop);

    TimeEntryRequest complete = contents(running);
    complete.description = "Docs";
    complete.projectId = work.id;
    complete.taskId = docs;
    complete.tagIds = {urgent};
    complete.stop = now;
    EXPECT_EQ(update("one", complete, running.version).status, 200);

    TimeEntryRequest split = complete;
    split.description = "";
    split.projectId.reset();
    split.taskId.reset();
    split.shares = {{work.id, docs, false, 50, "a"}, {work.id, docs, false, 50, "b"}};
    EXPECT_EQ(fieldErrors(update("one", split)).count("description"), 1U);
    split.describeParts = true;
    EXPECT_EQ(update("one", split).status, 200);
    split.shares[1].taskId.reset();
    EXPECT_EQ(fieldErrors(update("one", split)).count("taskId"), 1U);
}

TEST_F(EntryRequests, LockedTimeStaysAsItIs)
{
    created(entry("locked", now - 5h, now - 4h));
    created(entry("across", now - 3h, now - 1h));
    created(entry("running", now - 150min));
    changeSettings([&](auto &settings) { settings.lockedBefore = now - 2h; });

    TimeEntryRequest body = contents(get("locked"));
    body.description = "Rewritten";
    EXPECT_EQ(update("locked", body).status, 403);
    body = contents(get("across"));
    body.description = "Rewritten";
    EXPECT_EQ(update("across", body).status, 403);
    body = contents(get("across"));
    body.stop = now;
    EXPECT_EQ(update("across", body).status, 200) << "its end lies behind the lock";
    body.stop = now - 150min;
    EXPECT_EQ(update("across", body).status, 403);
    EXPECT_EQ(call<DeleteTimeEntry>({workspaceId, "locked", std::nullopt}).status, 403);
    EXPECT_EQ(create(entry("new", now - 3h, now)).status, 403);
    EXPECT_EQ(create(entry("new", now - 2h, now)).status, 201);
    EXPECT_EQ(stop("running", now - 140min).status, 403);
    EXPECT_EQ(stop("running", now).status, 200);
    EXPECT_EQ((call<BulkDeleteTimeEntries>({workspaceId, {{"new", "locked"}}}).status), 403);
    EXPECT_EQ(get("new").id, "new") << "all or none";
}

TEST_F(EntryRequests, BulkChangesAreMadeTogetherOrNotAtAll)
{
    const ProjectResponse work = project("Work");
    const std::string first = tag("first");
    const std::string second = tag("second");
    CreateTimeEntryRequest split = entry("split", now - 1h, now);
    split.shares = {{std::nullopt, std::nullopt, false, 100, ""}};
    split.tagIds = {first};
    created(split);
    created(entry("plain", now - 2h, now - 1h));

    BulkUpdateTimeEntriesRequest body;
    body.ids = {"split", "plain", "split"};
    body.project = ProjectChoice{work.id, std::nullopt};
    body.isBillable = true;
    body.addTagIds = {second};
    body.removeTagIds = {first};
    const auto changed =
        expect<BulkUpdateTimeEntries, Ok<std::vector<TimeEntryResponse>>>({workspaceId, body}).body;
    ASSERT_EQ(changed.size(), 2U);
    for (const auto &found : changed) {
        EXPECT_EQ(found, get(found.id));
        EXPECT_EQ(found.projectId, work.id);
        EXPECT_TRUE(found.isBillable && found.shares.empty());
        EXPECT_EQ(found.tagIds, std::vector{second});
        EXPECT_EQ(found.description, "Write the README");
    }
    body.ids = {"plain", "gone"};
    body.description = "Never";
    EXPECT_EQ((call<BulkUpdateTimeEntries>({workspaceId, body}).status), 404);
    EXPECT_EQ(get("plain").description, "Write the README");

    EXPECT_EQ((call<BulkDeleteTimeEntries>({workspaceId, {{"plain", "gone"}}}).status), 204);
    EXPECT_EQ(listed(now - 2h, now), std::vector<std::string>{"split"});
}

TEST_F(EntryRequests, EarlierEntriesAreSuggestedLatestFirst)
{
    CreateTimeEntryRequest old = entry("old", now - 5h, now - 4h);
    old.tagIds = {tag("x")};
    created(old);
    CreateTimeEntryRequest other = entry("other", now - 3h, now - 2h);
    other.description = "Überlegen";
    created(other);
    created(entry("again", now - 1h, now));

    const auto all =
        expect<SuggestTimeEntries, Ok<std::vector<TimeEntrySuggestion>>>({workspaceId, {}, {}}).body;
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].description, "Write the README");
    EXPECT_TRUE(all[0].tagIds.empty()) << "as they were the last time";
    const auto found =
        expect<SuggestDescriptions, Ok<std::vector<std::string>>>({workspaceId, "über", {}}).body;
    EXPECT_EQ(found, std::vector<std::string>{"Überlegen"});
    EXPECT_EQ((expect<SuggestDescriptions, Ok<std::vector<std::string>>>({workspaceId, {}, 1}).body.size()),
              1U);
    EXPECT_EQ((call<SuggestDescriptions>({workspaceId, {}, 51}).status), 400);
}

} // namespace orvane::server
