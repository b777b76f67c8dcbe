// SPDX-License-Identifier: GPL-3.0-or-later
#include "LiveSync/HubMessages.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(HubMessages, AreToldApart)
{
    const auto read = [](std::string_view text) {
        const auto message = readHubMessage(text);
        EXPECT_TRUE(message) << text;
        return message.value_or(HubClose{});
    };
    EXPECT_EQ(
        read(
            R"({"type":1,"target":"Changed","arguments":[{"topic":"catalog","workspaceId":"w","userId":"u"}]})"),
        HubMessage(HubChange{{"catalog", "w", "u"}}));
    EXPECT_EQ(read(R"({"type":1,"target":"Changed","arguments":[{"topic":"me","workspaceId":null}]})"),
              HubMessage(HubChange{{"me", "", ""}}));
    for (const char *passedOver :
         {R"({"type":6})", R"({"type":99,"sequenceId":1})", R"({"type":2,"item":1})",
          R"({"type":1,"target":"Other","arguments":[{"topic":"me"}]})",
          R"({"type":1,"target":"Changed","arguments":[]})", R"({"type":1,"target":"Changed"})",
          R"({"type":1,"target":"Changed","arguments":["me"]})"}) {
        EXPECT_EQ(read(passedOver), HubMessage(HubSign{})) << passedOver;
    }
    EXPECT_EQ(read(R"({"type":3,"invocationId":"4","result":true})"),
              HubMessage(HubCompletion{"4", "", true}));
    EXPECT_EQ(read(R"({"type":3,"invocationId":"4","result":1})"), HubMessage(HubCompletion{"4", "", false}));
    EXPECT_EQ(read(R"({"type":3,"invocationId":"4","error":"No."})"),
              HubMessage(HubCompletion{"4", "No.", false}));
    EXPECT_EQ(read(R"({"type":7,"error":"Going down."})"),
              HubMessage(HubClose{{"The server closed the connection: Going down."}}));
    EXPECT_EQ(read(R"({"type":7,"allowReconnect":true})"),
              HubMessage(HubClose{{"The server closed the connection: no reason given"}}));
    for (const char *senseless :
         {"", "{}", "[]", "null", "6", "{", R"({"type":"six"})", "{\"type\":6,\"x\":\"\xff\"}"})
        EXPECT_FALSE(readHubMessage(senseless)) << senseless;
}

TEST(HubMessages, BeginWithTheHandshakesAnswer)
{
    EXPECT_TRUE(readHubHandshake("{}"));
    EXPECT_TRUE(readHubHandshake(R"({"minorVersion":1})"));
    const auto refused = readHubHandshake(R"({"error":"No such protocol."})");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message, "The server turned the connection down: No such protocol.");
    EXPECT_FALSE(readHubHandshake("<html>"));
}

TEST(HubMessages, AreMadeAsTheHubExpectsThem)
{
    EXPECT_EQ(hubHandshake(), "{\"protocol\":\"json\",\"version\":1}\x1e");
    EXPECT_EQ(hubPing(), "{\"type\":6}\x1e");
    EXPECT_EQ(hubWatch(12, "a\"b"),
              "{\"type\":1,\"invocationId\":\"12\",\"target\":\"Watch\",\"arguments\":[\"a\\\"b\"]}\x1e");
    EXPECT_EQ(hubUnwatch("w"), "{\"type\":1,\"target\":\"Unwatch\",\"arguments\":[\"w\"]}\x1e");
}

} // namespace
} // namespace orvane
