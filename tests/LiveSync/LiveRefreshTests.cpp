// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/LiveRefresh.h"

#include "Account/Account.h"
#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "LiveSync/ManualContinuousTimer.h"
#include "LiveSync/ScriptedHub.h"
#include "Proposals/AgentProposals.h"
#include "Session/MemoryTokenStore.h"
#include "Time/AppClock.h"
#include "support/Await.h"
#include "support/CommandRun.h"
#include "support/ManualRetryTimer.h"

#include <QUuid>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using testing::await;
using ::testing::ElementsAre;
using testing::eventually;
using ::testing::IsEmpty;
using testing::ManualContinuousTimer;
using testing::ScriptedHub;

/// An account at the real server, and a hub of the test's own that tells of its changes.
class LiveRefreshTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        const auto access = std::make_shared<ServerAccess>(ServerAccess::Options{
            .installation = &installation, .serverProgram = builtProgram("orvane-server")});
        const auto found = await(access->find());
        ASSERT_TRUE(found) << found.error().message;
        Account::Options options{.livesOn = false};
        options.retryTimer = [this] {
            auto manual = std::make_unique<ManualRetryTimer>();
            pause = manual.get();
            return manual;
        };
        auto opened = await(Account::open(access, std::move(options)));
        ASSERT_TRUE(opened) << opened.error().message;
        account = std::move(*opened);
        await(account->tracker().load());
        listen();
    }
    void TearDown() override
    {
        refresh.reset();
        if (account)
            await(account->close());
    }

    /// Until all that was there before is known.
    void listen()
    {
        LiveSync::Parts parts;
        parts.client = clientOfHub();
        auto manual = std::make_unique<ManualContinuousTimer>();
        timer = manual.get();
        parts.timer = std::move(manual);
        refresh = std::make_unique<LiveRefresh>(*account, std::move(parts));
        refresh->start();
        ASSERT_TRUE(caughtUp());
    }
    bool caughtUp()
    {
        const bool isWatched = eventually([&] { return refresh->live().watched() == workspaceId(); });
        EXPECT_THAT(pause->delays, ElementsAre(0ms)) << "all is asked for once";
        passTime();
        return isWatched;
    }
    /// Until no refresh is to come any more.
    void passTime()
    {
        while (pause->isScheduled())
            pause->advance(250ms);
        await(account->tracker().refresh({}));
        pause->delays.clear();
    }

    std::shared_ptr<OrvaneClient> clientOfHub()
    {
        AuthSessionOptions options{.server = hub.url(),
                                   .tokenStore = std::make_shared<MemoryTokenStore>(),
                                   .deviceName = "test",
                                   .reauthenticator = []() -> Task<CallResult<ExternalExchangeRequest>> {
                                       co_return ExternalExchangeRequest{.code = "c", .codeVerifier = "v"};
                                   }};
        return std::make_shared<OrvaneClient>(network, AuthSession::make(*network, std::move(options)));
    }

    std::string workspaceId() const { return account->tracker().workspace().id; }
    void tell(const std::string &topic) { hub.say(ScriptedHub::change(topic, workspaceId())); }
    /// The tracker hears nothing of what is done through the client.
    void addEntryElsewhere(const std::string &description)
    {
        CreateTimeEntryRequest request;
        request.id = QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
        request.description = description;
        request.start = AppClock::now() - 10min;
        request.stop = AppClock::now() - 5min;
        EXPECT_TRUE(await(account->client().createTimeEntry(workspaceId(), request)));
    }
    bool shows(const std::string &description)
    {
        return std::ranges::find(account->tracker().entries(), description,
                                 &TimeEntryResponse::description) != account->tracker().entries().end();
    }

    TestInstallation folder;
    Installation installation{folder.folder()};
    ScriptedHub hub;
    std::shared_ptr<NetworkThread> network = std::make_shared<NetworkThread>();
    std::unique_ptr<Account> account;
    ManualRetryTimer *pause = nullptr;
    ManualContinuousTimer *timer = nullptr;
    std::unique_ptr<LiveRefresh> refresh;
};

TEST_F(LiveRefreshTest, AsksForJustWhatChanged)
{
    addEntryElsewhere("Recorded elsewhere");
    ASSERT_TRUE(await(account->client().createTag(workspaceId(), {.name = "made-elsewhere"})));
    tell("time-entries");
    ASSERT_TRUE(eventually([&] { return pause->isScheduled(); }));
    EXPECT_FALSE(shows("Recorded elsewhere"));
    passTime();
    EXPECT_TRUE(shows("Recorded elsewhere"));
    EXPECT_THAT(account->tracker().catalog().tags(), IsEmpty());

    tell("catalog");
    ASSERT_TRUE(eventually([&] { return pause->isScheduled(); }));
    passTime();
    EXPECT_EQ(account->tracker().catalog().tags().size(), 1U);

    WorkspaceSettingsResponse settings = *account->tracker().settings();
    settings.name = "Renamed elsewhere";
    ASSERT_TRUE(await(
        account->client().updateWorkspaceSettings(workspaceId(), {.name = settings.name,
                                                                  .currency = settings.currency,
                                                                  .requireDescription = true,
                                                                  .requireProject = settings.requireProject,
                                                                  .requireTask = settings.requireTask,
                                                                  .requireTag = settings.requireTag})));
    tell("settings");
    ASSERT_TRUE(eventually([&] { return pause->isScheduled(); }));
    passTime();
    EXPECT_TRUE(account->tracker().settings()->requireDescription);
    EXPECT_TRUE(
        eventually([&] { return account->tracker().workspaceName() == QLatin1String("Renamed elsewhere"); }));
}

