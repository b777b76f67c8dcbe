// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/CallScope.h"

#include "Http/NetworkThread.h"
#include "Http/ProblemMiddleware.h"
#include "Http/ServerCalls.h"
#include "support/Await.h"
#include "support/LoopbackServer.h"

#include <QPointer>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;
using testing::eventually;
using testing::LoopbackServer;
using testing::SeenRequest;

using Tags = CallResult<std::vector<TagResponse>>;

bool wasGivenUp(const Tags &answer)
{
    const auto *error = answer ? nullptr : std::get_if<ConnectionError>(&answer.error());
    return error && error->underlying == "the call was given up";
}

/// A server that hangs on the workspace "slow" and counts who hung up there.
class CallScopeTest : public ::testing::Test {
protected:
    CallScopeTest()
        : server([this](const SeenRequest &request, LoopbackServer::Connection &connection) {
            if (request.path != "/api/workspaces/slow/tags")
                return connection.answer(200, "[]");
            connection.hang();
            ++hungUp;
        })
    {
    }

    ServerCalls calls(const CallScope &scope) { return ServerCalls(channel.within(scope)); }

    std::atomic<int> hungUp = 0;
    LoopbackServer server;
    NetworkThread thread{{.atOnce = 2}};
    CallChannel channel{
        thread, ClientChain(thread.transport(), server.url(), {std::make_shared<ProblemMiddleware>()})};
};

TEST_F(CallScopeTest, GivesUpWhatIsUnderWayAndFreesItsConnections)
{
    CallScope scope;
    // Two are with the server, which says nothing; the third waits for its turn.
    std::vector<Task<Tags>> slow;
    for (int i = 0; i < 3; ++i)
        slow.push_back(calls(scope).listTags("slow"));
    ASSERT_TRUE(server.waitForRequests(2));
    auto other = ServerCalls(channel).listTags("w");

    scope.close();
    for (auto &call : slow)
        EXPECT_TRUE(wasGivenUp(await(std::move(call))));
    EXPECT_TRUE(await(std::move(other))) << "a call outside the scope is none of its business";
    EXPECT_TRUE(eventually([&] { return hungUp == 2; })) << "the requests were not aborted";
    EXPECT_EQ(server.requests().size(), 3U) << "the one that waited was sent all the same";
}

TEST_F(CallScopeTest, GivesAnswersWhileItIsOpenAndRefusesCallsOnceItIsClosed)
{
    CallScope scope;
    EXPECT_TRUE(await(calls(scope).listTags("w")));
    scope.close();
    EXPECT_TRUE(wasGivenUp(await(calls(scope).listTags("w"))));
    EXPECT_EQ(server.requests().size(), 1U);
}

/// As a screen does it: the scope is a member, and what resumes looks whether its owner is still there.
class Owner : public QObject {
public:
    Task<bool> wasGoneWhenResumed(ServerCalls calls)
    {
        const QPointer<Owner> self(this);
        const Tags answer = co_await calls.listTags("slow");
        co_return !self && wasGivenUp(answer);
    }

    CallScope scope;
};

TEST_F(CallScopeTest, ResumesWhenItsOwnerIsWhollyGone)
{
    auto owner = std::make_unique<Owner>();
    auto call = owner->wasGoneWhenResumed(calls(owner->scope));
    ASSERT_TRUE(server.waitForRequests(1));
    owner.reset();
    EXPECT_FALSE(call.isReady()) << "resumed inside the destructor";
    EXPECT_TRUE(await(std::move(call)));
}

TEST_F(CallScopeTest, MayOutliveTheNetworkThread)
{
    auto other = std::make_unique<NetworkThread>();
    CallScope scope;
    const CallChannel early(*other, ClientChain(other->transport(), server.url(), {}));
    auto call = ServerCalls(early.within(scope)).listTags("slow");
    ASSERT_TRUE(server.waitForRequests(1));
    other.reset();
    scope.close();
    EXPECT_FALSE(await(std::move(call)));
}

} // namespace
} // namespace orvane
