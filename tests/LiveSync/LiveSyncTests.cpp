// SPDX-License-Identifier: GPL-3.0-or-later
#include "LiveSync/LiveSync.h"

#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "Http/SyncConnection.h"
#include "LiveSync/ManualContinuousTimer.h"
#include "LiveSync/ScriptedHub.h"
#include "Session/AuthSession.h"
#include "Session/MemoryTokenStore.h"
#include "support/Await.h"
#include "support/Memory.h"

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
using State = LiveSync::State;
using Names = std::vector<std::string>;

Reauthenticator anyCode()
{
    return []() -> Task<CallResult<ExternalExchangeRequest>> {
        co_return ExternalExchangeRequest{.code = "code", .codeVerifier = "verifier"};
    };
}

class LiveSyncTest : public ::testing::Test {
protected:
    LiveSyncTest()
    {
        AuthSessionOptions options{.server = hub.url(),
                                   .tokenStore = std::make_shared<MemoryTokenStore>(),
                                   .deviceName = "test",
                                   .reauthenticator = anyCode()};
        client = std::make_shared<OrvaneClient>(network, AuthSession::make(*network, std::move(options)));
        make();
    }

    void make()
    {
        auto manual = std::make_unique<ManualContinuousTimer>();
        timer = manual.get();
        LiveSync::Parts parts;
        parts.client = client;
        parts.timer = std::move(manual);
        parts.random = [this] { return random; };
        live = std::make_unique<LiveSync>(std::move(parts));
        QObject::connect(live.get(), &LiveSync::changed, live.get(),
                         [this](const SyncChange &change) { topics.push_back(change.topic); });
        QObject::connect(live.get(), &LiveSync::reconnected, live.get(), [this] { ++reconnects; });
        QObject::connect(live.get(), &LiveSync::failed, live.get(), [this] { ++failures; });
    }
    bool connects()
    {
        return eventually([&] { return live->state() == State::connected; });
    }
    bool watches(const std::string &workspaceId)
    {
        return eventually([&] { return live->watched() == workspaceId; });
    }
    bool fails()
    {
        const int before = failures;
        return eventually([&] { return failures > before; });
    }
    /// Whatever is on its way to the client has come.
    bool settles()
    {
        hub.say(ScriptedHub::change("settled"));
        const bool hasSettled = eventually([&] { return !topics.empty() && topics.back() == "settled"; });
        if (hasSettled)
            topics.pop_back();
        return hasSettled;
    }
    /// What the hub was told beside handshakes and pings.
    Names invocations() const
    {
        Names found;
        std::ranges::copy_if(hub.messages, std::back_inserter(found), [](const std::string &message) {
            return message.find("\"type\":1,") != std::string::npos;
        });
        return found;
    }
    static std::string watch(int number, const std::string &workspaceId)
    {
        return R"({"type":1,"invocationId":")" + std::to_string(number) +
               R"(","target":"Watch","arguments":[")" + workspaceId + R"("]})";
    }
    static std::string unwatch(const std::string &workspaceId)
    {
        return R"({"type":1,"target":"Unwatch","arguments":[")" + workspaceId + R"("]})";
    }

    ScriptedHub hub;
    std::shared_ptr<NetworkThread> network = std::make_shared<NetworkThread>();
    std::shared_ptr<OrvaneClient> client;
    ManualContinuousTimer *timer = nullptr;
    double random = 0.5;
    std::unique_ptr<LiveSync> live;
    Names topics;
    int reconnects = 0;
    int failures = 0;
};

TEST_F(LiveSyncTest, NegotiatesOpensAndTellsRequestsItsConnection)
{
    EXPECT_EQ(live->state(), State::disconnected);
    live->start();
    live->start();
    EXPECT_EQ(live->state(), State::connecting);
    ASSERT_TRUE(connects());
    const auto negotiated = hub.requestsFor("/api/hubs/sync/negotiate");
    ASSERT_EQ(negotiated.size(), 1U);
    EXPECT_EQ(negotiated[0].method, "POST");
    EXPECT_EQ(negotiated[0].path, "/api/hubs/sync/negotiate?negotiateVersion=1");
    EXPECT_EQ(negotiated[0].headers.find("Authorization"), "Bearer a1+/=");
    EXPECT_FALSE(negotiated[0].headers.find("X-Sync-Connection"));
    EXPECT_EQ(hub.count("/api/hubs/sync?id=token%201%26%3D%2B&access_token=a1%2B%2F%3D"), 1);
    EXPECT_THAT(hub.messages, ElementsAre(R"({"protocol":"json","version":1})")) << "nothing is watched yet";

    EXPECT_EQ(client->syncConnection()->value(), "id-1");
    await(client->getMe());
    EXPECT_EQ(hub.requestsFor("/api/me").back().headers.find("X-Sync-Connection"), "id-1");

    live->stop();
    EXPECT_EQ(live->state(), State::disconnected);
    await(client->getMe());
    EXPECT_FALSE(hub.requestsFor("/api/me").back().headers.find("X-Sync-Connection"));
    EXPECT_TRUE(eventually([&] { return hub.closeCodes == std::vector<int>{1000}; }));
    timer->advance(10min);
    EXPECT_EQ(hub.count("/api/hubs/sync/negotiate"), 1);
    live->start();
    ASSERT_TRUE(connects());
    EXPECT_EQ(reconnects, 0) << "nothing was lost";
}

