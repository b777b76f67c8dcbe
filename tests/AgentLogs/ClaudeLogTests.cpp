// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/LogLines.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testlogs::claude;
using testlogs::claudeCall;
using testlogs::with;

std::string told(const std::vector<std::string> &lines)
{
    return testlogs::told(AgentSource::claude, lines);
}

std::string events(const std::vector<std::string> &lines)
{
    return testlogs::events(AgentSource::claude, lines);
}

constexpr std::string_view result = R"([{"tool_use_id":"t","type":"tool_result","content":"done"}])";

std::string prompt(int second, const std::string &text)
{
    return claude("user", second, '"' + text + '"');
}

std::string queued(int second, std::string_view attachment)
{
    return with(claude("attachment", second, "[]"), R"("message":{"role":"user","content":[]})",
                R"("attachment":)" + std::string(attachment));
}

TEST(ClaudeLogTest, TellsPromptsAndWorkFromWhatNobodyTyped)
{
    const struct {
        std::string_view content, more, events;
    } cases[]{
        {R"("mend the roof")", "", " P0"},
        {R"([{"type":"text","text":"mend"},{"type":"image"},{"type":"text","text":"it"}])", "", " P0"},
        {R"("<command-name>/ide</command-name>")", "", " P0"},
        {R"("<bash-input>ls</bash-input>")", "", " P0"},
        {R"("Implement the following plan:")", "", " P0"},
        {R"("mend it")", R"(,"promptSource":"typed")", " P0"},
        {R"([{"type":"tool_result","content":""},{"type":"text","text":"typed meanwhile"}])", "", " P0"},
        {R"([{"text":"typed meanwhile","type":"text"},{"content":"","type":"tool_result"}])", "", " P0"},
        {R"(["odd",{"type":"text","text":"beside something else"},null])", "", " P0"},
        {R"("says \"<task-notification>\"")", "", " P0"},
        {R"("cut in the middle of \ud83d")", "", " P0"},
        {result, "", " W0"},
        {result, R"(,"isMeta":true)", " W0"},
        {R"([{"type":"tool_result","content":[{"type":"text","text":"inside"}]}])", "", " W0"},
        {R"("mend it")", R"(,"isMeta":true)", ""},
        {R"("mend it")", R"(,"promptSource":"system")", ""},
        {R"("")", "", ""},
        {R"([])", "", ""},
        {R"({"type":"text","text":"no list"})", "", ""},
    };
    for (const auto &[content, more, expected] : cases)
        EXPECT_EQ(events({claude("user", 0, content, more)}), expected) << content << more;
}

TEST(ClaudeLogTest, LetsNoticesTellNothingAtAll)
{
    for (const std::string_view text :
         {"[Request interrupted by user]", "[Request interrupted by user for tool use]",
          "<local-command-stdout></local-command-stdout>", "<local-command-stderr>no", "<bash-stdout>x",
          "<task-notification> <task-id>"})
        EXPECT_EQ(told({prompt(0, std::string(text)),
                        claude("user", 1, R"([{"type":"text","text":")" + std::string(text) + R"("}])")}),
                  "")
            << text;
    EXPECT_EQ(told({claude("user", 0, R"("This session goes on from")", R"(,"isCompactSummary":true)")}), "");
    for (const std::string_view type : {"system", "progress", "summary", "last-prompt", "started", "x", ""})
        EXPECT_EQ(told({claude(type, 0, R"("mend it")")}), "") << type;
}

