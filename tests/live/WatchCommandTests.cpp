// SPDX-License-Identifier: GPL-3.0-or-later
// `orvane watch` in one process, changes in others, over the real server.
#include "support/Await.h"
#include "support/CommandRun.h"
#include "support/KernelKeys.h"

#include <QJsonDocument>
#include <QProcess>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using orvane::testing::eventually;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

/// A command that stays, and what it has written so far.
class Staying {
public:
    Staying(const TestInstallation &installation, const Arguments &arguments)
        : m_process(installation.start(arguments))
    {
    }
    ~Staying()
    {
        m_process->kill();
        m_process->waitForFinished();
    }

    bool says(const std::string &text)
    {
        return eventually([&] {
            m_errors += m_process->readAllStandardError().toStdString();
            return m_errors.find(text) != std::string::npos;
        });
    }
    bool prints(std::size_t lines)
    {
        return eventually([&] {
            m_output += m_process->readAllStandardOutput().toStdString();
            return static_cast<std::size_t>(std::ranges::count(m_output, '\n')) >= lines;
        });
    }
    int endsBy(int signal)
    {
        ::kill(static_cast<pid_t>(m_process->processId()), signal);
        const bool isOver = m_process->waitForFinished(10'000);
        m_output += m_process->readAllStandardOutput().toStdString();
        m_errors += m_process->readAllStandardError().toStdString();
        return isOver && m_process->exitStatus() == QProcess::NormalExit ? m_process->exitCode() : -1;
    }
    const std::string &output() const { return m_output; }
    const std::string &errors() const { return m_errors; }
    void forget() { m_output = m_errors = {}; }

private:
    std::unique_ptr<QProcess> m_process;
    std::string m_output;
    std::string m_errors;
};

TEST(WatchCommand, PrintsChangesAsTheyArriveAlsoAfterTheServerWasKilled)
{
    const TestInstallation installation;
    ASSERT_EQ(installation.run({"status"}).exitStatus, 0);
    Staying watch(installation, {"watch"});
    ASSERT_TRUE(watch.says("Waiting for changes in ")) << watch.errors();
    ASSERT_EQ(installation.run({"start", "Seen at once"}).exitStatus, 0);
    ASSERT_TRUE(watch.prints(1)) << watch.errors();
    EXPECT_THAT(watch.output(), MatchesRegex("[0-9:apm ]+  Entries changed\n"));
    ASSERT_EQ(installation.run({"tags", "add", "made-beside"}).exitStatus, 0);
    ASSERT_TRUE(watch.prints(2));
    EXPECT_THAT(watch.output(), HasSubstr("Projects, tasks, clients or tags changed\n"));

    watch.forget();
    ASSERT_TRUE(installation.killServer());
    ASSERT_TRUE(watch.says("Not connected, trying again: ")) << watch.errors();
    ASSERT_TRUE(watch.says("Connected again.")) << "it starts the server itself";
    ASSERT_EQ(installation.run({"stop"}).exitStatus, 0);
    ASSERT_TRUE(watch.prints(1)) << watch.errors();
    EXPECT_EQ(watch.endsBy(SIGINT), 0) << watch.errors();
}

TEST(WatchCommand, PrintsAValueALineForPrograms)
{
    const TestInstallation installation;
    const QJsonObject status = installation.json({"status"}).object();
    Staying watch(installation, {"watch", "--json"});
    // Nothing says when it has begun; one change or another is the first that it hears of.
    ASSERT_TRUE(eventually([&] {
        EXPECT_EQ(installation.run({"add", "A change 9:00-9:30"}).exitStatus, 0);
        return watch.prints(0) && !watch.output().empty();
    }));
    const std::string line = watch.output().substr(0, watch.output().find('\n'));
    const QJsonObject change = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
    EXPECT_EQ(change.keys(), QStringList({QStringLiteral("topic"), QStringLiteral("userId"),
                                          QStringLiteral("workspaceId")}));
    EXPECT_EQ(change[QStringLiteral("topic")], QStringLiteral("time-entries"));
    EXPECT_EQ(change[QStringLiteral("workspaceId")],
              status[QStringLiteral("workspace")][QStringLiteral("id")].toString());
    EXPECT_EQ(change[QStringLiteral("userId")],
              status[QStringLiteral("account")][QStringLiteral("id")].toString());
    EXPECT_EQ(watch.endsBy(SIGTERM), 0);
    EXPECT_EQ(watch.errors(), "");
}

TEST(WatchCommand, HearsOfAnotherInstallationOfTheSameAccount)
{
    if (!orvane::testing::hasKernelKeyring())
        GTEST_SKIP() << "no place for a sign-in here";
    const TestInstallation one;
    const TestInstallation two;
    ASSERT_EQ(one.run({"status"}).exitStatus, 0);
    const std::string url = one.hello()->address;
    const Arguments login{"--server", url, "login", "--email", "ada@example.com", "--password-stdin"};
    Arguments registering = login;
    registering.emplace_back("--register");
    const CommandRun registered = one.run(registering, "correct horse battery\n");
    ASSERT_EQ(registered.exitStatus, 0) << registered.all();
    const CommandRun signedIn = two.run(login, "correct horse battery\n");
    ASSERT_EQ(signedIn.exitStatus, 0) << signedIn.all();

    Staying watch(two, {"watch"});
    ASSERT_TRUE(watch.says("Waiting for changes in ")) << watch.errors();
    ASSERT_EQ(one.run({"start", "On the first"}).exitStatus, 0);
    ASSERT_TRUE(watch.prints(1)) << watch.errors();
    EXPECT_THAT(watch.output(), HasSubstr("Entries changed"));
    ASSERT_TRUE(one.killServer());
    ASSERT_TRUE(watch.says("Not connected, trying again: ")) << watch.errors();
    ASSERT_EQ(one.run({"status"}).exitStatus, 0) << "which starts the server again";
    ASSERT_TRUE(watch.says("Connected again.")) << watch.errors();
    ASSERT_EQ(one.run({"stop"}).exitStatus, 0);
    EXPECT_TRUE(watch.prints(2)) << watch.errors();
    EXPECT_EQ(watch.endsBy(SIGINT), 0) << watch.errors();
    EXPECT_EQ(two.run({"logout"}).exitStatus, 0);
    EXPECT_EQ(one.run({"logout"}).exitStatus, 0);
}

} // namespace
} // namespace orvane