TEST_F(LiveSyncTest, HandsOnEachChangeHoweverFramesAreCut)
{
    live->start();
    ASSERT_TRUE(connects());
    hub.say("{\"type\":6}\x1e" + ScriptedHub::change("time-entries"));
    ASSERT_TRUE(settles());
    EXPECT_THAT(topics, ElementsAre("time-entries"));
    const std::string joined = ScriptedHub::change("catalog") + ScriptedHub::change("me");
    hub.say(joined.substr(0, 20));
    hub.say(joined.substr(20, joined.size() - 25));
    hub.say(joined.substr(joined.size() - 5) + "\x1e{\"type\":1,\"target\":\"Shout\"}\x1e{\"type\":42}\x1e");
    ASSERT_TRUE(settles());
    EXPECT_THAT(topics, ElementsAre("time-entries", "catalog", "me"));
    EXPECT_EQ(failures, 0);
}

TEST_F(LiveSyncTest, WatchesOneWorkspaceAtATime)
{
    live->watch("w1");
    live->watch("w1");
    live->start();
    ASSERT_TRUE(connects() && watches("w1"));
    live->watch("w1");
    ASSERT_TRUE(settles());
    EXPECT_THAT(invocations(), ElementsAre(watch(0, "w1")));

    live->watch("w2");
    ASSERT_TRUE(watches("w2"));
    live->watch(std::nullopt);
    ASSERT_TRUE(settles());
    EXPECT_FALSE(live->watched());
    EXPECT_THAT(invocations(), ElementsAre(watch(0, "w1"), unwatch("w1"), watch(1, "w2"), unwatch("w2")));
}

TEST_F(LiveSyncTest, LooksAgainWhatIsWantedOnceAnAnswerHasCome)
{
    hub.watchAnswer = std::nullopt;
    live->watch("w1");
    live->start();
    ASSERT_TRUE(eventually([&] { return invocations().size() == 1; }));
    live->watch("w2");
    live->watch("w1");
    live->watch("w3");
    ASSERT_TRUE(settles());
    EXPECT_EQ(invocations().size(), 1U);
    hub.watchAnswer = R"("result":true)";
    hub.say("{\"type\":3,\"invocationId\":\"7\",\"result\":false}\x1e"
            "{\"type\":3,\"invocationId\":\"0\",\"result\":true}\x1e");
    ASSERT_TRUE(watches("w3"));
    EXPECT_THAT(invocations(), ElementsAre(watch(0, "w1"), unwatch("w1"), watch(1, "w3")));
}

TEST_F(LiveSyncTest, DoesNotRepeatARefusedWatchOverOneConnection)
{
    for (const char *refusal : {R"("result":false)", R"("result":"yes")"}) {
        SCOPED_TRACE(refusal);
        hub.messages.clear();
        hub.watchAnswer = refusal;
        make();
        live->watch("w1");
        live->start();
        ASSERT_TRUE(eventually([&] { return live->isRefused(); }));
        live->watch("w1");
        ASSERT_TRUE(settles());
        EXPECT_THAT(invocations(), ElementsAre(watch(0, "w1"))) << "nothing to take back either";
        live->watch("w2");
        ASSERT_TRUE(eventually([&] { return live->isRefused(); }));
        hub.watchAnswer = R"("result":true)";
        hub.drop();
        ASSERT_TRUE(fails());
        EXPECT_FALSE(live->isRefused());
        timer->advance(1s);
        EXPECT_TRUE(watches("w2"));
        EXPECT_THAT(invocations(), ElementsAre(watch(0, "w1"), watch(1, "w2"), watch(2, "w2")));
    }
}