TEST(ClaudeLogTest, CountsAQueuedPromptOnce)
{
    const std::string again =
        queued(1, R"({"type":"queued_command","prompt":"try again","commandMode":"prompt"})");
    EXPECT_EQ(events({again}), " P1");
    EXPECT_EQ(events({again, prompt(5, "try again"), prompt(6, "try again")}), " P1 P6");
    EXPECT_EQ(events({again, again, prompt(5, "try again"), prompt(6, "else")}), " P1 P6")
        << "two of one instant are one";
    EXPECT_EQ(
        events(
            {queued(
                 1,
                 R"({"prompt":[{"type":"text","text":"a"}],"commandMode":"prompt","type":"queued_command"})"),
             prompt(2, "a")}),
        " P1");
    EXPECT_EQ(events({with(again, R"("attachment":)", R"("message":{"content":"x"},"attachment":)")}), " P1");
    EXPECT_EQ(
        events(
            {queued(1, R"({"type":"queued_command","prompt":"a","commandMode":"task-notification"})"),
             queued(2, R"({"type":"hook_success","prompt":"a","commandMode":"prompt"})"),
             queued(3, R"({"type":"queued_command","prompt":"<task-notification>","commandMode":"prompt"})"),
             queued(4, R"("queued_command")")}),
        "");
}

TEST(ClaudeLogTest, LeavesOutTheWorkOfTurnsThatOnlyCalledOurTools)
{
    const auto answer = [](int second) {
        return claude("assistant", second, R"([{"type":"text","text":"so"}])");
    };
    const auto back = [](int second) { return claude("user", second, result); };
    const std::string own = "mcp__orvane__list_entries";
    EXPECT_EQ(events({prompt(0, "a"), answer(1), claudeCall(2, own), back(3), answer(4), prompt(9, "b")}),
              " P0 P9");
    EXPECT_EQ(events({prompt(0, "a"), claudeCall(2, "ToolSearch"), claudeCall(3, own), back(4)}), " P0");
    EXPECT_EQ(events({prompt(0, "a"), answer(1), prompt(9, "b")}), " P0 W1 P9") << "without calls it is work";
    EXPECT_EQ(events({prompt(0, "a"), claudeCall(2, "ToolSearch"), prompt(9, "b")}), " P0 W2 P9");
    EXPECT_EQ(
        events({prompt(0, "a"), claudeCall(2, own), back(3), claudeCall(4, "Bash"), claudeCall(5, own)}),
        " P0 W2 W3 W4 W5")
        << "one other call makes all of the turn work";
    EXPECT_EQ(events({prompt(0, "a"), claudeCall(2, own), prompt(3, "b"), claudeCall(4, "Bash"),
                      prompt(5, "c"), claudeCall(6, own), answer(7)}),
              " P0 P3 W4 P5");
    EXPECT_EQ(events({prompt(0, "a"), claude("assistant", 1,
                                             R"([{"type":"tool_use","name":"mcp__orvane__add","input":{}},)"
                                             R"({"input":{},"name":"Bash","type":"server_tool_use"}])")}),
              " P0 W1");
    EXPECT_EQ(events({claude("assistant", 1, R"([{"type":"tool_use","name":"mcp__\u006frvane__add"}])")}),
              "");
}

TEST(ClaudeLogTest, FilesLinesUnderTheirSessionAndFollowsItsPlace)
{
    const std::string moved =
        with(with(claude("assistant", 5, "[]"), "\"/w\"", R"("C:\\w\\\u00e9")"), "main", "fix");
    EXPECT_EQ(told({prompt(0, "a"), moved, claudeCall(6, "Bash"), moved}),
              "claude:s | C:\\w\\\xC3\xA9 | a #main #fix | P0 W5 W6\n");
    const std::string sidechain = with(moved, R"("isSidechain":false)", R"("isSidechain":true)");
    EXPECT_EQ(told({prompt(0, "a"), sidechain}), "claude:s | /w | a #main | P0 W5\n");
    EXPECT_EQ(
        told({with(prompt(0, "the order"), R"("isSidechain":false)", R"("isSidechain":true)"), sidechain}),
        "claude:s | W5\n")
        << "a sub-agent's file: its first user line is another agent's order";
    EXPECT_EQ(told({prompt(0, "a"), with(claudeCall(1, "Bash"), R"("s")", R"("t")"), claudeCall(2, "Bash")}),
              "claude:s | /w | a #main | P0 W2\nclaude:t | /w #main | W1\n");
    const std::string nameless = with(claudeCall(3, "Bash"), R"("sessionId":"s",)", "");
    EXPECT_EQ(told({nameless}), "");
    EXPECT_EQ(told({prompt(0, "a"), nameless}), "claude:s | /w | a #main | P0 W3\n");
    EXPECT_EQ(told({R"({"type":"assistant","sessionId":"s","timestamp":"2026-04-30T10:00:01Z"})"}),
              "claude:s | W1\n");
}

