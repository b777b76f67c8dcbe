// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/AgentConnector.h"
#include "StandInHome.h"
#include "support/ManualRetryTimer.h"

namespace orvane {
namespace {

using testing::await;
using testing::eventually;
using testing::StandInHome;
using Calls = std::vector<std::string>;

const std::string address = "https://time.example.com/mcp";
const std::string claudeAdd = "claude mcp add --transport http --scope user orvane " + address;
const std::string claudeRemove = "claude mcp remove --scope user orvane";
const std::string claudeLogin = "claude mcp login orvane (on a terminal)";

/// The connector with stand-ins for the agents' commands.
class AgentConnectorTest : public ::testing::Test {
protected:
    ~AgentConnectorTest() override
    {
        for (const pid_t pid : m_home.living())
            ::kill(pid, SIGKILL);
    }

    AgentConnector::Options options(const std::string &shell = "/bin/bash")
    {
        return {.folder = m_home.path(), .environment = m_home.environment(shell), .timer = [this] {
                    auto timer = std::make_unique<ManualRetryTimer>();
                    m_timer = timer.get();
                    return timer;
                }};
    }
    std::string said(AgentConnector &connector, CodingAgent agent = CodingAgent::claudeCode)
    {
        await(connector.connectAgent(agent, address));
        EXPECT_FALSE(connector.isRunning(agent));
        return connector.message(agent);
    }
    std::string said()
    {
        AgentConnector connector(options());
        return said(connector);
    }
    /// What is said when time runs out at the stand-in's step, which waits after it has begun.
    std::string saidAfterWaitingAt(const std::string &verb)
    {
        m_home.does(verb, StandInHome::descend() + "trap '' TERM HUP\nwhile :; do sleep 300; done");
        AgentConnector connector(options());
        auto attempt = connector.connectAgent(CodingAgent::claudeCode, address);
        EXPECT_TRUE(eventually([this] { return m_home.descendants().size() == 3; }));
        if (!connector.isRunning(CodingAgent::claudeCode))
            return "It was over already.";
        EXPECT_EQ(m_timer->delays.back(), std::chrono::seconds{30});
        m_timer->advance(std::chrono::seconds{30});
        await(std::move(attempt));
        EXPECT_TRUE(m_home.living().empty());
        return connector.message(CodingAgent::claudeCode);
    }

