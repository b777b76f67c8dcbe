// SPDX-License-Identifier: GPL-3.0-or-later
// What agents propose, and what becomes of it.
#include "Database/Database.h"
#include "Proposals/Proposing.h"
#include "ServerFixture.h"

#include <QTemporaryDir>
#include <gmock/gmock.h>

namespace orvane::server {

using namespace std::chrono_literals;
using namespace operations;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Proposals : public ServerFixture {
protected:
    using Outcomes = std::vector<ProposalOutcomeResponse>;

    Proposals() { signInLocally(); }

    ProposedEntryRequest work(Instant start, Instant stop, std::string description = "Fix the login")
    {
        ProposedEntryRequest request;
        request.description = std::move(description);
        request.start = start;
        request.stop = stop;
        return request;
    }
    static ProposedChangeRequest changeOf(const TimeEntryResponse &entry)
    {
        ProposedChangeRequest request;
        request.entryId = entry.id;
        request.version = entry.version;
        return request;
    }

    Outcomes propose(std::vector<ProposedEntryRequest> entries)
    {
        return expect<ProposeEntries, Created<Outcomes>>({workspaceId, {std::move(entries), {}}}).body;
    }
    Outcomes propose(std::vector<ProposedChangeRequest> changed)
    {
        return expect<ProposeChanges, Created<Outcomes>>({workspaceId, {std::move(changed), {}}}).body;
    }
    template <class Item>
    AgentProposalResponse proposed(const Item &item)
    {
        const Outcomes outcomes = propose(std::vector{item});
        EXPECT_EQ(outcomes.size(), 1U);
        EXPECT_FALSE(outcomes.front().refusal) << outcomes.front().refusal->code;
        return outcomes.front().proposal.value_or(AgentProposalResponse{});
    }
    template <class Item>
    std::string refusal(const Item &item)
    {
        const Outcomes outcomes = propose(std::vector{item});
        const auto &refused = outcomes.front().refusal;
        EXPECT_TRUE(!refused || !refused->detail.empty());
        return refused ? refused->code : "";
    }

    AgentProposalsResponse listed()
    {
        return expect<ListAgentProposals, Ok<AgentProposalsResponse>>({workspaceId}).body;
    }
    AppliedAgentProposalResponse applied(const std::string &id)
    {
        return expect<ApplyAgentProposal, Ok<AppliedAgentProposalResponse>>({workspaceId, id}).body;
    }
    HttpResponse apply(const std::string &id) { return call<ApplyAgentProposal>({workspaceId, id}); }
    AgentProposalResponse reopened(const std::string &id)
    {
        return expect<ReopenAgentProposal, Ok<AgentProposalResponse>>({workspaceId, id}).body;
    }
    HttpResponse reopen(const std::string &id) { return call<ReopenAgentProposal>({workspaceId, id}); }
    HttpResponse resolve(const std::string &id, const std::string &resolution,
                         std::vector<std::string> entryIds = {})
    {
        return call<ResolveAgentProposal>({workspaceId, id, {resolution, std::move(entryIds), {}}});
    }

    TimeEntryResponse recorded(Instant start, std::optional<Instant> stop,
                               const std::function<void(CreateTimeEntryRequest &)> &with = {})
    {
        CreateTimeEntryRequest body;
        body.id = newIdentifier();
        body.description = "Write the README";
        body.start = start;
        body.stop = stop;
        if (with)
            with(body);
        return expect<CreateTimeEntry, Created<TimeEntryResponse>>({workspaceId, body}).body;
    }
    std::vector<TimeEntryResponse> entries()
    {
        return expect<ListTimeEntries, Ok<std::vector<TimeEntryResponse>>>(
                   {workspaceId, now - 24h * 60, now + 24h})
            .body;
    }
    TimeEntryResponse entry(const std::string &id)
    {
        return expect<GetTimeEntry, Ok<TimeEntryResponse>>({workspaceId, id}).body;
    }
    void describe(const TimeEntryResponse &entry, const std::string &description)
    {
        TimeEntryRequest body;
        body.description = description;
        body.start = entry.start;
        body.stop = entry.stop;
        (void)expect<UpdateTimeEntry, Ok<TimeEntryResponse>>({workspaceId, entry.id, {}, body});
    }
    ProjectResponse project(const std::string &name, bool isBillable = false)
    {
        ProjectRequest body;
        body.name = name;
        body.color = "#445566";
        body.isBillable = isBillable;
        return expect<CreateProject, Created<ProjectResponse>>({workspaceId, body}).body;
    }
    TaskResponse task(const std::string &projectId, const std::string &name, bool isActive = true)
    {
        TaskRequest body;
        body.name = name;
        body.isActive = isActive;
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
    static ProposedPartRequest part(std::optional<std::string> projectId, std::int64_t percent,
                                    std::string description = {})
    {
        ProposedPartRequest request;
        request.projectId = std::move(projectId);
        request.percent = percent;
        request.description = std::move(description);
        return request;
    }
    bool wasTold(ChangeTopic topic)
    {
        const bool found = std::ranges::any_of(changes, [&](const Change &change) {
            return change.topic == topic && change.workspaceId == workspaceId && !change.userId.empty();
        });
        changes.clear();
        return found;
    }
};

/// An entry without what changes whenever it is written.
TimeEntryResponse withoutVersion(TimeEntryResponse entry)
{
    entry.version.clear();
    return entry;
}

TEST_F(Proposals, WorkWaitsUntilItIsAppliedAndGoesWhenReopened)
{
    const ProjectResponse site = project("Website", true);
    ProposedEntryRequest request = work(now - 2h, now - 1h);
    request.projectId = site.id;
    request.taskId = task(site.id, "Docs").id;
    request.tagIds = {tag("b"), tag("a")};
    request.tagIds.push_back(request.tagIds.front());
    request.reason = "You edited the login there.";
    changes.clear();
    const AgentProposalResponse made = proposed(request);
    EXPECT_TRUE(wasTold(ChangeTopic::proposals));
    EXPECT_EQ(made.status, "pending");
    EXPECT_EQ(made.note, "You edited the login there.");
    EXPECT_FALSE(made.agentName.empty());
    EXPECT_FALSE(made.entryId);
    EXPECT_THAT(entries(), IsEmpty());
    EXPECT_EQ(listed().proposals, std::vector{made});

    const AppliedAgentProposalResponse done = applied(made.id);
    EXPECT_TRUE(wasTold(ChangeTopic::timeEntries));
    ASSERT_EQ(done.entries.size(), 1U);
    const TimeEntryResponse &record = done.entries.front();
    EXPECT_EQ(entries(), done.entries);
    EXPECT_EQ(done.proposal.entryId, record.id);
    EXPECT_EQ(done.proposal.status, "applied");
    EXPECT_EQ(record.taskId, request.taskId);
    EXPECT_EQ(record.tagIds.size(), 2U);
    EXPECT_TRUE(record.isBillable) << "as its project is";
    EXPECT_EQ(record.stop, request.stop);
    // Delivered twice.
    EXPECT_EQ(applied(made.id), done);
    EXPECT_EQ(entries().size(), 1U);
    EXPECT_EQ(resolve(made.id, "dismissed").status, 409);

    changes.clear();
    EXPECT_EQ(reopened(made.id), made);
    EXPECT_TRUE(wasTold(ChangeTopic::proposals));
    EXPECT_THAT(entries(), IsEmpty());
    EXPECT_EQ(listed().pendingCount, 1);
    EXPECT_EQ(applied(made.id).entries.size(), 1U);
}

TEST_F(Proposals, AChangeHoldsBeforeAndAfterAndComesBackAsItWas)
{
    const ProjectResponse site = project("Website");
    const ProjectResponse chores = project("Chores", true);
    const std::string docs = tag("docs");
    const std::string review = tag("review");
    const TimeEntryResponse before = recorded(now - 2h, now - 1h, [&](CreateTimeEntryRequest &body) {
        body.tagIds = {docs};
        body.shares = {{site.id, {}, false, 70, "text"}, {{}, {}, false, 30, ""}};
        body.describeParts = true;
    });
    ProposedChangeRequest request = changeOf(before);
    request.description = before.description;
    request.tagIds = {review, docs};
    request.start = before.start - 10min;
    request.parts = {part(site.id, 40), part(chores.id, 60, "deps")};
    const AgentProposalResponse made = proposed(request);
    EXPECT_EQ(made.entryId, before.id);
    ASSERT_TRUE(made.plan.before && made.plan.changes);
    EXPECT_EQ(made.plan.before->version, before.version);
    EXPECT_EQ(made.plan.before->shares, before.shares);
    const ProposedFieldsResponse &fields = *made.plan.changes;
    EXPECT_FALSE(fields.description) << "it is that already";
    EXPECT_FALSE(fields.stop);
    EXPECT_TRUE(fields.replaceTags);
    EXPECT_THAT(fields.tagIds.value_or(std::vector<std::string>()), ElementsAre(docs, review));
    EXPECT_EQ(entry(before.id), before);

    const TimeEntryResponse after = applied(made.id).entries.at(0);
    EXPECT_EQ(after.start, before.start - 10min);
    EXPECT_EQ(after.description, before.description);
    ASSERT_EQ(after.shares.size(), 2U);
    EXPECT_EQ(after.shares[1], (TimeShareResponse{chores.id, {}, true, 60, "deps"}));

    const AgentProposalResponse open = reopened(made.id);
    EXPECT_EQ(withoutVersion(entry(before.id)), withoutVersion(before));
    EXPECT_EQ(open.plan.before->version, entry(before.id).version);
    EXPECT_EQ(withoutVersion(applied(made.id).entries.at(0)), withoutVersion(after));
}

TEST_F(Proposals, ADeletionIsUndoneUnderTheSameIdentifier)
{
    const TimeEntryResponse before = recorded(now - 2h, now - 1h);
    ProposedChangeRequest request = changeOf(before);
    request.remove = true;
    const AgentProposalResponse made = proposed(request);
    EXPECT_EQ(made.plan.action, "remove");
    EXPECT_THAT(applied(made.id).entries, IsEmpty());
    EXPECT_THAT(entries(), IsEmpty());
    reopened(made.id);
    EXPECT_EQ(withoutVersion(entry(before.id)), withoutVersion(before));
    applied(made.id);
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(Proposals, AnEntryThatMovedOnIsLeftAlone)
{
    const TimeEntryResponse before = recorded(now - 2h, now - 1h);
    ProposedChangeRequest request = changeOf(before);
    request.description = "Rewrite the README";
    const AgentProposalResponse made = proposed(request);
    describe(before, "Write the manual");
    const HttpResponse late = apply(made.id);
    EXPECT_EQ(late.status, 409);
    EXPECT_THAT(late.body, HasSubstr("The entry has changed since this was proposed."));
    EXPECT_EQ(entry(before.id).description, "Write the manual");
    EXPECT_EQ(listed().pendingCount, 1);

    request.version = entry(before.id).version;
    const AgentProposalResponse again = proposed(request);
    applied(again.id);
    describe(before, "Write the manual anew");
    EXPECT_EQ(reopen(again.id).status, 409);
    EXPECT_EQ(entry(before.id).description, "Write the manual anew");
    EXPECT_EQ(call<DeleteTimeEntry>({workspaceId, before.id, {}}).status, 204);
    EXPECT_THAT(reopen(again.id).body, HasSubstr("deleted"));
    EXPECT_THAT(apply(made.id).body, HasSubstr("deleted"));
}

TEST_F(Proposals, NothingIsTakenBackAtTheCostOfAnotherTimer)
{
    const TimeEntryResponse running = recorded(now - 1h, {});
    ProposedChangeRequest request = changeOf(running);
    request.stop = now - 30min;
    const AgentProposalResponse made = proposed(request);
    applied(made.id);
    const TimeEntryResponse next = recorded(now - 10min, {});
    EXPECT_THAT(reopen(made.id).body, HasSubstr("another one runs now"));
    EXPECT_EQ(entry(next.id), next);
    EXPECT_EQ(entry(running.id).stop, now - 30min);
    EXPECT_EQ(call<DeleteTimeEntry>({workspaceId, next.id, {}}).status, 204);
    reopened(made.id);
    EXPECT_FALSE(entry(running.id).stop);
}

TEST_F(Proposals, SaysOfEachItemWhyNot)
{
    const ProjectResponse site = project("Website");
    const ProjectResponse old = project("Old");
    const TimeEntryResponse onOld =
        recorded(now - 9h, now - 8h, [&](auto &body) { body.projectId = old.id; });
    (void)expect<ArchiveProject, Ok<ProjectResponse>>({workspaceId, old.id});
    const std::string idle = task(site.id, "Idle", false).id;
    const TimeEntryResponse there = recorded(now - 6h, now - 5h);

    std::vector<std::pair<std::string, ProposedEntryRequest>> cases;
    const auto with = [&](const std::string &code, const auto &change) {
        ProposedEntryRequest request = work(now - 2h, now - 1h);
        request.reference = code;
        change(request);
        cases.emplace_back(code, request);
    };
    with("timesNotInOrder", [](auto &item) { item.stop = item.start; });
    with("tooLong", [](auto &item) { item.start -= 25h; });
    with("inTheFuture", [](auto &item) { item.stop += 2h; });
    with("unknownProject", [](auto &item) { item.projectId = "nowhere"; });
    with("archivedProject", [&](auto &item) { item.projectId = old.id; });
    with("unknownTask", [&](auto &item) {
        item.projectId = site.id;
        item.taskId = "nothing";
    });
    with("unknownTask", [](auto &item) { item.taskId = "homeless"; });
    with("inactiveTask", [&](auto &item) {
        item.projectId = site.id;
        item.taskId = idle;
    });
    with("unknownTag", [](auto &item) { item.tagIds = {"nothing"}; });
    with("percents", [&](auto &item) { item.parts = {part(site.id, 60), part({}, 50)}; });
    with("unknownProject", [](auto &item) { item.parts = {part("nowhere", 100)}; });
    with("unreadableText", [](auto &item) { item.description = "\x1b[31mred"; });
    with("unreadableText", [](auto &item) { item.reason = "\x07"; });
    with("overlaps", [&](auto &item) {
        item.start = there.start - 1h;
        item.stop = there.start + 1min;
    });
    with("tooLarge", [&](auto &item) { item.parts.assign(20, part({}, 5, std::string(2000, 'x'))); });
    with("", [](auto &) {});
    with("duplicate", [](auto &) {});
    with("", [&](auto &item) {
        item.start = there.stop.value_or(now);
        item.stop = there.stop.value_or(now) + 1h;
    });
    std::vector<ProposedEntryRequest> items;
    for (const auto &[code, item] : cases)
        items.push_back(item);
    const Outcomes outcomes = propose(items);
    ASSERT_EQ(outcomes.size(), cases.size());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        EXPECT_EQ(outcomes[i].reference, cases[i].first);
        EXPECT_EQ(outcomes[i].proposal.has_value(), cases[i].first.empty()) << i;
        EXPECT_EQ(outcomes[i].refusal ? outcomes[i].refusal->code : "", cases[i].first) << i;
    }
    EXPECT_EQ(listed().pendingCount, 2);

    ProposedChangeRequest change = changeOf(there);
    EXPECT_EQ(refusal(change), "nothingToChange");
    change.version = "older";
    change.description = "More";
    EXPECT_EQ(refusal(change), "versionChanged");
    change.entryId = "nowhere";
    EXPECT_EQ(refusal(change), "unknownEntry");
    // What the user has in it already is not the agent's doing.
    ProposedChangeRequest kept = changeOf(onOld);
    kept.description = "Archived since";
    EXPECT_EQ(refusal(kept), "");
    EXPECT_EQ(refusal(kept), "duplicate");
}

TEST_F(Proposals, TheWorkspacesRulesHoldThen)
{
    const TimeEntryResponse locked = recorded(now - 50h, now - 49h);
    ProposedChangeRequest change = changeOf(locked);
    change.remove = true;
    const AgentProposalResponse removal = proposed(change);
    const AgentProposalResponse early = proposed(work(now - 48h, now - 47h));
    const AgentProposalResponse late = proposed(work(now - 2h, now - 1h));
    const AgentProposalResponse done = proposed(work(now - 46h, now - 45h));
    const std::string made = applied(done.id).entries.at(0).id;
    changeSettings([&](WorkspaceSettingsRequest &body) {
        body.lockedBefore = now - 24h;
        body.requireProject = true;
    });
    EXPECT_EQ(apply(removal.id).status, 403);
    EXPECT_EQ(reopen(done.id).status, 403);
    EXPECT_EQ(entry(made).id, made);
    const HttpResponse lacking = apply(late.id);
    EXPECT_EQ(lacking.status, 400);
    EXPECT_TRUE(fieldErrors(lacking).contains("projectId"));
    EXPECT_EQ(listed().pendingCount, 3);
    EXPECT_EQ(refusal(work(now - 4h, now - 3h)), "detailRequired");
    EXPECT_EQ(refusal(work(now - 40h, now - 39h)), "locked");
    EXPECT_EQ(refusal(change), "locked");

    changeSettings([&](WorkspaceSettingsRequest &body) { body.lockedBefore = now - 24h; });
    EXPECT_EQ(apply(early.id).status, 403);
    EXPECT_EQ(apply(late.id).status, 200);
}

TEST_F(Proposals, TimeThatWasTrackedMeanwhileIsNotRecordedTwice)
{
    const AgentProposalResponse one = proposed(work(now - 2h, now - 1h));
    ProposedEntryRequest other = work(now - 2h, now - 90min);
    other.description = "The same hour in other words";
    const AgentProposalResponse two = proposed(other);
    applied(one.id);
    const HttpResponse late = apply(two.id);
    EXPECT_EQ(late.status, 409);
    EXPECT_THAT(late.body, HasSubstr("covers part of this time already"));
    EXPECT_EQ(entries().size(), 1U);
}

TEST_F(Proposals, AProjectThatGoesMeanwhile)
{
    const ProjectResponse site = project("Website");
    ProposedEntryRequest request = work(now - 2h, now - 1h);
    request.projectId = site.id;
    const AgentProposalResponse made = proposed(request);
    const TimeEntryResponse before =
        recorded(now - 5h, now - 4h, [&](auto &body) { body.projectId = site.id; });
    ProposedChangeRequest change = changeOf(before);
    change.project = ProjectChoice{};
    const AgentProposalResponse moved = proposed(change);
    applied(moved.id);
    EXPECT_EQ(call<DeleteProject>({workspaceId, site.id}).status, 204);
    EXPECT_TRUE(fieldErrors(apply(made.id)).contains("projectId"));
    EXPECT_THAT(reopen(moved.id).body, HasSubstr("The project is not there any more."));
    EXPECT_FALSE(entry(before.id).projectId);
}

TEST_F(Proposals, AreSettledOrWithdrawnOnce)
{
    const AgentProposalResponse no = proposed(work(now - 2h, now - 1h));
    const AgentProposalResponse byHand = proposed(work(now - 4h, now - 3h));
    const AgentProposalResponse gone = proposed(work(now - 6h, now - 5h));
    EXPECT_EQ(resolve(no.id, "approved").status, 400);
    EXPECT_EQ(resolve(no.id, "dismissed").status, 200);
    EXPECT_EQ(resolve(no.id, "dismissed").status, 200);
    EXPECT_EQ(resolve(no.id, "handled").status, 409);
    EXPECT_EQ(apply(no.id).status, 409);
    EXPECT_EQ(resolve(byHand.id, "handled", {"nowhere"}).status, 400);
    const std::string entryId = recorded(now - 4h, now - 3h).id;
    EXPECT_EQ(resolve(byHand.id, "handled", {entryId}).status, 200);
    const WithdrawAgentProposalsRequest ids{{gone.id, no.id, gone.id, "nowhere"}};
    EXPECT_EQ((expect<WithdrawAgentProposals, Ok<WithdrawAgentProposalsResponse>>({workspaceId, ids})
                   .body.withdrawnIds),
              std::vector{gone.id});
    EXPECT_EQ(reopen(gone.id).status, 409);
    EXPECT_EQ(apply(gone.id).status, 409);

    std::map<std::string, std::string> statuses;
    for (const AgentProposalResponse &one : listed().proposals) {
        statuses[one.id] = one.status;
        EXPECT_TRUE(one.resolvedAt);
        if (one.id == byHand.id)
            EXPECT_EQ(one.entryId, entryId);
    }
    EXPECT_EQ(statuses,
              (decltype(statuses){{no.id, "dismissed"}, {byHand.id, "handled"}, {gone.id, "withdrawn"}}));
    EXPECT_EQ(reopened(no.id), no);
    EXPECT_EQ(reopened(byHand.id), byHand);
    EXPECT_EQ(entry(entryId).id, entryId) << "what was done by hand stays";
}

TEST_F(Proposals, OnlyTheWorkThatWaitsIsBounded)
{
    std::vector<ProposedEntryRequest> hundred;
    for (int i = 0; i < 100; ++i) {
        const Instant start = now - std::chrono::hours(i / 10 + 2);
        hundred.push_back(work(start, start + 1h, "Item " + std::to_string(i)));
        if (i % 7 == 3)
            hundred.back().stop = start;
    }
    const Outcomes outcomes = propose(hundred);
    ASSERT_EQ(outcomes.size(), 100U);
    std::vector<std::string> made;
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(outcomes[static_cast<std::size_t>(i)].refusal.has_value(), i % 7 == 3);
        if (const auto &one = outcomes[static_cast<std::size_t>(i)].proposal)
            made.push_back(one->id);
    }
    std::vector<std::string> ids;
    for (const AgentProposalResponse &one : listed().proposals)
        ids.push_back(one.id);
    EXPECT_EQ(ids, made) << "those of one request stay in its order";

    int round = 0;
    const auto fill = [&] {
        for (ProposedEntryRequest &item : hundred)
            item.description = "Round " + std::to_string(round) + " " + newIdentifier();
        ++round;
        return call<ProposeEntries>({workspaceId, {hundred, {}}}).status;
    };
    while (listed().pendingCount <= 400)
        ASSERT_EQ(fill(), 201);
    const auto pending = listed().pendingCount;
    EXPECT_EQ(fill(), 429);
    EXPECT_EQ(listed().pendingCount, pending) << "nothing of it was taken";
    hundred.push_back(hundred.front());
    EXPECT_EQ(fill(), 400);

    now += 31 * 24h;
    signInLocally();
    EXPECT_EQ(listed().pendingCount, pending) << "what waits, waits";
}

TEST_F(Proposals, SettledOnesAreShownForAMonthAndThenForgotten)
{
    const AgentProposalResponse old = proposed(work(now - 2h, now - 1h));
    EXPECT_EQ(resolve(old.id, "dismissed").status, 200);
    now += 29 * 24h;
    signInLocally();
    EXPECT_EQ(listed().proposals.size(), 1U);
    now += 2 * 24h;
    signInLocally();
    EXPECT_THAT(listed().proposals, IsEmpty());
    EXPECT_EQ(reopen(old.id).status, 200);
    EXPECT_EQ(resolve(old.id, "dismissed").status, 200);
    now += 31 * 24h;
    signInLocally();
    proposed(work(now - 2h, now - 1h));
    EXPECT_EQ(reopen(old.id).status, 404);
}

TEST_F(Proposals, AreNobodyElsesToSee)
{
    const AgentProposalResponse made = proposed(work(now - 2h, now - 1h));
    const TimeEntryResponse entry = recorded(now - 5h, now - 4h);
    const std::string home = workspaceId;
    const auto other = expect<CreateWorkspace, Created<WorkspaceSummary>>({{"Other", {}}}).body.id;
    workspaceId = other;
    EXPECT_THAT(listed().proposals, IsEmpty());
    EXPECT_EQ(apply(made.id).status, 404);
    ProposedChangeRequest change = changeOf(entry);
    change.description = "From elsewhere";
    EXPECT_EQ(refusal(change), "unknownEntry");

    // A colleague of the same workspace.
    QTemporaryDir folder;
    openServer({}, {}, folder.filePath(QStringLiteral("server.sqlite")).toStdString());
    signInLocally();
    const AgentProposalResponse mine = proposed(work(now - 2h, now - 1h));
    const std::string shared = workspaceId;
    registerAccount();
    const auto database = Database::connect(databasePath);
    ASSERT_TRUE(database);
    EXPECT_EQ(call<ListAgentProposals>({shared}).status, 404);
    (*database)->run("INSERT INTO workspace_members (workspace_id, user_id, role) VALUES (?, ?, 'owner')",
                     shared, me().id);
    workspaceId = shared;
    EXPECT_THAT(listed().proposals, IsEmpty());
    EXPECT_EQ(apply(mine.id).status, 404);
    EXPECT_EQ(resolve(mine.id, "dismissed").status, 404);
    EXPECT_EQ(reopen(mine.id).status, 404);
    const WithdrawAgentProposalsRequest ids{{mine.id}};
    EXPECT_THAT(
        (expect<WithdrawAgentProposals, Ok<WithdrawAgentProposalsResponse>>({shared, ids}).body.withdrawnIds),
        IsEmpty());
}

TEST_F(Proposals, AgentsHaveNamesThatCanBeShown)
{
    EXPECT_EQ(shownAgentName("  Codex\n\x1b[2J  "), "Codex  [2J");
    EXPECT_FALSE(shownAgentName(" \t ").empty());
    std::string umlauts;
    for (int i = 0; i < 80; ++i)
        umlauts += "ü";
    EXPECT_EQ(shownAgentName("a" + umlauts).size(), 99U) << "cut between letters";
}

} // namespace orvane::server
