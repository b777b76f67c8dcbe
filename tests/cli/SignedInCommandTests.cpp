// SPDX-License-Identifier: GPL-3.0-or-later
// The real command, signed in to a server elsewhere, with a keychain that keeps its tokens.
#include "support/CommandRun.h"
#include "support/FaultProxy.h"
#include "support/KernelKeys.h"

#include <QJsonDocument>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using orvane::testing::Fault;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

std::string text(const QJsonValue &value)
{
    return value.toString().toStdString();
}

class SignedInCommand : public ::testing::Test {
protected:
    SignedInCommand()
        : proxy(text(other.json({"status"}).object()[QStringLiteral("server")][QStringLiteral("url")]))
    {
    }

    /// Runs a shell's command with a bus and the keyring, which stays in the installation's folder.
    CommandRun inSession(const std::string &script) const
    {
        return runProgram(
            "dbus-run-session",
            {"--", "bash", "-c",
             "printf pw | gnome-keyring-daemon --unlock --components=secrets >/dev/null\n" + script},
            {{"XDG_RUNTIME_DIR", installation.folder()}, {"HOME", installation.folder()}});
    }
    std::string call() const
    {
        return builtProgram("orvane") + " --json --data-dir " + installation.folder() + " ";
    }
    void signIn() const
    {
        const CommandRun session =
            inSession("printf 'correct horse battery' | " + call() + "--server " + proxy.url() +
                      " login --register --email ada@example.com --password-stdin\n");
        ASSERT_EQ(session.exitStatus, 0) << session.all();
    }
    CommandRun run(const std::string &arguments) const { return inSession(call() + arguments); }
    /// What people are told.
    std::string said(const std::string &arguments) const
    {
        return inSession(builtProgram("orvane") + " --data-dir " + installation.folder() + " " + arguments)
            .errors;
    }
    /// From now on requests for that path get `status`; everything else passes.
    void refuse(const std::string &path, int status)
    {
        proxy.setPlan([=](const orvane::testing::SeenRequest &request) {
            return request.path == path ? Fault::answer(status) : Fault::pass();
        });
    }
    static std::string email(const QJsonObject &status)
    {
        return text(status[QStringLiteral("account")][QStringLiteral("email")]);
    }
    static bool isReachable(const QJsonObject &status)
    {
        return status[QStringLiteral("server")][QStringLiteral("reachable")].toBool();
    }

    TestInstallation other;
    TestInstallation installation;
    orvane::testing::FaultProxy proxy;
};

TEST_F(SignedInCommand, GoesOnWhenARenewalIsRefusedForNow)
{
    signIn();
    for (const int status : {400, 403, 409, 429}) {
        refuse("/api/auth/refresh", status);
        const CommandRun start = run("start Writing");
        EXPECT_EQ(start.exitStatus, 0) << start.all();
        EXPECT_EQ(text(start.object()[QStringLiteral("outcome")]), "waiting") << start.all();
        EXPECT_EQ(email(run("status").object()), "ada@example.com") << status;
    }
    proxy.setPlan(orvane::testing::plans::pass());
    const CommandRun after = run("status");
    EXPECT_EQ(email(after.object()), "ada@example.com") << after.all();
    EXPECT_TRUE(isReachable(after.object())) << after.all();
    EXPECT_EQ(after.object()[QStringLiteral("outbox")][QStringLiteral("pending")].toInt(), 0) << after.all();
}

TEST_F(SignedInCommand, SaysThatTheServerIsBusyAndNotThatItIsAway)
{
    signIn();
    proxy.setPlan([](const orvane::testing::SeenRequest &request) {
        return request.method == "POST" && request.path.ends_with("/time-entries") ? Fault::answer(503)
                                                                                   : Fault::pass();
    });
    EXPECT_THAT(said("start Writing"),
                HasSubstr("The server is busy or being worked on (503): 1 change is waiting to be sent."));
    proxy.setPlan([](const orvane::testing::SeenRequest &request) {
        return request.path.starts_with("/api/workspaces") ? Fault::answer(429) : Fault::pass();
    });
    EXPECT_THAT(said("status"), AllOf(HasSubstr("wants a pause (429)"), Not(HasSubstr("Offline"))));
    EXPECT_THAT(said("projects add Website"), Not(HasSubstr("cannot be reached")));
    proxy.setDown(true);
    EXPECT_THAT(said("status"), HasSubstr("Offline: 1 change is waiting"));
}