    StandInHome m_home;
    ManualRetryTimer *m_timer = nullptr;
};

class AgentConnectorShellTest : public AgentConnectorTest,
                                public ::testing::WithParamInterface<const char *> {};

TEST_P(AgentConnectorShellTest, ConnectsBothAgentsWhateverStartUpFilesDoToThePath)
{
    for (const char *file : {".bash_profile", ".zshrc"})
        m_home.write(file, "echo \"Welcome back, it's late\"\nexport PATH=/usr/bin:/bin\n");
    m_home.write(".config/fish/config.fish", "echo Welcome\nset -gx PATH /usr/bin /bin\n");
    m_home.install("claude");
    m_home.install("codex");
    AgentConnector connector(options(GetParam()));
    EXPECT_EQ(said(connector), "Connected. Start a new session in Claude Code to use Orvane.");
    EXPECT_EQ(said(connector, CodingAgent::codex), "Connected. Start a new session in Codex to use Orvane.");
    EXPECT_EQ(m_home.calls(), (Calls{claudeAdd, claudeLogin, "codex mcp add orvane --url " + address,
                                     "codex mcp login orvane (on a terminal)"}));
    EXPECT_EQ(connector.endpoint(CodingAgent::codex), address);
}

TEST_P(AgentConnectorShellTest, NoticesAMissingTool)
{
    AgentConnector connector(options(GetParam()));
    EXPECT_EQ(said(connector, CodingAgent::codex),
              "Codex isn't installed, or its command isn't on the shell's path. Copy the commands instead.");
    EXPECT_EQ(connector.endpoint(CodingAgent::codex), std::nullopt);
}

TEST_P(AgentConnectorShellTest, HandsAnOddAddressOverWhole)
{
    m_home.install("codex");
    AgentConnector connector(options(GetParam()));
    const std::string odd = "http://h/it's $HOME `id` \\ \"x\" *";
    EXPECT_EQ(await(connector.connectAgent(CodingAgent::codex, odd)), AgentSituation::connected);
    EXPECT_EQ(m_home.calls().at(0), "codex mcp add orvane --url " + odd);
}

INSTANTIATE_TEST_SUITE_P(Shells, AgentConnectorShellTest,
                         ::testing::Values("/bin/bash", "/usr/bin/zsh", "/usr/bin/fish"),
                         [](const auto &info) {
                             return std::string(info.param).substr(std::string(info.param).rfind('/') + 1);
                         });

TEST_F(AgentConnectorTest, SaysWhatWentWrong)
{
    m_home.install("claude");
    m_home.does("login", "echo \"error: Unknown Command 'login'\" >&2; exit 1");
    EXPECT_EQ(said(),
              "Added to Claude Code. To sign in, run /mcp in Claude Code, choose orvane, then Authenticate.");
    m_home.does("login", "exit 1");
    EXPECT_EQ(said(), "Claude Code didn't connect.");
    m_home.does("add", "echo broken; exit 1");
    m_home.write("calls", "");
    EXPECT_EQ(said(), "Claude Code didn't connect.");
    EXPECT_EQ(m_home.calls(), Calls{claudeAdd});
    m_home.install("codex");
    m_home.does("add", "");
    m_home.does("login", "echo unknown command; exit 2");
    AgentConnector connector(options());
    EXPECT_EQ(said(connector, CodingAgent::codex), "Codex didn't connect.");
}

TEST_F(AgentConnectorTest, GivesUpAnAddThatHangs)
{
    m_home.install("claude");
    EXPECT_EQ(saidAfterWaitingAt("add"), "Claude Code didn't answer. Copy the commands instead.");
    EXPECT_EQ(m_home.calls(), Calls{claudeAdd});
    EXPECT_EQ(RegisteredEndpoints(m_home.path()).of(CodingAgent::claudeCode), std::nullopt);
}

TEST_F(AgentConnectorTest, GivesUpASignInThatNobodyFinishes)
{
    m_home.install("claude");
    EXPECT_EQ(saidAfterWaitingAt("login"), "Not signed in. Connect again when you're ready, or sign in from "
                                           "Claude Code to use Orvane.");
    EXPECT_EQ(RegisteredEndpoints(m_home.path()).of(CodingAgent::claudeCode), address);
}

TEST_F(AgentConnectorTest, IsNotKeptWaitingByAToolThatAsks)
{
    m_home.install("claude");
    m_home.does("add", "printf 'Overwrite? '; read -r answer || exit 7");
    EXPECT_EQ(said(), "Claude Code didn't connect.");
    m_home.does("add", "");
    m_home.does("login", "printf 'Continue? '; read -r answer || exit 7");
    EXPECT_EQ(said(), "Claude Code didn't connect.");
}

TEST_F(AgentConnectorTest, AddsAnewWhatHasAnotherAddress)
{
    m_home.install("claude");
    // As the tool does it: one registration, which has to be removed before another one is taken.
    m_home.does(
        "add",
        "[ -f \"$HOME/is-there\" ] && { echo 'MCP server orvane Already Exists in user config'; exit 1; }\n"
        "touch \"$HOME/is-there\"");
    m_home.does("remove", "rm -f \"$HOME/is-there\"");
    m_home.write("is-there", "");
    AgentConnector connector(options());
    EXPECT_EQ(await(connector.connectAgent(CodingAgent::claudeCode, address)), AgentSituation::connected);
    EXPECT_EQ(m_home.calls(), (Calls{claudeAdd, claudeRemove, claudeAdd, claudeLogin}))
        << "of unknown address";
    m_home.write("calls", "");
    EXPECT_EQ(await(connector.connectAgent(CodingAgent::claudeCode, address)), AgentSituation::connected);
    EXPECT_EQ(m_home.calls(), (Calls{claudeAdd, claudeLogin})) << "of this one already";
    m_home.write("calls", "");
    EXPECT_EQ(await(connector.connectAgent(CodingAgent::claudeCode, "http://elsewhere/mcp")),
              AgentSituation::connected);
    EXPECT_EQ(m_home.calls().size(), 4U);
    EXPECT_EQ(connector.endpoint(CodingAgent::claudeCode), "http://elsewhere/mcp");
}

TEST_F(AgentConnectorTest, GoesOnWhereItCannotBeRemoved)
{
    m_home.install("codex");
    m_home.does("add", "echo already exists; exit 1");
    m_home.does("remove", "exit 1");
    AgentConnector connector(options());
    EXPECT_EQ(said(connector, CodingAgent::codex), "Connected. Start a new session in Codex to use Orvane.");
}

TEST_F(AgentConnectorTest, Disconnects)
{
    m_home.install("claude");
    AgentConnector connector(options());
    said(connector);
    EXPECT_EQ(await(connector.disconnectAgent(CodingAgent::claudeCode)), AgentSituation::disconnected);
    EXPECT_EQ(m_home.calls().back(), claudeRemove);
    EXPECT_EQ(connector.endpoint(CodingAgent::claudeCode), std::nullopt);
    m_home.does("remove", "exit 1");
    EXPECT_EQ(await(connector.disconnectAgent(CodingAgent::claudeCode)), AgentSituation::notDisconnected);
}

TEST_F(AgentConnectorTest, IsCalledOffAtEitherStep)
{
    m_home.install("claude");
    m_home.does("add", StandInHome::descend() + "sleep 300");
    AgentConnector connector(options());
    const auto begin = [&] {
        auto attempt = connector.connectAgent(CodingAgent::claudeCode, address);
        EXPECT_TRUE(eventually([this] { return m_home.descendants().size() == 3; }));
        connector.cancel(CodingAgent::claudeCode);
        await(std::move(attempt));
        EXPECT_TRUE(m_home.living().empty());
        return connector.situation(CodingAgent::claudeCode);
    };
    EXPECT_EQ(begin(), AgentSituation::none);
    m_home.does("add", "");
    m_home.write("pids", "");
    m_home.does("login", StandInHome::descend() + "sleep 300");
    EXPECT_EQ(begin(), AgentSituation::notSignedIn);
}

TEST_F(AgentConnectorTest, EndsAllWhenItGoes)
{
    m_home.install("claude");
    m_home.does("add", StandInHome::descend() + "sleep 300");
    auto connector = std::make_unique<AgentConnector>(options());
    auto attempt = connector->connectAgent(CodingAgent::claudeCode, address);
    ASSERT_TRUE(eventually([this] { return m_home.descendants().size() == 3; }));
    connector.reset();
    EXPECT_EQ(await(std::move(attempt)), AgentSituation::none);
    EXPECT_TRUE(m_home.living().empty());
}

} // namespace
} // namespace orvane
