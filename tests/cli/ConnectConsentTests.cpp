// SPDX-License-Identifier: GPL-3.0-or-later
// An agent's sign-in with the real command on a terminal and the real server; the agent is a stand-in.
#include "AgentConnector/StandInHome.h"
#include "CommandFixture.h"
#include "SignIn/CallbackSocket.h"
#include "support/LoopbackAgent.h"

#include <QProcess>
#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

namespace orvane {
namespace {

using testing::eventually;
using ::testing::HasSubstr;
using testing::LoopbackAgent;
using testing::StandInHome;

class ConnectConsent : public Command {
protected:
    ConnectConsent()
    {
        for (const auto &[name, value] : m_home.environment("/bin/bash"))
            installation.environment[name] = value;
        m_home.install("claude");
        m_home.does("login", "n=0; while [ ! -e \"$HOME/signed-in\" ] && [ $n -lt 200 ]; do sleep 0.1; "
                             "n=$((n+1)); done; [ -e \"$HOME/signed-in\" ] || exit 1");
        EXPECT_EQ(::openpty(&m_ours, &m_theirs, nullptr, nullptr, nullptr), 0);
        installation.inChild = [theirs = m_theirs] { ::dup2(theirs, STDIN_FILENO); };
        server = text(done({"status"})[u"server"].toObject()[u"url"]);
    }
    ~ConnectConsent() override
    {
        if (command) {
            command->kill();
            command->waitForFinished();
        }
        ::close(m_ours);
        ::close(m_theirs);
        for (const pid_t pid : m_home.living())
            ::kill(pid, SIGKILL);
    }

    void begin(const Arguments &options = {})
    {
        Arguments arguments = options;
        arguments.insert(arguments.end(), {"connect", "claude"});
        command = installation.start(arguments);
        ASSERT_TRUE(says("press Return")) << said.toStdString();
    }
    void type(const std::string &line)
    {
        const std::string whole = line + "\n";
        EXPECT_EQ(::write(m_ours, whole.data(), whole.size()), static_cast<ssize_t>(whole.size()));
    }
    bool says(const char *words)
    {
        return eventually([&] {
            said += command->readAllStandardError();
            return said.contains(words);
        });
    }
    int end()
    {
        EXPECT_TRUE(command->waitForFinished());
        said += command->readAllStandardError();
        return command->exitCode();
    }

    StandInHome m_home;
    int m_ours = -1;
    int m_theirs = -1;
    std::unique_ptr<QProcess> command;
    std::string server;
    QByteArray said;
};

TEST_F(ConnectConsent, LetsTheAgentInThatIsAllowedInTheTerminal)
{
    LoopbackAgent agent(server);
    begin();
    type("https://example.com/");
    EXPECT_TRUE(says("begins with orvane://agents/authorize"));
    ASSERT_TRUE(CallbackSocket::deliver(m_home.file(".local/share/Orvane/sign-in"), agent.programLink()));
    ASSERT_TRUE(says("[y/N]")) << said.toStdString();
    EXPECT_THAT(said.toStdString(), HasSubstr("Claude Code asks to use Orvane."));
    type("y");
    EXPECT_TRUE(agent.getsTokensFor(agent.heard()));
    m_home.write("signed-in", "");
    EXPECT_EQ(end(), 0) << said.toStdString();
    EXPECT_EQ(command->readAllStandardOutput(),
              "Connected. Start a new session in Claude Code to use Orvane.\n");
}

TEST_F(ConnectConsent, LetsNobodyInByReturnAlone)
{
    LoopbackAgent agent(server, "Some Agent");
    begin();
    type(agent.programLink());
    ASSERT_TRUE(says("[y/N]")) << said.toStdString();
    type("");
    EXPECT_EQ(agent.heard(), "error=access_denied&state=s1");
    type("orvane://agents/authorize?client_id=made-up&redirect_uri=http%3A%2F%2F127.0.0.1%3A1%2Fcb"
         "&response_type=code&code_challenge_method=S256&code_challenge=" +
         std::string(43, 'a'));
    EXPECT_TRUE(says("This agent is not registered here.")) << said.toStdString();
    m_home.write("signed-in", "");
    EXPECT_EQ(end(), 0) << said.toStdString();
}

} // namespace
} // namespace orvane
