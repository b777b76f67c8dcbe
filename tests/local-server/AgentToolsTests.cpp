// SPDX-License-Identifier: GPL-3.0-or-later
// What an agent's tools give, to whom, and what they never do.
#include "Agents/UserZone.h"
#include "Entries/EntryRecords.h"
#include "McpFixture.h"

namespace orvane::server {

using namespace std::chrono_literals;
using namespace operations;

namespace {

/// The paths of what a schema takes and says nothing about.
std::vector<std::string> unexplained(const QJsonObject &schema, const std::string &path)
{
    std::vector<std::string> out;
    const QJsonObject members = schema[QLatin1String("properties")].toObject();
    for (auto member = members.begin(); member != members.end(); ++member) {
        const std::string name = path + "." + member.key().toStdString();
        const QJsonObject described = member->toObject();
        if (described[QLatin1String("description")].toString().isEmpty())
            out.push_back(name);
        for (const QJsonObject &inner : {described, described[QLatin1String("items")].toObject()}) {
            const auto found = unexplained(inner, name);
            out.insert(out.end(), found.begin(), found.end());
        }
    }
    return out;
}

} // namespace

class AgentToolsTest : public McpFixture {
protected:
    Instant at(int year, unsigned month, unsigned day, std::chrono::minutes time) const
    {
        return std::chrono::sys_days(std::chrono::year(year) / std::chrono::month(month) /
                                     std::chrono::day(day)) +
               time;
    }
    std::vector<std::string> listed(const std::string &arguments)
    {
        return each(call("list_entries", arguments), "entries", "id");
    }
    std::string otherWorkspace(const std::string &name)
    {
        return expect<CreateWorkspace, Created<WorkspaceSummary>>({{name, {}}}).body.id;
    }
    AgentProposalsResponse waiting()
    {
        return expect<ListAgentProposals, Ok<AgentProposalsResponse>>({workspaceId}).body;
    }
};

TEST_F(AgentToolsTest, ListsTheUsersOwnDays)
{
    // Paris is an hour ahead of UTC: the last evening of February is still its last day at 22:30 UTC.
    entry("evening", at(2026, 2, 28, 22h + 30min), at(2026, 2, 28, 22h + 45min));
    entry("night", at(2026, 2, 28, 22h + 50min), at(2026, 2, 28, 23h + 30min), "Over midnight");
    entry("running", at(2026, 3, 1, 8h), {});
    EXPECT_EQ(listed("{}"), (std::vector<std::string>{"night", "running"})) << "today";
    EXPECT_EQ(listed(R"({"day": "2026-02-28"})"), (std::vector<std::string>{"evening", "night"}));
    EXPECT_EQ(listed(R"({"from": "2026-02-01", "to": "2026-03-01"})"),
              (std::vector<std::string>{"evening", "night", "running"}));

    const QJsonObject today = call("list_entries");
    EXPECT_EQ(textIn(today, "timeZone"), "Europe/Paris");
    EXPECT_EQ(textIn(today, "from"), "2026-03-01");
    const QJsonArray entries = today[QLatin1String("entries")].toArray();
    EXPECT_EQ(textIn(entries[0].toObject(), "start"), "2026-02-28T23:50:00+01:00");
    EXPECT_EQ(textIn(entries[0].toObject(), "stop"), "2026-03-01T00:30:00+01:00");
    EXPECT_FALSE(entries[1].toObject().contains(QLatin1String("stop")));
    EXPECT_EQ(entries[1][QLatin1String("seconds")].toInt(), 3600) << "so far";
    EXPECT_EQ(textIn(call("running_entry")[QLatin1String("entry")].toObject(), "id"), "running");
    // The clocks change on the 29th: a day of 23 hours, behind other offsets.
    now = at(2026, 3, 30, 10h);
    (void)signInLocally();
    token = signAgentIn({workspaceId}).access;
    entry("spring", at(2026, 3, 29, 21h + 30min), at(2026, 3, 29, 21h + 45min));
    EXPECT_EQ(listed(R"({"day": "2026-03-29"})"), (std::vector<std::string>{"running", "spring"}));
    EXPECT_EQ(each(call("list_entries", R"({"day": "2026-03-29"})"), "entries", "start").back(),
              "2026-03-29T23:30:00+02:00");
}

TEST(UserZoneTest, WritesTimesAsTheUsersClockShowsThem)
{
    const auto shown = [](const char *zone, std::int64_t milliseconds) {
        return UserZone(zone).time(instantFromMilliseconds(milliseconds)).text;
    };
    EXPECT_EQ(shown("Asia/Kolkata", 1'772'355'600'000), "2026-03-01T14:30:00+05:30");
    EXPECT_EQ(shown("America/St_Johns", 1'772'355'600'250), "2026-03-01T05:30:00.250-03:30");
    EXPECT_EQ(shown("Nowhere/Here", 1'772'355'600'000), "2026-03-01T09:00:00+00:00");
    // Samoa skipped the 30th of December 2011 altogether.
    const UserZone samoa("Pacific/Apia");
    using namespace std::chrono;
    EXPECT_EQ(samoa.startOf(2011y / December / 30), samoa.startOf(2011y / December / 31));
    EXPECT_EQ(samoa.day(samoa.startOf(2011y / December / 31)), 2011y / December / 31);
}

TEST_F(AgentToolsTest, ExplainsEveryArgument)
{
    const QJsonArray tools = ask("tools/list")[QLatin1String("result")][QLatin1String("tools")].toArray();
    EXPECT_EQ(tools.size(), 9);
    for (const auto &tool : tools)
        EXPECT_EQ(unexplained(tool[QLatin1String("inputSchema")].toObject(), textIn(tool.toObject(), "name")),
                  std::vector<std::string>{});
}

TEST_F(AgentToolsTest, SaysWhatIsWrongWithItsArguments)
{
    struct Case {
        std::string tool, arguments, says;
    };
    const std::vector<Case> cases{
        {"list_entries", R"({"from": "2026-01-01", "to": "2026-02-01"})", "at most 31 days"},
        {"list_entries", R"({"from": "2026-02-02", "to": "2026-02-01"})", "must not lie before"},
        {"list_entries", R"({"from": "2026-02-02"})", "both from and to"},
        {"list_entries", R"({"day": "today"})", "The argument day is not a day."},
        {"list_entries", R"({"date": "2026-02-02"})", "There is no argument date."},
        {"propose_entries", "{}", "The argument entries is missing."},
        {"propose_entries", oneEntry(R"(, "project": "api")"), "There is no argument entries[0].project."},
        {"propose_entries", oneEntry(R"(, "parts": [{"percents": 5}])"),
         "There is no argument entries[0].parts[0].percents."},
        {"propose_entries", R"({"entries": [{"description": "x", "start": "9:00", "stop": "10:00"}]})",
         "such as 2026-03-01T09:30:00+01:00"},
        {"propose_entries", R"({"entries": []})", "entries"},
        {"propose_changes", R"({"changes": [{"entryId": "x"}]})", "changes[0].version is missing"},
        {"withdraw_proposals", R"({"ids": []})", "ids"},
        {"list_proposals", R"({"status": "open"})", "none of the known values"},
        {"list_tags", R"({"workspaceId": "elsewhere"})", "list_workspaces has those"},
    };
    for (const auto &[tool, arguments, says] : cases)
        EXPECT_TRUE(refusal(tool, arguments).contains(says)) << tool << arguments << refusal(tool, arguments);
    EXPECT_TRUE(waiting().proposals.empty());
}

TEST_F(AgentToolsTest, ProposesWithoutTouchingAnEntry)
{
    const TimeEntryResponse before = entry("old", at(2026, 2, 27, 8h), at(2026, 2, 27, 9h));
    changes.clear();
    const std::string added = proposed();
    now += 1s;
    const QJsonObject changed =
        call("propose_changes", R"({"note": "Seen in the log", "changes": [{"entryId": "old", "version": ")" +
                                    before.version + R"(", "description": "Write the guide", "tagIds": []},
                               {"reference": "late", "entryId": "old", "version": "x", "remove": true}]})");
    EXPECT_EQ(changed[QLatin1String("waiting")].toInt(), 1);
    EXPECT_EQ(changed[QLatin1String("refused")].toInt(), 1);
    const QJsonObject refused = changed[QLatin1String("outcomes")][1].toObject();
    EXPECT_EQ(textIn(refused, "reference"), "late");
    EXPECT_EQ(textIn(refused[QLatin1String("refusal")].toObject(), "code"), "versionChanged");
    EXPECT_EQ(changes, (std::vector<Change>(2, {ChangeTopic::proposals, workspaceId, me().id})));

    EXPECT_EQ((expect<GetTimeEntry, Ok<TimeEntryResponse>>({workspaceId, "old"}).body), before);
    const auto proposals = waiting().proposals;
    ASSERT_EQ(proposals.size(), 2U);
    EXPECT_EQ(proposals[0].note, "Seen in the log");
    EXPECT_EQ(proposals[0].agentName, "Claude Code");
    EXPECT_EQ(proposals[1].id, added);
    ASSERT_TRUE(proposals[1].plan.work);
    EXPECT_EQ(proposals[1].plan.work->range.start, at(2026, 2, 28, 8h));
    const auto applied =
        expect<ApplyAgentProposal, Ok<AppliedAgentProposalResponse>>({workspaceId, proposals[0].id}).body;
    EXPECT_EQ(applied.entries[0].description, "Write the guide");
    const QJsonObject told = call("list_proposals", R"({"status": "applied"})");
    EXPECT_EQ(each(told, "proposals", "entryId"), std::vector<std::string>{"old"});
    EXPECT_EQ(each(told, "proposals", "answeredAt"), std::vector<std::string>{"2026-03-01T10:00:01+01:00"});
}

