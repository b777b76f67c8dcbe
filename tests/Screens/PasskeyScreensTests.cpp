// SPDX-License-Identifier: GPL-3.0-or-later
// Passkeys in the sign-in screen and in the settings, at a server that offers them and at one that does not.
#include "AppModel/AppModel.h"
#include "Passkeys/linux/SecurityKeys.h"
#include "Screens/Settings/SettingsModel.h"
#include "Screens/SignIn/SignInModel.h"
#include "support/Await.h"
#include "support/CommandRun.h"
#include "support/HostedServer.h"
#include "support/SoftwareKey.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;
using testing::eventually;
using testing::SoftwareKey;

const QString password = QStringLiteral("a good password");
const QString pin = QStringLiteral("123456");

class PasskeyScreens : public ::testing::Test {
protected:
    ~PasskeyScreens() override { await(app.close()); }

    AppModel::Options options()
    {
        AppModel::Options made{.folder = installation.folder(), .startsServer = false};
        made.passkeys = [this] {
            return std::make_unique<SecurityKeys>([this] {
                std::vector<SecurityKey> found;
                found.emplace_back(key.open());
                return found;
            });
        };
        return made;
    }
    void goTo(const std::string &address)
    {
        app.askForSignIn(QString::fromStdString(address));
        ASSERT_TRUE(eventually([this] { return signIn.isMet(); })) << signIn.addressProblem().toStdString();
    }
    bool isIn() const { return app.phase() == AppModel::Phase::Open && app.account() != nullptr; }
    void registerAccount()
    {
        goTo(server.address());
        signIn.setRegistering(true);
        signIn.setEmail(QStringLiteral("grace@example.org"));
        signIn.submit(password);
        ASSERT_TRUE(eventually([this] { return isIn(); })) << signIn.problem().toStdString();
        settings.logins()->setLookedAt(true);
        ASSERT_TRUE(eventually([this] { return logins().offersPasskeys(); }));
    }
    /// To the PIN, typed as it is.
    void addPasskey()
    {
        logins().addPasskey(QStringLiteral("Blue key"), password);
        ASSERT_TRUE(eventually([this] { return logins().prompt()->wantsPin(); }))
            << logins().problem().toStdString();
        logins().prompt()->givePin(pin);
        ASSERT_TRUE(eventually([this] { return logins().passkeys().size() == 1; }))
            << logins().problem().toStdString();
    }
    QString shown(const char *member)
    {
        return logins().passkeys().value(0).toMap()[QLatin1String(member)].toString();
    }
    AccountLogins &logins() { return *settings.logins(); }

    testing::HostedServer server;
    TestInstallation installation;
    SoftwareKey key;
    AppModel app{options()};
    SettingsModel settings{app};
    SignInModel signIn{app};
};

TEST_F(PasskeyScreens, AddOneAndSignInWithIt)
{
    registerAccount();
    addPasskey();
    EXPECT_EQ(shown("name"), QStringLiteral("Blue key"));
    EXPECT_EQ(shown("used"), QStringLiteral("not used yet"));
    app.signOut(false);
    ASSERT_TRUE(eventually([this] { return signIn.isShown(); }));
    goTo(server.address());
    ASSERT_TRUE(signIn.hasPasskeys());
    signIn.usePasskey();
    EXPECT_TRUE(signIn.isBusy());
    ASSERT_TRUE(eventually([this] { return signIn.passkey()->wantsPin(); }))
        << signIn.problem().toStdString();
    signIn.passkey()->givePin(QStringLiteral("a guess"));
    ASSERT_TRUE(eventually([this] { return signIn.passkey()->isWrong(); }));
    EXPECT_EQ(signIn.passkey()->sentence(), QStringLiteral("This is not its PIN. 7 tries are left."));
    signIn.passkey()->givePin(pin);
    ASSERT_TRUE(eventually([this] { return isIn() && !signIn.isShown(); })) << signIn.problem().toStdString();
    EXPECT_EQ(app.account()->me().email, "grace@example.org");
    ASSERT_TRUE(eventually([this] { return shown("used").startsWith(QLatin1String("used ")); }));

    logins().removePasskey(shown("id"));
    EXPECT_TRUE(eventually([this] { return logins().passkeys().isEmpty(); }));
}

TEST_F(PasskeyScreens, SayWhyOneWasNotAdded)
{
    registerAccount();
    logins().addPasskey(QStringLiteral(" "), password);
    EXPECT_EQ(logins().problem(), QStringLiteral("Type a name, so that you know which key it is."));
    logins().addPasskey(QStringLiteral("Blue key"), {});
    EXPECT_EQ(logins().problem(), QStringLiteral("Type your password to confirm."));
    EXPECT_FALSE(logins().isAdding());
    logins().addPasskey(QStringLiteral("Blue key"), QStringLiteral("a guess"));
    ASSERT_TRUE(eventually([this] { return !logins().isAdding(); }));
    EXPECT_EQ(logins().problem(), QStringLiteral("This is not your password."));
    logins().addPasskey(QStringLiteral("Blue key"), password);
    ASSERT_TRUE(eventually([this] { return logins().prompt()->wantsPin(); }));
    logins().prompt()->cancel();
    ASSERT_TRUE(eventually([this] { return !logins().isAdding(); }));
    EXPECT_EQ(logins().problem(), QStringLiteral("The passkey request was cancelled. You can try again."));
    EXPECT_FALSE(logins().prompt()->isOpen());
    EXPECT_EQ(key.passkeyCount(), 0U);
    addPasskey();
    logins().addPasskey(QStringLiteral("The same"), password);
    ASSERT_TRUE(eventually([this] { return logins().prompt()->wantsPin(); }));
    logins().prompt()->givePin(pin);
    ASSERT_TRUE(eventually([this] { return !logins().isAdding(); }));
    EXPECT_FALSE(logins().problem().isEmpty()) << "the key has one of this account";
    EXPECT_EQ(logins().passkeys().size(), 1);
}

TEST_F(PasskeyScreens, AreOfferedWhereTheServerIsTheService)
{
    const TestInstallation team;
    ASSERT_EQ(team.run({"status"}).exitStatus, 0);
    goTo(team.hello()->address);
    EXPECT_FALSE(signIn.hasPasskeys());
    signIn.usePasskey();
    EXPECT_FALSE(signIn.isBusy());
    goTo(server.address());
    EXPECT_TRUE(signIn.hasPasskeys());
    signIn.usePasskey();
    ASSERT_TRUE(eventually([this] { return signIn.passkey()->wantsPin(); }))
        << signIn.problem().toStdString();
    signIn.passkey()->givePin(pin);
    ASSERT_TRUE(eventually([this] { return !signIn.isBusy(); }));
    EXPECT_EQ(signIn.problem().toStdString(), describe(PasskeyError::unavailable)) << "no key has one";
    // Another address is typed: nobody waits for the key any more.
    signIn.usePasskey();
    ASSERT_TRUE(eventually([this] { return signIn.passkey()->wantsPin(); }));
    signIn.setAddress(QStringLiteral("https://other.example"));
    EXPECT_FALSE(signIn.hasPasskeys());
    EXPECT_TRUE(eventually([this] { return !signIn.passkey()->isOpen() && !signIn.isBusy(); }));
}

} // namespace
} // namespace orvane
