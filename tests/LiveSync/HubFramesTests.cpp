// SPDX-License-Identifier: GPL-3.0-or-later
#include "LiveSync/HubFrames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> taken(HubSplitter &splitter, std::string_view frame)
{
    const auto messages = splitter.take(frame);
    EXPECT_TRUE(messages);
    return messages.value_or(std::vector<std::string>{"?"});
}

TEST(HubSplitter, CutsAtSeparatorsAcrossFramesAndWithin)
{
    HubSplitter splitter;
    EXPECT_THAT(taken(splitter, "one\x1etwo\x1e"), ElementsAre("one", "two"));
    EXPECT_THAT(taken(splitter, "th"), IsEmpty());
    EXPECT_THAT(taken(splitter, ""), IsEmpty());
    EXPECT_THAT(taken(splitter, "ree\x1e\x1e\x1e"
                                "fo"),
                ElementsAre("three"));
    EXPECT_THAT(taken(splitter, "ur\x1e"), ElementsAre("four"));
}

TEST(HubSplitter, TakesNoMessageWithoutEnd)
{
    const std::string longest(longestHubMessage, 'x');
    HubSplitter splitter;
    EXPECT_THAT(taken(splitter, longest + hubSeparator + longest + hubSeparator),
                ElementsAre(longest, longest));
    EXPECT_THAT(taken(splitter, longest), IsEmpty());
    EXPECT_FALSE(splitter.take("x"));
    EXPECT_FALSE(HubSplitter().take(longest + "x" + hubSeparator));
}

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
         {R"({"type":6})", R"({"type":99,"sequenceId":1})", R"({})", R"({"type":2,"item":1})",
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
         {"", "[]", "null", "6", "{", R"({"type":"six"})", "{\"type\":6,\"x\":\"\xff\"}"})
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