TEST_F(AgentToolsTest, ReachesTheWorkspacesThatItWasLetInto)
{
    const std::string first = workspaceId;
    workspaceId = otherWorkspace("Studio");
    entry("elsewhere", at(2026, 3, 1, 8h), {});
    EXPECT_EQ(each(call("list_workspaces"), "workspaces", "id"), std::vector<std::string>{first});
    EXPECT_FALSE(call("running_entry").contains(QLatin1String("entry")));
    for (const char *tool : {"list_projects", "list_tags", "list_entries", "list_proposals"})
        EXPECT_FALSE(refusal(tool, R"({"workspaceId": ")" + workspaceId + "\"}").empty()) << tool;
    EXPECT_FALSE(
        refusal("propose_entries", R"({"workspaceId": ")" + workspaceId + "\", " + oneEntry().substr(1))
            .empty());
    EXPECT_TRUE(waiting().proposals.empty());
    // One that may go there has to say where it means, unless there is but one.
    token = signAgentIn({workspaceId}).access;
    EXPECT_EQ(listed("{}"), std::vector<std::string>{"elsewhere"});
    token = signAgentIn({workspaceId, otherWorkspace("Third")}).access;
    EXPECT_TRUE(refusal("list_entries").contains("Say in which workspace"));
    EXPECT_EQ(listed(R"({"workspaceId": ")" + workspaceId + "\"}"), std::vector<std::string>{"elsewhere"});
}