TEST_F(LiveSyncTest, AsksAgainWithTheNextPingWhenAWatchFailed)
{
    hub.watchAnswer = R"("error":"The server is busy.")";
    live->watch("w1");
    live->start();
    ASSERT_TRUE(connects() && settles());
    EXPECT_FALSE(live->isRefused());
    EXPECT_FALSE(live->watched());
    timer->advance(15s);
    ASSERT_TRUE(eventually([&] { return invocations().size() == 2; }) && settles());
    hub.watchAnswer = R"("result":true)";
    timer->advance(15s);
    ASSERT_TRUE(watches("w1"));
    timer->advance(15s);
    ASSERT_TRUE(settles());
    EXPECT_EQ(invocations().size(), 3U);
    EXPECT_EQ(reconnects, 0);
}

TEST_F(LiveSyncTest, TriesAgainByTheTableOfDelays)
{
    using std::chrono::milliseconds;
    const std::vector<milliseconds> middle{1s, 2s, 5s, 10s, 30s, 30s, 30s};
    for (int i = 0; i < 7; ++i) {
        const auto at = static_cast<std::size_t>(i);
        EXPECT_EQ(liveSyncDelay(i + 1, 0.5), middle[at]);
        EXPECT_EQ(liveSyncDelay(i + 1, 0), middle[at] * 4 / 5);
        EXPECT_EQ(liveSyncDelay(i + 1, 1), middle[at] * 6 / 5);
    }
    live->watch("w1");
    hub.setDown(true);
    live->start();
    for (const milliseconds delay : middle) {
        ASSERT_TRUE(fails());
        EXPECT_EQ(live->state(), State::connecting);
        EXPECT_FALSE(live->problem().empty());
        EXPECT_EQ(timer->delays.back(), delay);
        timer->advance(delay - 1ms);
        if (delay == middle.back() && failures == 7)
            hub.setDown(false);
        timer->advance(1ms);
    }
    ASSERT_TRUE(connects());
    EXPECT_EQ(live->problem(), "");
    EXPECT_EQ(reconnects, 0) << "the first connection makes nothing good";
    ASSERT_TRUE(watches("w1"));

    hub.drop();
    ASSERT_TRUE(fails());
    EXPECT_EQ(timer->delays.back(), 1s) << "the count begins anew";
    EXPECT_FALSE(live->watched());
    EXPECT_FALSE(client->syncConnection()->value());
    timer->advance(1s);
    ASSERT_TRUE(eventually([&] { return reconnects == 1; }));
    EXPECT_EQ(live->watched(), "w1") << "told once what is wanted is watched";
    EXPECT_EQ(client->syncConnection()->value(), "id-2");
}

TEST_F(LiveSyncTest, DoesNotWaitOnceTheNetworkIsBack)
{
    hub.setDown(true);
    live->start();
    live->tryNow();
    ASSERT_TRUE(fails());
    hub.setDown(false);
    live->tryNow();
    live->tryNow();
    ASSERT_TRUE(connects());
    live->tryNow();
    ASSERT_TRUE(settles());
    EXPECT_EQ(hub.count("/api/hubs/sync/negotiate"), 1);
}

TEST_F(LiveSyncTest, GivesUpAConnectionThatFellSilent)
{
    live->start();
    ASSERT_TRUE(connects());
    hub.messages.clear();
    timer->advance(15s);
    timer->advance(10s);
    ASSERT_TRUE(settles()) << "heard after 25 s";
    timer->advance(5s);
    timer->advance(15s);
    ASSERT_TRUE(eventually([&] { return hub.messages.size() == 3; }));
    EXPECT_THAT(hub.messages, ::testing::Each(R"({"type":6})"));
    EXPECT_EQ(live->state(), State::connected);

    timer->advance(31s);
    EXPECT_EQ(live->state(), State::connecting);
    EXPECT_FALSE(client->syncConnection()->value());
    EXPECT_TRUE(eventually([&] { return hub.closeCodes == std::vector<int>{1001}; }));
    // After hours of sleep too.
    timer->advance(1s);
    ASSERT_TRUE(connects());
    timer->advance(8h);
    EXPECT_EQ(live->state(), State::connecting);
    timer->advance(1s);
    EXPECT_TRUE(connects());
}

