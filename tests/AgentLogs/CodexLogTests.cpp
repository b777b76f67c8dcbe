// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/LogLines.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testlogs::codex;
using testlogs::codexStart;
using testlogs::with;

std::string told(const std::vector<std::string> &lines)
{
    return testlogs::told(AgentSource::codex, lines);
}

std::string events(std::vector<std::string> lines)
{
    lines.insert(lines.begin(), codexStart("0b"));
    return testlogs::events(AgentSource::codex, lines);
}

std::string prompt(int second, std::string_view text)
{
    return codex("event_msg", second,
                 R"("type":"user_message","message":")" + std::string(text) + R"(","images":[])");
}

std::string task(int second, std::string_view turn = "")
{
    return codex("event_msg", second, R"("type":"task_started","turn_id":")" + std::string(turn) + '"');
}

std::string answer(int second)
{
    return codex("response_item", second, R"("type":"message","role":"assistant","content":[])");
}

std::string call(int second, std::string_view name, std::string_view more = {})
{
    return codex("response_item", second,
                 R"("type":"function_call","name":")" + std::string(name) + "\"" + std::string(more));
}

constexpr std::string_view spawned =
    R"(,"source":{"subagent":{"thread_spawn":{"parent_thread_id":"0a","depth":1,"agent_path":null}}})";

TEST(CodexLogTest, TellsPromptsAndWork)
{
    EXPECT_EQ(events({prompt(0, "a")}), " P0");
    EXPECT_EQ(
        events({codex("response_item", 0, R"("type":"message","role":"user","content":[])"),
                codex("response_item", 0, R"("type":"message","role":"developer","content":[])"),
                codex("response_item", 1, R"("type":"function_call_output","call_id":"c","output":"x")"),
                codex("response_item", 1, R"("type":"reasoning","summary":[])"),
                codex("response_item", 1, R"("type":"agent_message","author":"/root","content":[])"),
                codex("event_msg", 2, R"("type":"token_count","info":null)"),
                codex("event_msg", 2, R"("type":"agent_message","message":"x")"),
                codex("turn_context", 3, R"("cwd":"/elsewhere")"), codex("compacted", 3, R"("message":"")"),
                codex("response_item", 3, ""), with(answer(4), "2026", "x"), "[1]", task(1) + task(2)}),
        "");
    EXPECT_EQ(events({task(0), prompt(0, "a"), answer(1), call(2, "exec_command"),
                      codex("response_item", 3, R"("type":"web_search_call","status":"completed")"),
                      codex("response_item", 4, R"("role":"assistant","type":"message","content":[])")}),
              " P0 W0 W1 W2 W3 W4");
    EXPECT_EQ(told({answer(0), prompt(1, "a")}), "") << "nothing has named a session yet";
}

TEST(CodexLogTest, LeavesOutTheWorkOfTurnsThatOnlyCalledOurTools)
{
    const auto own = [](int second) { return call(second, "list_entries", R"(,"namespace":"mcp__orvane")"); };
    EXPECT_EQ(events({task(0), prompt(0, "a"), answer(1), own(2), answer(3), task(9), prompt(9, "b")}),
              " P0 P9 W9");
    EXPECT_EQ(events({task(0), prompt(0, "a"), own(2), call(3, "shell")}), " P0 W0 W2 W3");
    EXPECT_EQ(events({task(0), prompt(0, "a"), own(2), prompt(3, "b"), call(4, "shell"), task(5), own(6)}),
              " P0 P3 W4")
        << "a prompt given while the agent works begins a turn too";
    EXPECT_EQ(events({prompt(0, "a"), call(1, "mcp__orvane__add"), call(2, "clock__add"),
                      codex("response_item", 3, R"("type":"tool_search_call")")}),
              " P0");
    const auto code = [](int second, std::string_view text) {
        return codex("response_item", second,
                     R"("type":"custom_tool_call","name":"exec","input":")" + std::string(text) + '"');
    };
    EXPECT_EQ(
        events({prompt(0, "a"), code(1, "await tools.mcp__orvane__list({});\\ntools[\\\"clock__add\\\"]()")}),
        " P0");
    EXPECT_EQ(events({prompt(0, "a"), code(1, "tools.mcp__orvane__list(); tools.shell({})")}), " P0 W1");
    EXPECT_EQ(events({prompt(0, "a"), code(1, "1 + 1")}), " P0 W1");
}

