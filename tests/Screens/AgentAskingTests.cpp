// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/StandInHome.h"
#include "Screens/OpenedApp.h"
#include "Screens/Settings/AgentConnections.h"
#include "support/LoopbackAgent.h"

#include <thread>

namespace orvane {
namespace {

using testing::eventually;
using testing::HomeInUse;
using testing::LoopbackAgent;
using testing::StandInHome;

/// An agent that asks the window's user, over the real server; its own sign-in is real too.
class AgentAskingTest : public testing::OpenedApp {
protected:
    void open(const LoopbackAgent &agent)
    {
        m_asking.take(QString::fromStdString(agent.programLink()));
        EXPECT_TRUE(eventually([this] { return m_asking.isOpen(); }));
        EXPECT_EQ(m_asking.problem(), QString());
    }
    std::string server() const { return app.account()->server(); }
    bool lists(qsizetype count)
    {
        return eventually([&] { return m_signedIn.agents().size() == count; });
    }

    StandInHome m_home;
    HomeInUse m_inUse{m_home};
    AgentConnections m_agents{app};
    AgentAsking &m_asking = *m_agents.asking();
    SignedInAgents &m_signedIn = *m_agents.signedIn();
};

TEST_F(AgentAskingTest, LetsAnAgentInAndOutAgain)
{
    m_signedIn.setLookedAt(true);
    LoopbackAgent agent(server());
    int wanted = 0;
    QObject::connect(&m_asking, &AgentAsking::wanted, &m_asking, [&] { ++wanted; });
    open(agent);
    EXPECT_EQ(wanted, 1);
    EXPECT_EQ(m_asking.name(), QStringLiteral("Claude Code"));
    EXPECT_TRUE(m_asking.mayPropose());
    ASSERT_EQ(m_asking.workspaces().size(), 1);
    const QString workspace = m_asking.workspaces()[0].toMap()[QStringLiteral("id")].toString();
    m_asking.choose(workspace, false);
    m_asking.allow();
    EXPECT_EQ(m_asking.problem(), QStringLiteral("Choose a workspace."));
    m_asking.choose(workspace, true);
    m_asking.allow();
    EXPECT_TRUE(agent.getsTokensFor(agent.heard()));
    EXPECT_TRUE(eventually([this] { return !m_asking.isOpen(); }));

    // The server tells that there is one more; nobody asked again.
    ASSERT_TRUE(lists(1));
    const QVariantMap row = m_signedIn.agents()[0].toMap();
    EXPECT_EQ(row[QStringLiteral("name")], QStringLiteral("Claude Code"));
    EXPECT_TRUE(row[QStringLiteral("reach")].toString().endsWith(QStringLiteral(": read, propose")));
    EXPECT_TRUE(row[QStringLiteral("used")].toString().endsWith(QStringLiteral(", not used yet")));
    m_signedIn.signOut(row[QStringLiteral("id")].toString());
    EXPECT_TRUE(lists(0));
}

TEST_F(AgentAskingTest, RefusesAndSaysWhatIsWrong)
{
    LoopbackAgent agent(server());
    open(agent);
    m_asking.refuse();
    EXPECT_EQ(agent.heard(), "error=access_denied&state=s1");
    EXPECT_TRUE(eventually([this] { return !m_asking.isOpen(); }));
    m_asking.take(QStringLiteral("orvane://auth/callback?code=x"));
    EXPECT_FALSE(m_asking.isOpen());
    m_asking.take(
        QStringLiteral("orvane://agents/authorize?client_id=x&redirect_uri=http%3A%2F%2F127.0.0.1%3A1%2F"
                       "&response_type=code&code_challenge_method=S256&code_challenge=") +
        QString(43, u'a'));
    EXPECT_TRUE(eventually([this] { return m_asking.isOpen(); }));
    EXPECT_TRUE(m_asking.problem().contains(QStringLiteral("not registered")))
        << m_asking.problem().toStdString();
    EXPECT_FALSE(m_asking.canAnswer());
    m_asking.refuse();
    EXPECT_FALSE(m_asking.isOpen());
}

TEST_F(AgentAskingTest, HearsTheBrowserWhileAnAgentIsConnected)
{
    m_home.install("claude");
    m_home.does("login", "sleep 60");
    LoopbackAgent agent(server());
    const std::string link = agent.programLink();
    EXPECT_FALSE(CallbackSocket::deliver(CallbackSocket::usualFolder(), link)) << "nobody waits";
    m_agents.claudeCode()->begin();
    std::thread browser([&] { EXPECT_TRUE(CallbackSocket::deliver(CallbackSocket::usualFolder(), link)); });
    EXPECT_TRUE(eventually([this] { return m_asking.isOpen(); }));
    browser.join();
    EXPECT_EQ(m_asking.name(), QStringLiteral("Claude Code"));
    m_agents.cancel();
    EXPECT_TRUE(eventually([this] { return !m_agents.claudeCode()->isRunning(); }));
    EXPECT_FALSE(CallbackSocket::deliver(CallbackSocket::usualFolder(), link));
}

} // namespace
} // namespace orvane
