// SPDX-License-Identifier: GPL-3.0-or-later
// Signing in with the real command where no keychain is: over ssh, in cron, in a container; and what is said
// about servers that nobody is signed in to.
#include "CommandFixture.h"

#include "support/KernelKeys.h"

namespace orvane {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class SignInCommand : public Command {
protected:
    SignInCommand() : url(text(other.json({"status"}).object()[u"server"].toObject()[u"url"])) {}

    /// `run` is the installation's `run` or `json`.
    CommandRun login(const Arguments &more, const std::string &password = "correct horse battery\n") const
    {
        Arguments arguments{"login", "--email", "ada@example.com", "--password-stdin"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return installation.run(arguments, password);
    }
    QJsonObject account(const Arguments &arguments) const { return done(arguments)[u"account"].toObject(); }

    TestInstallation other;
    std::string url;
};

TEST_F(SignInCommand, LastsFromOneSessionOfSshToTheNext)
{
    if (!orvane::testing::hasKernelKeyring())
        GTEST_SKIP() << "this system has no such keyring, or forbids it";
    installation.inChild = orvane::testing::joinFreshKeyringSession;
    const CommandRun first = login({"--json", "--server", url, "--register"});
    ASSERT_EQ(first.exitStatus, 0) << first.all();
    const QJsonArray notes = first.object()[u"notes"].toArray();
    ASSERT_EQ(notes.size(), 1) << first.all();
    EXPECT_THAT(text(notes[0]), AllOf(HasSubstr("kernel's keyring"), HasSubstr("at most until")));

    const CommandRun status = installation.run({"status"});
    EXPECT_THAT(status.output, StartsWith("ada@example.com at " + url + "\n")) << status.all();
    EXPECT_EQ(status.errors, "") << "where it lies is said once";
    TestInstallation apart;
    apart.inChild = installation.inChild;
    EXPECT_EQ(apart.json({"--server", url, "status"}).exitStatus, 1) << "another installation has its own";

    EXPECT_TRUE(account({"logout"}).isEmpty());
    EXPECT_FALSE(orvane::testing::hasKernelKeys(installation.folder()));
    EXPECT_THAT(installation.run({"status"}).output, Not(HasSubstr(" at ")))
        << "the account on this computer needs no telling";
    const CommandRun again = login({});
    EXPECT_THAT(again.output, HasSubstr("Signed in at " + url + " as ada@example.com.")) << again.all();

    // The restart that ends it at the latest.
    orvane::testing::forgetKernelKeys(installation.folder());
    EXPECT_EQ(
        text(failed(1, {"status"})[u"message"]),
        "Your session has ended. Please sign in again. A sign-in that lies in a keychain cannot be read "
        "here. To sign in at " +
            url + ": orvane login. To go back to the account on this computer: orvane logout.");
    EXPECT_TRUE(done({"logout"})[u"account"].isNull());
    EXPECT_TRUE(account({"status"})[u"automatic"].toBool());
}

TEST_F(SignInCommand, IsNotOverBecauseItCannotBeRead)
{
    if (!orvane::testing::hasKernelKeyring())
        GTEST_SKIP() << "this system has no such keyring, or forbids it";
    ASSERT_EQ(login({"--server", url, "--register"}).exitStatus, 0);
    installation.inChild = orvane::testing::forbidKernelKeyring;
    const CommandRun left = installation.run({"logout"});
    EXPECT_EQ(left.exitStatus, 0) << left.all();
    EXPECT_THAT(left.output, AllOf(HasSubstr("can be read here"), Not(HasSubstr("over already")),
                                   HasSubstr("orvane --server " + url + " logout")));
    EXPECT_TRUE(account({"status"})[u"automatic"].toBool());
    installation.inChild = {};
    EXPECT_THAT(installation.run({"--server", url, "logout"}).output, HasSubstr("Signed out ada@example.com"))
        << "as it was told";
}

TEST_F(SignInCommand, IsTheHomeFoldersOwn)
{
    if (!orvane::testing::hasKernelKeyring())
        GTEST_SKIP() << "this system has no such keyring, or forbids it";
    const QTemporaryDir ada;
    const QTemporaryDir bob;
    const auto run = [](const QTemporaryDir &home, const Arguments &arguments) {
        const Environment at{{"HOME", home.path().toStdString()}, {"XDG_DATA_HOME", std::nullopt}};
        return runProgram(builtProgram("orvane"), arguments, at, "correct horse battery\n");
    };
    const auto registers = [&](const char *email) {
        return Arguments{"--server", url, "login", "--register", "--email", email, "--password-stdin"};
    };
    ASSERT_EQ(run(ada, registers("ada@example.com")).exitStatus, 0);
    EXPECT_EQ(run(bob, {"--server", url, "status"}).exitStatus, 1) << "bob is nobody there yet";
    ASSERT_EQ(run(bob, registers("bob@example.com")).exitStatus, 0);
    EXPECT_THAT(run(ada, {"status"}).output, StartsWith("ada@example.com at "));
    EXPECT_THAT(run(bob, {"logout"}).output, HasSubstr("Signed out bob@example.com"));
    EXPECT_THAT(run(ada, {"logout"}).output, HasSubstr("Signed out ada@example.com"));
}

TEST_F(SignInCommand, IsRefusedBeforeThePasswordWhereNothingKeepsIt)
{
    installation.inChild = orvane::testing::forbidKernelKeyring;
    const CommandRun run = login({"--server", url, "--register"}, "");
    EXPECT_EQ(run.exitStatus, 1) << run.all();
    EXPECT_THAT(run.errors,
                AllOf(HasSubstr(url), HasSubstr("cannot be kept here"), HasSubstr("Nothing was sent")))
        << run.all();
    EXPECT_TRUE(account({"status"})[u"automatic"].toBool()) << "which needs no keeping";
}

TEST_F(SignInCommand, SaysAtWhichServer)
{
    EXPECT_EQ(text(failed(1, {"--server", "https://orvane.invalid", "status"})[u"message"]),
              "You are not signed in at https://orvane.invalid. To sign in: orvane --server "
              "https://orvane.invalid login.");
    EXPECT_THAT(text(failed(1, {"--server", url, "logout"})[u"message"]),
                StartsWith("You are not signed in at " + url));
    EXPECT_EQ(login({"--json"}).exitStatus, 2) << "nobody has said where";

    const CommandRun away = login({"--server", "http://127.0.0.1:1"});
    EXPECT_THAT(away.errors, StartsWith("Signing in at http://127.0.0.1:1 failed. ")) << away.all();
    const CommandRun refused = login({"--server", url});
    EXPECT_THAT(refused.errors, StartsWith("Signing in at " + url + " failed. ")) << refused.all();
    const CommandRun tooShort = login({"--server", url, "--register"}, "x\n");
    EXPECT_THAT(tooShort.errors, StartsWith("Registering at " + url + " failed. Password: "))
        << tooShort.all();
}

TEST(HomelessCommand, RefusesToKeepTimeInAPlaceOfChance)
{
    const Environment homeless{{"HOME", std::nullopt}, {"XDG_DATA_HOME", std::nullopt}};
    for (const char *command : {"status", "serve"}) {
        const CommandRun run = runProgram(builtProgram("orvane"), {command}, homeless);
        EXPECT_EQ(run.exitStatus, 1) << run.all();
        EXPECT_THAT(run.errors, HasSubstr("HOME is not set")) << run.all();
    }
    EXPECT_EQ(runProgram(builtProgram("orvane"), {"help"}, homeless).exitStatus, 0);
    TestInstallation named;
    named.environment = homeless;
    const CommandRun run = named.run({"status"});
    EXPECT_EQ(run.exitStatus, 0) << run.all();
}

} // namespace
} // namespace orvane
