// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/AgentCommands.h"
#include "AgentConnector/LoginShell.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

const std::string endpoint = "https://time.example.com/mcp";

TEST(AgentCommandsTest, AreThoseThatPeopleCopy)
{
    EXPECT_EQ(agentEndpoint("https://time.example.com"), endpoint);
    EXPECT_EQ(agentEndpoint("https://time.example.com/"), endpoint);
    EXPECT_EQ(addCommand(CodingAgent::claudeCode, endpoint),
              "claude mcp add --transport http --scope user orvane https://time.example.com/mcp");
    EXPECT_EQ(addCommand(CodingAgent::codex, endpoint),
              "codex mcp add orvane --url https://time.example.com/mcp");
    EXPECT_EQ(removeCommand(CodingAgent::claudeCode), "claude mcp remove --scope user orvane");
    EXPECT_EQ(removeCommand(CodingAgent::codex), "codex mcp remove orvane");
}

TEST(AgentCommandsTest, QuoteWhatAShellWouldTakeApart)
{
    EXPECT_EQ(quotedArgument("aZ09-_./:@%+=,"), "aZ09-_./:@%+=,");
    EXPECT_EQ(quotedArgument("a b"), "'a b'");
    EXPECT_EQ(quotedArgument("it's"), "'it'\\''s'");
    EXPECT_EQ(quotedArgument("$(x)"), "'$(x)'");
    EXPECT_EQ(quotedArgument("ü"), "'ü'");
    EXPECT_EQ(quotedArgument(""), "''");
    EXPECT_EQ(addCommand(CodingAgent::codex, "http://h/a'b c"),
              "codex mcp add orvane --url 'http://h/a'\\''b c'");
}

TEST(AgentCommandsTest, PutTheSignInOnATerminalAsTheInstalledProgramWantsIt)
{
    EXPECT_EQ(signInCommand(CodingAgent::codex, TerminalForm::bsd),
              "script -q /dev/null codex mcp login orvane");
    EXPECT_EQ(signInCommand(CodingAgent::codex, TerminalForm::utilLinux),
              "script -qec 'codex mcp login orvane' /dev/null");
    EXPECT_EQ(signInCommand(CodingAgent::claudeCode, TerminalForm::none), "claude mcp login orvane");
    EXPECT_EQ(guardedCommand(CodingAgent::codex, "codex x"),
              "command -v codex >/dev/null 2>&1 || exit 127; exec codex x");
}

TEST(LoginShellTest, HasTheFoldersForToolsBehindThePathNoneTwice)
{
    const std::string rest = "/h/.claude/local:/opt/homebrew/bin:/usr/local/bin:/h/.bun/bin:/h/.volta/bin:"
                             "/h/.npm-global/bin";
    EXPECT_EQ(searchPath({{"HOME", "/h"}, {"PATH", "/bin"}}), "/bin:/h/.local/bin:" + rest);
    EXPECT_EQ(searchPath({{"HOME", "/h"}, {"PATH", "/h/.local/bin:/bin"}}), "/h/.local/bin:/bin:" + rest);
    EXPECT_EQ(searchPath({{"HOME", "/h"}}), "/usr/bin:/bin:/usr/sbin:/sbin:/h/.local/bin:" + rest);
    EXPECT_EQ(searchPath({{"PATH", "/bin"}}), "/bin:/opt/homebrew/bin:/usr/local/bin");
}

TEST(LoginShellTest, IsTheUsersOwnAndElseZsh)
{
    EXPECT_EQ(loginShell({{"SHELL", "/usr/bin/fish"}}), "/usr/bin/fish");
    EXPECT_EQ(loginShell({{"SHELL", ""}}), "/bin/zsh");
    EXPECT_EQ(loginShell({}), "/bin/zsh");
    EXPECT_EQ(variableAssignment("/bin/zsh", "A", "b c"), "export A='b c'; ");
    EXPECT_EQ(variableAssignment("/usr/bin/fish", "A", "b c"), "set -gx A 'b c'; ");
    EXPECT_EQ(pathAssignment("/bin/tcsh", {"/a"}), "") << "a language that is not known is left alone";
}

} // namespace
} // namespace orvane
