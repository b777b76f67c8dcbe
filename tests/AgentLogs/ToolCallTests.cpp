// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/ToolCall.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(ToolCallTest, KnowsOurConnectorByNameServerOrNamespace)
{
    for (const std::string_view name : {"mcp__orvane__list_entries", "mcp__clock__x", "clock__add",
                                        "orvane__add", "a mcp__orvane__b", "mcp__orvane__"})
        EXPECT_EQ(toolCall(name), ToolCall::own) << name;
    for (const std::string_view server : {"orvane", "clock", "mcp__orvane", "mcp__orvane__"})
        EXPECT_EQ(toolCall("list", server), ToolCall::own) << server;
    for (const std::string_view name : {"ToolSearch", "tool_search_call", "report_intent"})
        EXPECT_EQ(toolCall(name), ToolCall::neutral) << name;
    for (const std::string_view name :
         {"", "Bash", "orvane", "clock", "mcp__", "mcp____orvane__x", "mcp__orvane_x__y", "mcp__orvane2__x",
          "mcp__x__orvane__y", "MCP__orvane__x", "mcp__or vane__x"})
        EXPECT_EQ(toolCall(name), ToolCall::other) << name;
    EXPECT_EQ(toolCall("x", "orvane2"), ToolCall::other);
}

TEST(ToolCallTest, FindsTheToolsThatCodeCalls)
{
    const auto told = [](std::string_view code) {
        ToolCalls calls;
        calls.addCode(code);
        return std::string(calls.hasOwn() ? "own " : "") + (calls.hasOther() ? "other" : "");
    };
    EXPECT_EQ(told("await tools.mcp__orvane__list({})"), "own ");
    EXPECT_EQ(told("tools\n . clock__add(1); tools[ \"ToolSearch\"]()"), "own ");
    EXPECT_EQ(told("tools['mcp__orvane__a'](); tools[`shell`]()"), "own other");
    EXPECT_EQ(told("tools.ToolSearch()"), "");
    for (const std::string_view code : {"", "tools", "tools.", "tools[", "tools[\"", "tools[0]", "tools()",
                                        "tool.x()", "mcp__orvane__list()"})
        EXPECT_EQ(told(code), "other") << code;
}

} // namespace
} // namespace orvane