TEST_F(LiveSyncTest, ComesBackFromWhateverTheHubSays)
{
    const std::string huge(longestHubMessage + 1, 'x');
    const auto frame = [](std::string_view payload) {
        return QByteArray("\x81", 1) + static_cast<char>(payload.size()) +
               QByteArray(payload.data(), static_cast<qsizetype>(payload.size()));
    };
    const std::vector<std::pair<std::function<void()>, std::string>> ends{
        {[&] { hub.say("{\"type\":7,\"error\":\"Shutting down.\"}\x1e"); },
         "The server closed the connection: Shutting down."},
        {[&] { hub.say("{\"type\":7}\x1e" + ScriptedHub::change("too-late")); },
         "The server closed the connection: no reason given"},
        {[&] { hub.say("no JSON\x1e"); }, "The server said something that makes no sense."},
        {[&] { hub.sayBinary("\x96"); }, "The server said something that makes no sense."},
        {[&] { hub.sayRaw(frame("\xff\xfe\x1e")); }, "The connection to the server was lost."},
        {[&] { hub.sayRaw(QByteArray(100, '\xff')); }, "The connection to the server was lost."},
        {[&] { hub.say(huge); }, "The server sent a message that is too long."},
        {[&] { hub.say(std::string(longestHubFrame + 1, '\x1e')); },
         "The connection to the server was lost."},
        {[&] {
             hub.say(huge.substr(9));
             hub.say("123456789");
         },
         "The server sent a message that is too long."},
        {[&] { hub.drop(); }, "The connection to the server was lost."},
    };
    live->watch("w1");
    live->start();
    for (std::size_t i = 0; i < ends.size(); ++i) {
        SCOPED_TRACE(i);
        ASSERT_TRUE(watches("w1"));
        ends[i].first();
        ASSERT_TRUE(fails());
        EXPECT_EQ(live->problem(), ends[i].second);
        EXPECT_FALSE(client->syncConnection()->value());
        EXPECT_EQ(timer->delays.back(), 1s);
        timer->advance(1s);
    }
    EXPECT_TRUE(watches("w1"));
    EXPECT_EQ(reconnects, static_cast<int>(ends.size()));
    EXPECT_THAT(topics, IsEmpty());
}

TEST_F(LiveSyncTest, ComesBackFromAnOpeningThatFails)
{
    const std::string wouldNot = "The server wouldn't open live sync.";
    for (const HttpResponse &answer :
         {HttpResponse{404, {}, ""}, HttpResponse{500, {}, "{}"}, HttpResponse{200, {}, "no JSON"},
          HttpResponse{200, {}, R"({"connectionId":"a"})"}, HttpResponse{401, {}, ""}}) {
        hub.negotiations.push_back(answer);
        if (answer.status == 401) // A refused token is renewed once.
            hub.negotiations.push_back(answer);
    }
    live->start();
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(fails());
        EXPECT_EQ(live->problem(), wouldNot) << i;
        timer->advance(30s);
    }
    ASSERT_TRUE(connects());
    EXPECT_EQ(hub.requestsFor("/api/hubs/sync?").back().path.find("a1%2B"), std::string::npos);

    hub.refusals = {{401, {}, "Sign in first."}, {503, {}, ""}, {200, {}, "<html>"}};
    hub.drop();
    ASSERT_TRUE(fails());
    for (int i = 0; i < 3; ++i) {
        timer->advance(30s);
        ASSERT_TRUE(fails()) << i;
        EXPECT_EQ(live->problem(), wouldNot) << i;
    }
    timer->advance(30s);
    ASSERT_TRUE(connects());

    hub.firstWords = {"{\"error\":\"Not today.\"}\x1e", "<html>\x1e", ""};
    hub.drop();
    ASSERT_TRUE(fails());
    timer->advance(30s);
    ASSERT_TRUE(fails());
    EXPECT_EQ(live->problem(), "The server turned the connection down: Not today.");
    timer->advance(30s);
    ASSERT_TRUE(fails());
    EXPECT_EQ(live->problem(), "The server said something that makes no sense.");
    const std::size_t before = hub.messages.size();
    timer->advance(30s);
    ASSERT_TRUE(eventually([&] { return hub.messages.size() > before; }));
    EXPECT_EQ(live->state(), State::connecting) << "the hub has not said a word";
    timer->advance(30s);
    EXPECT_EQ(live->problem(), wouldNot);
    timer->advance(30s);
    EXPECT_TRUE(connects());
    EXPECT_EQ(reconnects, 2);
}

TEST_F(LiveSyncTest, GoesOnWithoutAToken)
{
    hub.tokenAnswers = {{503, {}, ""}, {503, {}, ""}};
    live->start();
    ASSERT_TRUE(fails());
    EXPECT_EQ(hub.count("/api/hubs/sync/negotiate"), 0);
    EXPECT_EQ(live->problem(), "Something went wrong (503). Please try again.");
    hub.tokenAnswers.clear();
    timer->advance(1s);
    EXPECT_TRUE(connects());
}

