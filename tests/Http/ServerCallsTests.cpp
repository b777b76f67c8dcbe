// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ServerCalls.h"

#include "Http/NetworkThread.h"
#include "Http/ProblemMiddleware.h"
#include "support/Await.h"
#include "support/LoopbackServer.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;
using testing::LoopbackServer;
using testing::SeenRequest;

class ServerCallsTest : public ::testing::Test {
protected:
    void answerWith(int status, std::string body, std::vector<HttpHeader> headers = {})
    {
        server = std::make_unique<LoopbackServer>(
            [=](const SeenRequest &, LoopbackServer::Connection &connection) {
                connection.answer(status, body, "application/json", headers);
            });
        calls.emplace(CallChannel(
            thread, ClientChain(thread.transport(), server->url(), {std::make_shared<ProblemMiddleware>()})));
    }
    SeenRequest last() { return server->requests().back(); }

    NetworkThread thread;
    std::unique_ptr<LoopbackServer> server;
    std::optional<ServerCalls> calls;
};

TEST_F(ServerCallsTest, GivesWhatTheDocumentCallsASuccess)
{
    answerWith(202, "");
    EXPECT_TRUE(await(calls->forgotPassword({.email = "a@example.org"})));
    EXPECT_EQ(last().body, R"({"email":"a@example.org"})");

    answerWith(302, "", {{"Location", "https://provider.example/?state=1"}});
    EXPECT_EQ(await(calls->startExternalSignIn("provider", "app://back", "c")),
              "https://provider.example/?state=1");
    EXPECT_EQ(last().path, "/api/auth/external/provider/start?redirectUri=app%3A%2F%2Fback&codeChallenge=c");

    const std::string bytes("PK\x03\0\xff", 5);
    answerWith(200, bytes);
    EXPECT_EQ(await(calls->exportSharedReport("t", "pdf")), bytes);
    EXPECT_EQ(last().path, "/api/shared/t/export?format=pdf");
}

TEST_F(ServerCallsTest, TakesNoOtherSuccessForIt)
{
    const auto isUnreadable = [&](auto answer) {
        return !answer && std::holds_alternative<DecodingError>(answer.error());
    };
    answerWith(200, "[]");
    EXPECT_TRUE(isUnreadable(await(calls->deleteTag("w", "t")))) << "only 204 is one";
    EXPECT_TRUE(isUnreadable(await(calls->startExternalSignIn("provider", "app://back", "c"))));
    answerWith(302, "");
    EXPECT_TRUE(isUnreadable(await(calls->startExternalSignIn("provider", "app://back", "c"))))
        << "it has no Location";
    answerWith(204, "");
    EXPECT_TRUE(isUnreadable(await(calls->listTags("w"))));
}

} // namespace
} // namespace orvane
