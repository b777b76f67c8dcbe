// SPDX-License-Identifier: GPL-3.0-or-later
// Signing in through the browser with the real command at a real server, whose page is filled in as a browser
// does it.
#include "CommandFixture.h"
#include "SignIn/CallbackSocket.h"
#include "support/Await.h"
#include "support/FormBrowser.h"
#include "support/KernelKeys.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace orvane {
namespace {

using orvane::testing::eventually;
using ::testing::HasSubstr;

class ProviderSignIn : public Command {
protected:
    void SetUp() override
    {
        if (!orvane::testing::hasKernelKeyring())
            GTEST_SKIP() << "this system has no keyring to keep a sign-in in, or forbids it";
        installation.environment["HOME"] = home.path().toStdString();
        installation.inChild = orvane::testing::joinFreshKeyringSession;
        server = team.start({"serve", "--dev-provider"});
        ASSERT_TRUE(eventually([this] { return team.hello().has_value(); }));
        url = team.hello()->address;
    }
    ~ProviderSignIn() override
    {
        if (server) {
            server->terminate();
            server->waitForFinished();
        }
    }

    /// The command once it waits for the browser.
    void begin(const Arguments &options = {})
    {
        Arguments arguments{"--server", url, "login", "--provider", "local"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        command = installation.start(arguments);
        ASSERT_TRUE(says("press Return")) << said.toStdString();
    }
    bool says(const char *words)
    {
        return eventually([&] {
            said += command->readAllStandardError();
            return said.contains(words);
        });
    }
    QString startAddress() const
    {
        static const QRegularExpression pattern(QStringLiteral("Open in your browser: (\\S+)"));
        return pattern.match(QString::fromUtf8(said)).captured(1);
    }
    QByteArray fillIn(const char *fields) { return browser.signIn(startAddress(), fields); }
    int end()
    {
        EXPECT_TRUE(command->waitForFinished());
        said += command->readAllStandardError();
        return command->exitCode();
    }

    TestInstallation team;
    QTemporaryDir home;
    std::unique_ptr<QProcess> server;
    std::unique_ptr<QProcess> command;
    std::string url;
    QByteArray said;
    orvane::testing::FormBrowser browser;
};

TEST_F(ProviderSignIn, TakesTheAddressThatIsPasted)
{
    begin();
    EXPECT_THAT(startAddress().toStdString(),
                HasSubstr("/api/auth/external/local/start?redirectUri=orvane%3A%2F%2Fauth%2Fcallback"));
    const QByteArray address = fillIn("name=grace");
    ASSERT_TRUE(address.startsWith("orvane://auth/callback?code=")) << address.toStdString();
    command->write("https://example.com/\n");
    EXPECT_TRUE(says("begins with orvane://auth/callback"));
    command->write("orvane://auth/callback?code=made-up\n");
    EXPECT_TRUE(says("code"));
    command->write(address + "\n");
    EXPECT_EQ(end(), 0) << said.toStdString();
    EXPECT_THAT(command->readAllStandardOutput().toStdString(), HasSubstr("as local:grace"));
    EXPECT_EQ(text(done({"status"})[u"account"].toObject()[u"email"]), "local:grace");
    done({"logout"});
}

TEST_F(ProviderSignIn, TakesTheAddressThatTheSystemHandsOver)
{
    begin();
    const QByteArray address = fillIn("name=ada");
    EXPECT_TRUE(CallbackSocket::deliver(home.path().toStdString() + "/.local/share/Orvane/sign-in",
                                        address.toStdString()));
    EXPECT_EQ(end(), 0) << said.toStdString();
    EXPECT_EQ(text(done({"status"})[u"account"].toObject()[u"email"]), "local:ada");
    done({"logout"});
}

TEST_F(ProviderSignIn, IsCalledOffInTheBrowser)
{
    begin();
    command->write(fillIn("name=&cancel=yes") + "\n");
    EXPECT_EQ(end(), 1);
    EXPECT_THAT(said.toStdString(),
                HasSubstr("Signing in didn't finish. Please try again, or sign in with your "
                          "email."));
    EXPECT_EQ(installation.run({"--server", url, "login", "--provider", "other"}).exitStatus, 1);
    EXPECT_EQ(installation.run({"--server", url, "login", "--provider", "local", "--email", "a@b.example"})
                  .exitStatus,
              2);
}

} // namespace
} // namespace orvane
