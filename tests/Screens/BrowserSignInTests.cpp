// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/AppModel.h"
#include "Screens/Settings/SettingsModel.h"
#include "Screens/SignIn/SignInModel.h"
#include "support/Await.h"
#include "support/CommandRun.h"
#include "support/FormBrowser.h"

#include <QProcess>
#include <QUrl>
#include <future>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;
using testing::eventually;

/// The sign-in screen at a team's server that lets anybody in by a name.
class BrowserSignInTest : public ::testing::Test {
protected:
    BrowserSignInTest() : server(team.start({"serve", "--dev-provider"}))
    {
        QObject::connect(&signIn, &SignInModel::browserWanted,
                         [this](const QString &address) { wanted = address; });
    }
    ~BrowserSignInTest() override
    {
        await(app.close());
        server->terminate();
        server->waitForFinished();
    }
    void SetUp() override
    {
        ASSERT_TRUE(eventually([this] { return team.hello().has_value(); }));
        app.askForSignIn(QString::fromStdString(team.hello()->address));
        ASSERT_TRUE(eventually([this] { return signIn.isMet(); }));
    }
    /// As the program does that the system starts.
    static bool deliver(const QByteArray &address)
    {
        auto delivery = std::async(std::launch::async, [&] {
            return CallbackSocket::deliver(CallbackSocket::usualFolder(), address.toStdString());
        });
        (void)eventually(
            [&] { return delivery.wait_for(std::chrono::seconds{0}) == std::future_status::ready; });
        return delivery.get();
    }

    TestInstallation team;
    TestInstallation installation;
    std::unique_ptr<QProcess> server;
    AppModel app{{.folder = installation.folder(), .serverProgram = builtProgram("orvane-server")}};
    SignInModel signIn{app};
    QString wanted;
    testing::FormBrowser browser;
};

TEST_F(BrowserSignInTest, OpensTheAccountOfWhoTheBrowserLetsIn)
{
    ASSERT_EQ(signIn.providers().size(), 1);
    EXPECT_EQ(signIn.providers()[0].toMap()[QStringLiteral("title")], QStringLiteral("Development"));
    signIn.continueWith(QStringLiteral("another"));
    EXPECT_EQ(wanted, QString());
    signIn.continueWith(QStringLiteral("local"));
    EXPECT_EQ(signIn.awaited(), QStringLiteral("Development"));
    const QByteArray address = browser.signIn(wanted, "name=grace");
    EXPECT_TRUE(deliver("https://example.com/?code=x"));
    EXPECT_TRUE(deliver("orvane://auth/callback?code=of-another-attempt"));
    ASSERT_TRUE(eventually([this] { return !signIn.problem().isEmpty() && !signIn.isBusy(); }));
    EXPECT_EQ(signIn.awaited(), QStringLiteral("Development")) << "the attempt is still open";
    EXPECT_TRUE(deliver(address));
    ASSERT_TRUE(eventually([this] { return app.phase() == AppModel::Phase::Open; }))
        << signIn.problem().toStdString();
    EXPECT_EQ(app.account()->me().email, "local:grace");
    EXPECT_FALSE(signIn.isShown());
    EXPECT_FALSE(deliver(address)) << "nobody waits any more";

    SettingsModel settings(app);
    AccountLogins &logins = *settings.logins();
    logins.setLookedAt(true);
    ASSERT_TRUE(eventually([&] { return logins.providers().size() == 1; }));
    const QVariantMap provider = logins.providers()[0].toMap();
    EXPECT_EQ(provider[QStringLiteral("name")], QStringLiteral("Development"));
    EXPECT_FALSE(logins.offersPasskeys());
    logins.removeProvider(provider[QStringLiteral("id")].toString());
    ASSERT_TRUE(eventually([this] {
        return app.notices()->text().contains(QLatin1String("only way to sign in"));
    })) << app.notices()->text().toStdString();
    EXPECT_EQ(logins.providers().size(), 1);
}

TEST_F(BrowserSignInTest, EndsWhenItIsCalledOff)
{
    signIn.continueWith(QStringLiteral("local"));
    EXPECT_TRUE(deliver(browser.signIn(wanted, "name=&cancel=yes")));
    ASSERT_TRUE(eventually([this] { return !signIn.problem().isEmpty(); }));
    EXPECT_EQ(signIn.problem(),
              QStringLiteral("Signing in didn't finish. Please try again, or sign in with your email."));
    EXPECT_EQ(signIn.awaited(), QString());
    signIn.continueWith(QStringLiteral("local"));
    EXPECT_EQ(signIn.problem(), QString());
    signIn.abandonBrowser();
    EXPECT_FALSE(deliver("orvane://auth/callback?code=late"));
    EXPECT_FALSE(signIn.isBusy());
}

} // namespace
} // namespace orvane
