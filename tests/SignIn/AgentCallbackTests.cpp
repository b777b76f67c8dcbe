// SPDX-License-Identifier: GPL-3.0-or-later
#include "SignIn/AgentAnswer.h"
#include "SignIn/AgentCallback.h"
#include "support/Await.h"

#include <gtest/gtest.h>

namespace orvane {

TEST(AgentCallbackTest, ReadsWhatAnAgentAsks)
{
    const std::string whole =
        "orvane://agents/"
        "authorize?client_id=c&redirect_uri=http%3A%2F%2F127.0.0.1%3A1%2Fcb&response_type=code"
        "&code_challenge=x&code_challenge_method=S256&state=a%26b%2Bc&scope=time%3Aread%20time%3Apropose";
    const auto request = AgentCallback::read(whole);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->clientId, "c");
    EXPECT_EQ(request->redirectUri, "http://127.0.0.1:1/cb");
    EXPECT_EQ(request->codeChallengeMethod, "S256");
    EXPECT_EQ(request->state, "a&b+c");
    EXPECT_EQ(request->scope, "time:read time:propose");
    EXPECT_FALSE(request->resource);
    for (const char *other :
         {"orvane://auth/authorize?client_id=c&redirect_uri=r",
          "orvane://agents/other?client_id=c&redirect_uri=r",
          "https://agents/authorize?client_id=c&redirect_uri=r", "orvane://agents/authorize?client_id=c",
          "orvane://agents/authorize?client_id=c&redirect_uri=r&redirect_uri=s", "orvane://agents/authorize",
          ""})
        EXPECT_FALSE(AgentCallback::read(other)) << other;
}

TEST(AgentCallbackTest, TakesAnAnswerBackToWhoAskedAlone)
{
    OAuthAuthorizationRequest request;
    request.redirectUri = "http://127.0.0.1:1/cb";
    EXPECT_TRUE(AgentCallback::leadsBack(request, "http://127.0.0.1:1/cb?code=x"));
    EXPECT_FALSE(AgentCallback::leadsBack(request, "http://127.0.0.1:1/cb.evil.example?code=x"));
    EXPECT_FALSE(AgentCallback::leadsBack(request, "http://127.0.0.1:12/cb?code=x"));
    EXPECT_TRUE(AgentCallback::isOnThisComputer("http://localhost:1/cb?code=x"));
    EXPECT_TRUE(AgentCallback::isOnThisComputer("http://[::1]:1/cb?code=x"));
    for (const char *other : {"https://localhost/cb", "http://127.0.0.1.evil.example/cb",
                              "http://evil.example/cb", "http://127.0.0.1@evil.example/cb", "file:///cb"})
        EXPECT_FALSE(AgentCallback::isOnThisComputer(other)) << other;
    EXPECT_FALSE(QCoro::waitFor(tellAgent("http://127.0.0.1:1/cb?code=x"))) << "nobody listens there";
}

} // namespace orvane