TEST_F(AgentToolsTest, SeesAndWithdrawsItsOwnProposalsAlone)
{
    const std::string id = proposed();
    const std::string mine = token;
    const auto withdraw = [&] {
        (void)call("withdraw_proposals", R"({"ids": [")" + id + R"(", "no-such"]})");
    };
    const std::string clientId = registerAgent("Another Agent");
    token = tokensIn(clientId, exchange(clientId, codeFrom(answer(authorization(clientId), {workspaceId}))))
                .access;
    EXPECT_TRUE(call("list_proposals")[QLatin1String("proposals")].toArray().isEmpty());
    withdraw();
    EXPECT_EQ(waiting().pendingCount, 1);
    const std::string owner = accessToken;
    (void)registerAccount();
    token = signAgentIn().access;
    EXPECT_TRUE(call("list_proposals")[QLatin1String("proposals")].toArray().isEmpty());
    withdraw();
    accessToken = owner;
    EXPECT_EQ(waiting().pendingCount, 1) << "another user's agent is a stranger";
    token = mine;
    withdraw();
    EXPECT_EQ(waiting().pendingCount, 0);
    EXPECT_EQ(each(call("list_proposals"), "proposals", "status"), std::vector<std::string>{"withdrawn"});
}

TEST_F(AgentToolsTest, ReadsOnlyWhereTheUserSaidSo)
{
    const std::string clientId = registerAgent();
    OAuthAuthorizationRequest request = authorization(clientId);
    request.scope = "time:read";
    token = tokensIn(clientId, exchange(clientId, codeFrom(answer(request, {workspaceId})))).access;
    EXPECT_EQ(toolNames(), (std::vector<std::string>{"list_workspaces", "list_projects", "list_tags",
                                                     "list_entries", "running_entry", "list_proposals"}));
    EXPECT_TRUE(refusal("propose_entries", oneEntry()).contains("The user lets you read"));
    EXPECT_TRUE(waiting().proposals.empty());
    EXPECT_TRUE(listed("{}").empty());
}

TEST_F(AgentToolsTest, CutsLongListsAndSaysSo)
{
    const std::string userId = me().id;
    const auto database = Database::connect(databasePath).value();
    database->begin();
    for (int i = 0; i < 510; ++i) {
        EntryRecord record;
        record.userId = userId;
        record.entry.id = "entry" + std::to_string(i);
        record.entry.workspaceId = workspaceId;
        record.entry.start = at(2026, 2, 10, 8h + std::chrono::minutes(i));
        record.entry.stop = record.entry.start + 1min;
        EntryRecords(*database).add(record);
    }
    ASSERT_TRUE(database->commit()) << database->lastError();
    const QJsonObject cut = call("list_entries", R"({"day": "2026-02-10"})");
    EXPECT_EQ(cut[QLatin1String("entries")].toArray().size(), 500);
    EXPECT_EQ(textIn(cut, "notice"),
              "Only the first 500 of 510 entries are listed. Ask for fewer days at a time.");
}

} // namespace orvane::server
