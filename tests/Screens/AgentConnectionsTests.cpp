// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/StandInHome.h"
#include "Screens/OpenedApp.h"
#include "Screens/Settings/AgentConnections.h"

namespace orvane {
namespace {

using testing::eventually;
using testing::HomeInUse;
using testing::StandInHome;
using Mood = AgentConnection::Mood;

/// Settings > Connect Agents over the real server, with a stand-in for Claude Code's command.
class AgentConnectionsTest : public testing::OpenedApp {
protected:
    void SetUp() override
    {
        OpenedApp::SetUp();
        m_home.install("claude");
    }
    static bool settles(const AgentConnection &agent)
    {
        return eventually([&] { return !agent.isRunning(); });
    }
    std::string endpoint() const { return app.account()->server() + "/mcp"; }

    StandInHome m_home;
    HomeInUse m_inUse{m_home};
    AgentConnections m_agents{app};
    AgentConnection &m_claude = *m_agents.claudeCode();
    AgentConnection &m_codex = *m_agents.codex();
};

TEST_F(AgentConnectionsTest, ConnectsAndDisconnects)
{
    EXPECT_EQ(m_claude.message(), QStringLiteral("Not connected."));
    EXPECT_FALSE(m_claude.canDisconnect());
    ASSERT_TRUE(m_claude.canConnect());
    EXPECT_EQ(m_codex.addCommand().toStdString(), "codex mcp add orvane --url " + endpoint());
    m_claude.begin();
    EXPECT_TRUE(m_claude.isRunning());
    EXPECT_FALSE(m_claude.canConnect() || m_claude.canDisconnect()) << "one attempt at a time";
    EXPECT_TRUE(m_codex.canConnect()) << "but the other agent does not wait";
    ASSERT_TRUE(settles(m_claude));
    EXPECT_EQ(m_claude.message(),
              QStringLiteral("Connected. Start a new session in Claude Code to use Orvane."));
    EXPECT_EQ(m_claude.mood(), Mood::Good);
    EXPECT_FALSE(m_claude.canConnect());
    {
        AgentConnections later(app);
        EXPECT_EQ(later.claudeCode()->message(), QStringLiteral("Added to Claude Code on this computer."));
        EXPECT_TRUE(later.claudeCode()->canConnect() && later.claudeCode()->canDisconnect());
    }
    ASSERT_TRUE(m_claude.canDisconnect());
    m_claude.remove();
    ASSERT_TRUE(settles(m_claude));
    EXPECT_EQ(m_claude.message(), QStringLiteral("Disconnected. Claude Code no longer uses Orvane."));
    EXPECT_TRUE(m_claude.canConnect());
    EXPECT_FALSE(m_claude.canDisconnect());
}

TEST_F(AgentConnectionsTest, AsksToCopyWhatCannotBeRun)
{
    m_codex.begin();
    ASSERT_TRUE(settles(m_codex));
    EXPECT_TRUE(m_codex.asksToCopy());
    EXPECT_EQ(m_codex.mood(), Mood::Bad);
    EXPECT_TRUE(m_codex.canConnect()) << "again, once it is installed";
    m_home.does("remove", "exit 3");
    m_claude.begin();
    ASSERT_TRUE(settles(m_claude));
    EXPECT_FALSE(m_claude.asksToCopy());
    m_claude.remove();
    ASSERT_TRUE(settles(m_claude));
    EXPECT_TRUE(m_claude.asksToCopy());
    EXPECT_TRUE(m_claude.canDisconnect());
}

TEST_F(AgentConnectionsTest, CanBeCalledOff)
{
    m_home.does("login", StandInHome::descend() + "sleep 300");
    m_claude.begin();
    ASSERT_TRUE(eventually([this] { return m_home.descendants().size() == 3; }));
    m_agents.cancel();
    ASSERT_TRUE(settles(m_claude));
    EXPECT_TRUE(m_home.living().empty());
    EXPECT_EQ(m_claude.mood(), Mood::Note);
    EXPECT_TRUE(m_claude.message().startsWith(QLatin1String("Not signed in.")))
        << m_claude.message().toStdString();
    EXPECT_TRUE(m_claude.canConnect());
}

} // namespace
} // namespace orvane