TEST_F(SignedInCommand, DoesNotTakeAKeychainThatHangsForOneThatIsMissing)
{
    signIn();
    const CommandRun hanging = inSession(
        // The keyring takes its name on the bus a little later than it returns.
        "for try in $(seq 500); do\n"
        "keyring=$(dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / "
        "org.freedesktop.DBus.GetConnectionUnixProcessID string:org.freedesktop.secrets 2>/dev/null | "
        "sed 's/.*uint32 *//')\n"
        "[ -n \"$keyring\" ] && break; sleep 0.02; done\n"
        "kill -STOP $keyring\n" +
        builtProgram("orvane") + " --data-dir " + installation.folder() + " status\nkill -CONT $keyring\n");
    EXPECT_THAT(hanging.output, HasSubstr("ada@example.com at " + proxy.url())) << hanging.all();
    EXPECT_THAT(hanging.errors, HasSubstr("The keychain does not answer; this is what was known last."));
    EXPECT_TRUE(isReachable(run("status").object())) << "nothing was lost";
}

TEST_F(SignedInCommand, MovesIntoTheKeychainWhenThereIsOne)
{
    if (!orvane::testing::hasKernelKeyring())
        GTEST_SKIP() << "this system has no such keyring, or forbids it";
    const CommandRun overSsh = installation.json(
        {"--server", proxy.url(), "login", "--register", "--email", "ada@example.com", "--password-stdin"},
        "correct horse battery\n");
    ASSERT_EQ(overSsh.exitStatus, 0) << overSsh.all();
    EXPECT_TRUE(orvane::testing::hasKernelKeys(installation.folder()));
    EXPECT_EQ(email(run("status").object()), "ada@example.com");
    EXPECT_FALSE(orvane::testing::hasKernelKeys(installation.folder()));
    EXPECT_EQ(email(run("status").object()), "ada@example.com");
    EXPECT_EQ(installation.json({"status"}).exitStatus, 1) << "it lies in one place";
}

TEST_F(SignedInCommand, StaysSignedInWhenItCannotSignOut)
{
    signIn();
    refuse("/api/auth/logout", 403);
    EXPECT_EQ(run("logout").exitStatus, 1);
    proxy.setDown(true);
    const CommandRun away = run("logout");
    EXPECT_EQ(away.exitStatus, 1);
    EXPECT_THAT(away.output, ::testing::HasSubstr("You are still signed in.")) << away.all();
    proxy.setDown(false);
    proxy.setPlan(orvane::testing::plans::pass());
    const CommandRun status = run("status");
    EXPECT_EQ(email(status.object()), "ada@example.com") << status.all();
    EXPECT_TRUE(isReachable(status.object())) << status.all();
    const CommandRun logout = run("logout");
    EXPECT_EQ(logout.exitStatus, 0) << logout.all();
    EXPECT_NE(email(run("status").object()), "ada@example.com");
}

TEST_F(SignedInCommand, ForgetsTheTokenOfASessionThatIsOver)
{
    signIn();
    refuse("/api/me", 401);
    EXPECT_EQ(run("status").exitStatus, 1);
    const CommandRun logout = run("logout");
    EXPECT_EQ(logout.exitStatus, 0) << logout.all();
    proxy.setPlan(orvane::testing::plans::pass());
    EXPECT_NE(email(run("status").object()), "ada@example.com");
    const CommandRun back = run("--server " + proxy.url() + " status");
    EXPECT_EQ(back.exitStatus, 1) << back.all();
}

} // namespace
} // namespace orvane
