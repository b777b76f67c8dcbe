// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/ShellCommand.h"
#include "StandInHome.h"
#include "support/ManualRetryTimer.h"

#include <algorithm>
#include <unistd.h>

namespace orvane {
namespace {

using testing::eventually;
using testing::StandInHome;

Task<ProcessRun::Outcome> outcomeOf(std::shared_ptr<ProcessRun> run)
{
    co_return co_await run->outcome();
}

/// Command lines in the shells that people have.
class ShellCommandTest : public ::testing::Test {
protected:
    ~ShellCommandTest() override
    {
        for (const pid_t pid : m_home.living())
            ::kill(pid, SIGKILL);
    }

    std::shared_ptr<ProcessRun> start(const std::string &line, bool sparesDetached = false,
                                      const std::string &shell = "/bin/bash")
    {
        auto timer = std::make_unique<ManualRetryTimer>();
        m_timer = timer.get();
        return std::make_shared<ProcessRun>(
            ShellCommand{line, m_home.environment(shell), sparesDetached}.program(), std::move(timer),
            std::chrono::seconds{30});
    }
    static ProcessRun::Outcome outcome(const std::shared_ptr<ProcessRun> &run)
    {
        return testing::await(outcomeOf(run));
    }
    ProcessRun::Outcome run(const std::string &line, bool sparesDetached = false)
    {
        return outcome(start(line, sparesDetached));
    }
    bool hasDescendants() const { return m_home.descendants().size() == 3; }

    StandInHome m_home;
    ManualRetryTimer *m_timer = nullptr;
};

TEST_F(ShellCommandTest, TellsStatusAndOutput)
{
    const auto ended = run("echo out; echo err >&2; exit 3");
    ASSERT_TRUE(ended);
    EXPECT_EQ(ended->exitStatus, 3);
    EXPECT_TRUE(ended->output.contains("out\nerr\n")) << ended->output;
    const auto killed = run("kill -KILL $$");
    ASSERT_TRUE(killed);
    EXPECT_EQ(killed->exitStatus, 128 + SIGKILL);
    const auto missing = outcome(start("true", false, "/no/such/shell"));
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->exitStatus, 127);
}

TEST_F(ShellCommandTest, HasNoInputAndASessionOfItsOwn)
{
    const auto asked = run("read -r answer; echo \"read $? in $(ps -o sid= -p $$ | tr -d ' ') of $$\"");
    ASSERT_TRUE(asked);
    const std::size_t at = asked->output.find("read 1 in ");
    ASSERT_NE(at, std::string::npos) << asked->output;
    const std::string said = asked->output.substr(at + 10);
    const std::string session = said.substr(0, said.find(' '));
    EXPECT_EQ(said, session + " of " + session + "\n") << "the shell leads it";
    EXPECT_NE(session, std::to_string(::getsid(0)));
}

TEST_F(ShellCommandTest, KeepsTheBeginningAndTheEndOfWhatIsLong)
{
    const auto ended = run("echo first; head -c 100000000 /dev/zero | tr '\\0' x; echo last");
    ASSERT_TRUE(ended);
    EXPECT_EQ(ended->exitStatus, 0);
    EXPECT_TRUE(ended->output.contains("first\nxxx"));
    EXPECT_TRUE(ended->output.ends_with("xxxlast\n"));
    EXPECT_LE(ended->output.size(), 2 * BoundedOutput::half + 10);
    EXPECT_GT(ended->output.size(), BoundedOutput::half);
}

TEST_F(ShellCommandTest, EndsEveryDescendantWhenItTakesTooLong)
{
    const auto hanging = start(StandInHome::descend() + "trap '' TERM HUP\nwhile :; do sleep 300; done");
    ASSERT_TRUE(eventually([this] { return hasDescendants(); }));
    EXPECT_EQ(m_home.living().size(), 3U);
    EXPECT_FALSE(hanging->outcome().isFinished());
    m_timer->advance(std::chrono::seconds{30});
    const auto outcome = ShellCommandTest::outcome(hanging);
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), ProcessRun::Failure::tookTooLong);
    EXPECT_TRUE(m_home.living().empty());
}

TEST_F(ShellCommandTest, EndsEveryDescendantWhenItIsCalledOff)
{
    const auto hanging = start(StandInHome::descend() + "sleep 300", true);
    ASSERT_TRUE(eventually([this] { return hasDescendants(); }));
    hanging->giveUp();
    const auto outcome = ShellCommandTest::outcome(hanging);
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), ProcessRun::Failure::givenUp);
    EXPECT_TRUE(m_home.living().empty());
}

TEST_F(ShellCommandTest, RunsBesideAnotherOne)
{
    const auto hanging = start("sleep 300");
    const auto ended = run("echo over");
    ASSERT_TRUE(ended) << "the other one goes on, and this one is noticed to be over";
    EXPECT_FALSE(hanging->outcome().isFinished());
    hanging->giveUp();
    EXPECT_FALSE(outcome(hanging));
}

TEST_F(ShellCommandTest, LeavesNothingBehindWhenItIsOver)
{
    const auto ended = run(StandInHome::descend() + "exit 4");
    ASSERT_TRUE(ended);
    EXPECT_EQ(ended->exitStatus, 4);
    ASSERT_TRUE(hasDescendants());
    EXPECT_TRUE(m_home.living().empty());
}

TEST_F(ShellCommandTest, SparesABrowserWhereItMay)
{
    const auto ended = run(StandInHome::descend() + "exit 0", true);
    ASSERT_TRUE(ended);
    ASSERT_TRUE(hasDescendants());
    const pid_t browser = std::stoi(m_home.lines("leader").at(0));
    EXPECT_EQ(m_home.living(), std::vector<pid_t>{browser}) << "which leads a session of its own";
}

} // namespace
} // namespace orvane