TEST(CodexLogTest, KnowsItsSessionByTheFirstLineOfIt)
{
    const std::string start = codexStart("0b", R"(,"cwd":"/w","source":"cli","git":{"branch":"main"})");
    EXPECT_EQ(told({start, prompt(1, "a"), start, answer(2)}), "codex:0b | /w | a #main | P1 W2\n");
    EXPECT_EQ(told({start, prompt(1, "a"), codexStart("0c", R"(,"cwd":"/x")", 2), answer(3)}),
              "codex:0b | /w | a #main | P1 W3\n")
        << "another session's, behind our own beginning";
    EXPECT_EQ(
        told({codexStart("", ""), codex("session_meta", 0, R"("id":7)"), with(start, R"("2026)", R"("x)")}),
        "codex:0b | /w #main |\n");
    EXPECT_EQ(told({with(start, R"("type":"session_meta",)", ""), with(start, "session_", "session\\u005f")}),
              "codex:0b | /w #main |\n");
}

TEST(CodexLogTest, TakesAPromptInASubAgentsFileForWork)
{
    const struct {
        std::string_view source, parent;
    } cases[]{
        {spawned, " | codex:0a"},
        {R"(,"source":{"subagent":"review"},"parent_thread_id":"0c")", " | codex:0c"},
        {R"(,"source":{"subagent":"review"})", ""},
        {R"(,"source":"review")", ""},
        {R"(,"source":"subagent","parent_thread_id":"0c")", " | codex:0c"},
    };
    for (const auto &[source, parent] : cases)
        EXPECT_EQ(told({codexStart("0b", source), prompt(1, "the order"), answer(2)}),
                  "codex:0b" + std::string(parent) + " | W1 W2\n");
    for (const std::string_view source : {R"(,"source":"cli","parent_thread_id":"0c")",
                                          R"(,"source":{"subagent":null})", R"(,"source":[])", ""})
        EXPECT_EQ(told({codexStart("0b", source), prompt(1, "a")}), "codex:0b | a | P1\n");
}

TEST(CodexLogTest, PassesOverTheHistoryOfAForkedSession)
{
    const std::string own = "019d7e30-2f7a-7f60-a942-c59ab0be98d9";
    const std::string parent = "019d7d08-46c9-7f73-affe-4e6ca9852d56";
    std::vector<std::string> lines{codexStart(own, spawned),
                                   codexStart(parent, R"(,"cwd":"/p")"),
                                   task(0, "019d7d09-0000-7000-8000-000000000000"),
                                   prompt(0, "parent's"),
                                   call(0, "shell"),
                                   codexStart(parent),
                                   answer(0),
                                   codex("event_msg", 40, R"("type":"token_count")")};
    const std::string line = "codex:" + own + " | codex:0a |";
    EXPECT_EQ(told(lines), line + "\n");
    lines.push_back(prompt(1, "within the second"));
    EXPECT_EQ(told(lines), line + "\n");
    std::vector<std::string> byTask = lines;
    byTask.push_back(task(1, "019d7e30-3000-7000-8000-000000000000"));
    byTask.push_back(prompt(1, "the order"));
    byTask.push_back(codexStart(parent, {}, 2));
    byTask.push_back(call(2, "shell"));
    EXPECT_EQ(told(byTask), line + " W1 W2\n");
    std::vector<std::string> byTime = lines;
    byTime.push_back(answer(3));
    EXPECT_EQ(told(byTime), line + " W3\n");
    std::vector<std::string> odd = lines;
    odd.push_back(task(1, "turn-1"));
    odd.push_back(answer(1));
    EXPECT_EQ(told(odd), line + "\n") << "an id that says nothing of its time";
    EXPECT_EQ(told({codexStart(own), codexStart(parent), prompt(0, "parent's"), prompt(5, "mine")}),
              "codex:" + own + " | mine | P5\n")
        << "the user can fork a session too";
}

} // namespace
} // namespace orvane
