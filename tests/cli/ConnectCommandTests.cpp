// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/StandInHome.h"
#include "CommandFixture.h"

#include <QProcess>

namespace orvane {
namespace {

using testing::eventually;
using testing::StandInHome;

/// `connect` with stand-ins for the agents' own commands.
class ConnectCommandTest : public Command {
protected:
    ConnectCommandTest()
    {
        for (const auto &[name, value] : m_home.environment("/bin/bash"))
            installation.environment[name] = value;
        m_home.install("claude");
    }
    ~ConnectCommandTest() override
    {
        for (const pid_t pid : m_home.living())
            ::kill(pid, SIGKILL);
    }

    std::string endpoint() const { return installation.hello()->address + "/mcp"; }

    StandInHome m_home;
};

TEST_F(ConnectCommandTest, TellsTheAgentWhereTheServerIs)
{
    const QJsonObject printed = done({"connect", "claude", "--print"});
    EXPECT_EQ(keys(printed), (Names{"commands", "message"}));
    EXPECT_TRUE(printed[u"message"].isNull());
    EXPECT_TRUE(m_home.calls().empty()) << "nothing was tried";
    const std::string add = "claude mcp add --transport http --scope user orvane " + endpoint();
    EXPECT_EQ(text(printed[u"commands"].toArray()[0]), add);
    EXPECT_EQ(text(printed[u"commands"].toArray()[1]), "claude mcp remove --scope user orvane");
    EXPECT_EQ(installation.run({"connect", "claude", "--print"}).output,
              add + "\nclaude mcp remove --scope user orvane\n");

    const CommandRun run = installation.run({"connect", "claude"});
    EXPECT_EQ(run.exitStatus, 0) << run.all();
    EXPECT_EQ(run.output, "Connected. Start a new session in Claude Code to use Orvane.\n");
    EXPECT_EQ(m_home.calls(), (Names{add, "claude mcp login orvane (on a terminal)"}));
    m_home.does("login", "echo unknown command; exit 1");
    EXPECT_EQ(text(done({"connect", "claude"})[u"message"]),
              "Added to Claude Code. To sign in, run /mcp in Claude Code, choose orvane, then Authenticate.");
}

TEST_F(ConnectCommandTest, ShowsWhatToCopyWhereTheToolIsMissing)
{
    const CommandRun run = installation.run({"connect", "codex"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.output, "codex mcp add orvane --url " + endpoint() + "\ncodex mcp remove orvane\n");
    EXPECT_EQ(run.errors,
              "Codex isn't installed, or its command isn't on the shell's path. Copy the commands "
              "instead.\n");
    const CommandRun json = installation.json({"connect", "codex"});
    EXPECT_EQ(json.exitStatus, 1);
    EXPECT_EQ(json.object()[u"commands"].toArray().size(), 2);
    EXPECT_EQ(json.errors, "");
    EXPECT_EQ(installation.run({"connect"}).exitStatus, 2);
}

TEST_F(ConnectCommandTest, LeavesNothingRunningWhenItIsKilled)
{
    m_home.does("add", StandInHome::descend() + "sleep 300");
    const auto process = installation.start({"connect", "claude"});
    ASSERT_TRUE(eventually([this] { return m_home.descendants().size() == 3; }));
    process->kill();
    EXPECT_TRUE(process->waitForFinished());
    EXPECT_TRUE(eventually([this] { return m_home.living().empty(); }));
}

} // namespace
} // namespace orvane
