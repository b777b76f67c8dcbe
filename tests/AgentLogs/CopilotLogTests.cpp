// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/LogLines.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testlogs::copilot;
using testlogs::with;

std::string told(const std::vector<std::string> &lines)
{
    return testlogs::told(AgentSource::copilot, lines);
}

const std::string start =
    copilot("session.start", 0, R"("sessionId":"c","version":1,"context":{"cwd":"/w"})");

std::string prompt(int second, std::string_view text, std::string_view more = {})
{
    return copilot("user.message", second, R"("content":")" + std::string(text) + "\"" + std::string(more));
}

std::string call(int second, std::string_view tool, std::string_view server = {})
{
    return copilot("tool.execution_start", second,
                   R"("toolName":")" + std::string(tool) + R"(","mcpServerName":")" + std::string(server) +
                       '"');
}

std::string events(std::vector<std::string> lines)
{
    lines.insert(lines.begin(), start);
    return testlogs::events(AgentSource::copilot, lines);
}

TEST(CopilotLogTest, TellsPromptsAndWork)
{
    EXPECT_EQ(events({prompt(0, "a", R"(,"source":"user","parentAgentTaskId":"t","delivery":"queued")")}),
              " P0");
    EXPECT_EQ(
        events(
            {prompt(0, "go on", R"(,"isAutopilotContinuation":true)"),
             prompt(1, "a skill", R"(,"source":"skill-migrate")"), prompt(2, "b", R"(,"source":"agent-1")"),
             prompt(3, "<system_notification>done"), with(prompt(4, "c"), R"("id")", R"("agentId":"s","id")"),
             copilot("assistant.turn_start", 5, ""), copilot("assistant.message", 6, R"("content":"so")"),
             copilot("tool.execution_complete", 7, ""), copilot("subagent.started", 8, ""), call(9, "bash")}),
        " W0 W1 W2 W3 W4 W5 W6 W7 W8 W9");
    EXPECT_EQ(
        events({copilot("system.message", 0, ""), copilot("permission.requested", 0, ""),
                copilot("tool", 0, ""), copilot("session.shutdown", 0, R"("sessionStartTime":1780000000000)"),
                copilot("", 0, ""), with(call(1, "bash"), "2026", "x"), "{}",
                call(1, "bash") + prompt(2, "glued"),
                copilot("assistant.message", 3, R"("content":"cut {"type":"user.message","data":{})"),
                std::string(9, '\0')}),
        "");
    EXPECT_EQ(told({prompt(0, "a"), call(1, "bash")}), "") << "nothing has named a session yet";
}

TEST(CopilotLogTest, LeavesOutTheWorkOfTurnsThatOnlyCalledOurTools)
{
    EXPECT_EQ(events({prompt(0, "a"), call(1, "report_intent"), call(2, "list", "orvane"), prompt(3, "b"),
                      call(4, "report_intent"), prompt(5, "c"), call(6, "list", "orvane"), call(7, "bash")}),
              " P0 P3 W4 P5 W6 W7");
}

TEST(CopilotLogTest, FollowsTheSessionsPlace)
{
    const std::string moved =
        copilot("session.context_changed", 2, R"("cwd":"/x","gitRoot":"/x","branch":"fix")");
    const std::string resumed = copilot("session.resume", 3, R"("context":{"cwd":"/y","branch":"main"})");
    EXPECT_EQ(told({start, prompt(1, "a")}), "copilot:c | /w | a | P1\n");
    EXPECT_EQ(told({start, moved, prompt(2, "a")}), "copilot:c | /x | a #fix | P2\n");
    EXPECT_EQ(told({start, moved, start, resumed, prompt(4, "a")}), "copilot:c | /y | a #fix #main | P4\n");
    EXPECT_EQ(told({resumed, moved}), "") << "a file that starts in the middle names no session";
    EXPECT_EQ(told({with(start, R"({"cwd":"/w"})", "[7]"), with(start, "\"c\"", "\"d\"")}),
              "copilot:c |\ncopilot:d | /w |\n");
}

} // namespace
} // namespace orvane