TEST_F(LiveRefreshTest, PassesOverWhatIsNotShownHere)
{
    hub.say(ScriptedHub::change("time-entries", "another-workspace"));
    hub.say(ScriptedHub::change("time-entries", workspaceId(), "somebody-else"));
    for (const char *topic : {"agent-activity", "weather", ""})
        tell(topic);
    hub.say(ScriptedHub::change("me", "", account->me().id));
    ASSERT_TRUE(eventually([&] { return pause->isScheduled(); }));
    EXPECT_THAT(pause->delays, ElementsAre(0ms));
    EXPECT_EQ(refreshFor("me"), (WantedRefresh{.topics = {}, .me = true}));
    EXPECT_EQ(refreshFor("agent-activity"), WantedRefresh{});
}

TEST_F(LiveRefreshTest, AsksForProposalsWhereTheyAreLookedAt)
{
    AgentProposals &proposals = account->proposals();
    const auto propose = [&](const std::string &description) {
        ProposeEntriesRequest request;
        request.entries.push_back(
            {.description = description, .start = AppClock::now() - 10min, .stop = AppClock::now() - 5min});
        ASSERT_TRUE(await(account->client().proposeEntries(workspaceId(), request)));
        tell("proposals");
        ASSERT_TRUE(eventually([&] { return pause->isScheduled(); }));
        passTime();
    };
    propose("Nobody looks yet");
    EXPECT_THAT(proposals.proposals(), IsEmpty());
    ASSERT_TRUE(await(proposals.load()));
    EXPECT_EQ(proposals.pendingCount(), 1);
    propose("Somebody looks");
    EXPECT_TRUE(eventually([&] { return proposals.pendingCount() == 2; }));
}

TEST_F(LiveRefreshTest, MakesFewRefreshesOfABurst)
{
    for (int i = 0; i < 50; ++i)
        tell(i % 2 == 0 ? "time-entries" : "catalog");
    hub.say(ScriptedHub::change("me", "", ""));
    int heard = 0;
    QObject::connect(&refresh->live(), &LiveSync::changed, refresh.get(), [&] { ++heard; });
    ASSERT_TRUE(eventually([&] { return heard == 51; }));
    EXPECT_THAT(pause->delays, ElementsAre(0ms));
    pause->advance(0ms);
    for (int i = 0; i < 50; ++i)
        tell("time-entries");
    ASSERT_TRUE(eventually([&] { return heard == 101; }));
    pause->advance(249ms);
    EXPECT_THAT(pause->delays, ElementsAre(0ms, 250ms));
    pause->advance(1ms);
    EXPECT_THAT(pause->delays, ElementsAre(0ms, 250ms, 250ms));
    pause->advance(250ms);
    EXPECT_FALSE(pause->isScheduled()) << "no timer goes on without a change";
}

TEST_F(LiveRefreshTest, CatchesUpOnceAfterALoss)
{
    hub.drop();
    ASSERT_TRUE(eventually([&] { return refresh->live().state() == LiveSync::State::connecting; }));
    addEntryElsewhere("Nobody told");
    EXPECT_THAT(pause->delays, IsEmpty());
    refresh->live().tryNow();
    ASSERT_TRUE(caughtUp());
    EXPECT_TRUE(shows("Nobody told"));
}

TEST_F(LiveRefreshTest, GoesOverToAnotherWorkspace)
{
    const std::string before = workspaceId();
    ASSERT_TRUE(await(account->client().createWorkspace({.name = "Second"})));
    ASSERT_TRUE(await(account->refreshMe()));
    const auto &all = account->me().workspaces;
    const auto other = std::ranges::find(all, "Second", &WorkspaceSummary::name);
    ASSERT_NE(other, all.end());
    ASSERT_TRUE(account->useWorkspace(other->id));
    ASSERT_TRUE(caughtUp());
    hub.say(ScriptedHub::change("time-entries", before) + ScriptedHub::change("catalog", workspaceId()));
    ASSERT_TRUE(eventually([&] { return pause->isScheduled(); }));
    addEntryElsewhere("In the second");
    passTime();
    EXPECT_FALSE(shows("In the second")) << "only the catalog changed";
}

} // namespace
} // namespace orvane