TEST(ClaudeLogTest, TakesTitlesFromTheUserThenTheAgentThenThePrompts)
{
    const auto title = [](std::string_view type, std::string_view member, const std::string &text) {
        return R"({"type":")" + std::string(type) + R"(","sessionId":"s",")" + std::string(member) +
               R"(":")" + text + "\"}";
    };
    const std::string ai = title("ai-title", "aiTitle", "By the agent");
    const std::string custom = title("custom-title", "customTitle", std::string(100, 'x'));
    const std::string cut = std::string(80, 'x');
    const auto titleOf = [](const std::vector<std::string> &lines) {
        AgentLogParser parser(AgentSource::claude);
        for (const std::string &line : lines)
            parser.read(line);
        return parser.sessions().front().title;
    };
    EXPECT_EQ(titleOf({custom, prompt(0, "a"), ai}), cut);
    EXPECT_EQ(titleOf({prompt(0, "a"), ai, custom, ai}), cut);
    EXPECT_EQ(titleOf({title("ai-title", "aiTitle", "First"), prompt(0, "a"), ai, claudeCall(1, "Bash")}),
              "By the agent");
    EXPECT_EQ(titleOf({prompt(0, "Mend\\nthe roof"), claudeCall(1, "Bash"), prompt(2, "b")}),
              "Mend the roof");
    EXPECT_EQ(
        titleOf({prompt(0, "a"), claudeCall(1, "mcp__orvane__add"), prompt(2, "b"), claudeCall(3, "Bash")}),
        "b")
        << "a turn with our tools alone does not say what the session is about";
    EXPECT_EQ(titleOf({prompt(0, "<command-name>/ide</command-name>"), claudeCall(1, "Bash")}), "/ide");
    EXPECT_EQ(titleOf({prompt(0, "<command-name>/ide</command-name>"), claudeCall(1, "Bash"), prompt(2, "b"),
                       prompt(3, "c")}),
              "b");
    EXPECT_EQ(titleOf({prompt(0, "a"), title("ai-title", "aiTitle", " "), prompt(1, "b")}), "a");
}

TEST(ClaudeLogTest, PassesOverWhatDoesNotDecode)
{
    const std::string good = claudeCall(1, "Bash");
    const std::vector<std::string> broken{"",
                                          " ",
                                          "\"text\"",
                                          "[]",
                                          "null",
                                          std::string(5, '\0'),
                                          "{",
                                          "{}",
                                          good.substr(0, 20),
                                          good.substr(0, good.find("Bash")),
                                          std::string(3, '\0') + prompt(2, "a"),
                                          prompt(2, "a") + prompt(3, "b"),
                                          prompt(2, "a").substr(0, 150) + prompt(3, "b"),
                                          with(prompt(2, "a"), "\"a\"", "\"a\xFF\""),
                                          with(prompt(2, "a"), "\"a\"", "\"a\tb\""),
                                          with(good, "\"2026", "\"x2026"),
                                          with(good, R"("timestamp":")", R"("timestamp":0,"x":")"),
                                          testlogs::codexStart("c"),
                                          testlogs::copilot("user.message", 0, "")};
    EXPECT_EQ(told(broken), "");
    std::vector<std::string> lines{prompt(0, "a")};
    lines.insert(lines.end(), broken.begin(), broken.end());
    lines.push_back(good + "\r");
    lines.push_back(with(prompt(4, "b"), "\"b\"", "\"b\xE2\x80\xA8\""));
    EXPECT_EQ(told(lines), "claude:s | /w | a #main | P0 W1 P4\n");
    EXPECT_EQ(events({prompt(4, "late"), claudeCall(9, "Bash"), prompt(0, "early"), claudeCall(2, "Bash")}),
              " P0 W2 P4 W9")
        << "out of order";
}

} // namespace
} // namespace orvane