TEST_F(LiveSyncTest, TellsTheSessionWhenItsTokensAreTakenNoLonger)
{
    const auto store = std::make_shared<MemoryTokenStore>();
    await(store->write("r0", hub.url()));
    const auto session =
        AuthSession::make(*network, {.server = hub.url(), .tokenStore = store, .deviceName = "test"});
    bool hasEnded = false;
    QObject context;
    session->onSessionEnded(&context, [&] { hasEnded = true; });
    client = std::make_shared<OrvaneClient>(network, session);
    make();
    hub.tokenAnswers = {{401, {}, R"({"title":"This session is over"})"}};
    live->start();
    ASSERT_TRUE(fails());
    EXPECT_EQ(live->problem(), "This session is over");
    EXPECT_TRUE(eventually([&] { return hasEnded; }));
}

TEST_F(LiveSyncTest, StopsAtEachStepOfConnecting)
{
    const auto stopsAfter = [&](const std::string &path) {
        const int before = hub.count(path);
        live->start();
        const bool hasCome = eventually([&] { return hub.count(path) > before; });
        live->stop();
        timer->advance(10min);
        QCoreApplication::processEvents();
        return hasCome && live->state() == State::disconnected;
    };
    hub.tokenAnswers = {{0, {}, ""}};
    EXPECT_TRUE(stopsAfter("/api/auth/external/exchange"));
    // The renewal goes on behind it, and comes to its end when the server hangs up.
    hub.setDown(true);
    hub.setDown(false);
    ASSERT_TRUE(eventually([&] { return await(client->session()->validAccessToken()).has_value(); }));
    hub.negotiations = {{0, {}, ""}};
    EXPECT_TRUE(stopsAfter("/api/hubs/sync/negotiate"));
    hub.firstWords = {"", ""};
    EXPECT_TRUE(stopsAfter("/api/hubs/sync?"));
    // In the middle of the retries, and inside a signal.
    hub.setDown(true);
    live->start();
    ASSERT_TRUE(fails());
    live->stop();
    hub.setDown(false);
    timer->advance(10min);
    EXPECT_EQ(live->state(), State::disconnected);
    QObject::connect(live.get(), &LiveSync::stateChanged, live.get(), [&] {
        if (live->state() == State::connected)
            live->stop();
    });
    hub.firstWords.clear();
    live->start();
    EXPECT_TRUE(eventually([&] { return hub.connections == 1 && live->state() == State::disconnected; }));
    EXPECT_FALSE(client->syncConnection()->value());
    EXPECT_EQ(failures, 1);
}

TEST_F(LiveSyncTest, MayGoInsideItsOwnSignals)
{
    live->watch("w1");
    live->start();
    ASSERT_TRUE(watches("w1"));
    QObject::connect(live.get(), &LiveSync::changed, live.get(), [&] { live.reset(); });
    hub.say(ScriptedHub::change("me") + ScriptedHub::change("me"));
    EXPECT_TRUE(eventually([&] { return hub.closeCodes == std::vector<int>{1000}; }));
    EXPECT_THAT(topics, ElementsAre("me"));
    EXPECT_FALSE(client->syncConnection()->value());
    make();
    live->watch("w1");
    live->start();
    ASSERT_TRUE(connects());
    QObject::connect(live.get(), &LiveSync::failed, live.get(), [&] { live.reset(); });
    hub.drop();
    EXPECT_TRUE(eventually([&] { return !live; }));
}

TEST_F(LiveSyncTest, KeepsNothingOfConnectionsThatAreGone)
{
    live->watch("w1");
    live->start();
    std::size_t heap = 0;
    std::optional<std::size_t> resident;
    constexpr int rounds = 200;
    for (int i = 0; i < rounds; ++i) {
        ASSERT_TRUE(watches("w1")) << i << ": " << live->problem();
        // Of what was dropped by the test itself, outside of any event.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (i == rounds / 2) {
            heap = testing::heapInUse();
            resident = testing::residentMemory();
        }
        // What the test itself remembers is no growth.
        hub.messages.clear();
        hub.requests.clear();
        hub.closeCodes.clear();
        timer->delays.clear();
        hub.drop();
        ASSERT_TRUE(fails());
        timer->advance(1s);
    }
    ASSERT_TRUE(watches("w1"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(reconnects, rounds);
    constexpr std::size_t growth = std::size_t{256} << 10U;
    EXPECT_LT(testing::heapInUse(), heap + growth);
    if (resident)
        EXPECT_LT(testing::residentMemory(), *resident + growth);
}

} // namespace
} // namespace orvane
