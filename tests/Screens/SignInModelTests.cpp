// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/AppModel.h"
#include "Client/OrvaneClient.h"
#include "Screens/Shell/PlacesModel.h"
#include "Screens/SignIn/SignInModel.h"
#include "Time/AppClock.h"
#include "support/Await.h"
#include "support/CommandRun.h"
#include "support/LoopbackServer.h"

#include <QFile>
#include <QUrl>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;
using testing::eventually;
using Place = SignInModel::Place;

/// A window's models over an installation, with a team's server beside it, which is that of another
/// installation.
class SignIns : public ::testing::Test {
protected:
    SignIns()
    {
        EXPECT_EQ(team.run({"status"}).exitStatus, 0);
        teamAddress = QString::fromStdString(team.hello()->address);
    }
    ~SignIns() override { await(app.close()); }

    bool opens(const QString &place)
    {
        return eventually([&] { return app.phase() == AppModel::Phase::Open && app.placeName() == place; });
    }
    bool meets(const QString &address)
    {
        signIn.setAddress(address);
        return eventually([&] { return signIn.isMet(); });
    }
    void registerAs(const QString &email)
    {
        app.askForSignIn({});
        ASSERT_TRUE(meets(teamAddress)) << signIn.addressProblem().toStdString();
        signIn.setRegistering(true);
        signIn.setEmail(email);
        signIn.submit(QStringLiteral("a good password"));
        ASSERT_TRUE(opens(QUrl(teamAddress).host())) << signIn.problem().toStdString();
    }
    bool start(const std::string &description)
    {
        EntryDetails details;
        details.description = description;
        const auto started = await(app.tracker()->start(details, AppClock::now()));
        return started.outcome == SaveOutcome::saved || started.outcome == SaveOutcome::waiting;
    }
    int row(PlacesModel::Kind kind, const QString &server)
    {
        places.look();
        for (int i = 0; i < places.rowCount(); ++i) {
            const QModelIndex index = places.index(i);
            if (places.data(index, PlacesModel::kindRole).value<PlacesModel::Kind>() == kind &&
                places.data(index, PlacesModel::serverRole).toString() == server)
                return i;
        }
        return -1;
    }
    QString localAddress() { return QString::fromStdString(app.installation().localServer().value_or("")); }

    TestInstallation team;
    TestInstallation installation;
    QString teamAddress;
    AppModel app{{.folder = installation.folder(), .serverProgram = builtProgram("orvane-server")}};
    SignInModel signIn{app};
    PlacesModel places{app};
};

TEST_F(SignIns, AskWhatAnAddressOffersOnceItIsOne)
{
    testing::LoopbackServer stranger([](const testing::SeenRequest &, auto &connection) {
        connection.answer(200, "<html>hello</html>", "text/html");
    });
    app.askForSignIn({});
    ASSERT_TRUE(signIn.isShown());
    signIn.setAddress(QStringLiteral("not an address"));
    EXPECT_FALSE(signIn.isAsking());
    signIn.setAddress(QString::fromStdString(stranger.url()));
    ASSERT_TRUE(eventually([&] { return !signIn.addressProblem().isEmpty(); }));
    EXPECT_EQ(signIn.addressProblem(),
              QStringLiteral("No Orvane server answers at this address. Check it and try again."));
    EXPECT_FALSE(signIn.isMet());
    // The answer of an address that was typed over does not come through.
    signIn.setAddress(QString::fromStdString(stranger.url()) + QStringLiteral("/x"));
    EXPECT_TRUE(meets(teamAddress));
    EXPECT_TRUE(signIn.takesAccounts());
    EXPECT_EQ(signIn.addressProblem(), QString());
}

TEST_F(SignIns, GoToAnotherServerAndBack)
{
    app.open();
    ASSERT_TRUE(opens(QStringLiteral("This Computer"))) << app.problem().toStdString();
    ASSERT_TRUE(start("At home"));
    registerAs(QStringLiteral("robin@fernhill.example"));
    EXPECT_FALSE(signIn.isShown());
    ASSERT_TRUE(start("For the team"));
    ASSERT_GE(row(PlacesModel::Kind::Workspace, teamAddress), 0);

    places.choose(row(PlacesModel::Kind::Workspace, localAddress()));
    ASSERT_TRUE(opens(QStringLiteral("This Computer")));
    EXPECT_EQ(app.tracker()->running()->description, "At home");
    places.choose(row(PlacesModel::Kind::Workspace, teamAddress));
    ASSERT_TRUE(opens(QUrl(teamAddress).host()));
    EXPECT_TRUE(eventually(
        [&] { return app.tracker()->running() && app.tracker()->running()->description == "For the team"; }));

    const int before = places.rowCount();
    places.create(QStringLiteral("Trials"));
    ASSERT_TRUE(eventually([&] { return app.workspaceName() == QStringLiteral("Trials"); }))
        << places.creationProblem().toStdString();
    EXPECT_EQ(places.rowCount(), before + 1);
}

TEST_F(SignIns, SayWhatWasWrong)
{
    app.askForSignIn({});
    ASSERT_TRUE(meets(teamAddress));
    signIn.setEmail(QStringLiteral("nobody@fernhill.example"));
    signIn.submit({});
    EXPECT_EQ(signIn.problem(), QStringLiteral("Type your password."));
    signIn.submit(QStringLiteral("not the password"));
    ASSERT_TRUE(eventually([&] { return !signIn.isBusy(); }));
    EXPECT_FALSE(signIn.problem().isEmpty());
    EXPECT_TRUE(signIn.isShown());
}

TEST_F(SignIns, KeepWhatWaitsWhenSignedOut)
{
    app.open();
    ASSERT_TRUE(opens(QStringLiteral("This Computer")));
    registerAs(QStringLiteral("robin@fernhill.example"));
    ASSERT_TRUE(start("Sent"));
    ASSERT_TRUE(eventually([&] { return app.sync()->waiting() == 0; }));

    app.signOut(true);
    ASSERT_TRUE(opens(QStringLiteral("This Computer")));
    const int kept = row(PlacesModel::Kind::Kept, teamAddress);
    ASSERT_GE(kept, 0);
    places.choose(kept);
    EXPECT_TRUE(signIn.isShown());
    EXPECT_EQ(signIn.address(), teamAddress);
    EXPECT_EQ(signIn.email(), QStringLiteral("robin@fernhill.example"));
    ASSERT_TRUE(eventually([&] { return signIn.isMet(); }));
    signIn.submit(QStringLiteral("a good password"));
    ASSERT_TRUE(opens(QUrl(teamAddress).host())) << signIn.problem().toStdString();
}

TEST_F(SignIns, ComeBackAfterTheServerEndedTheSession)
{
    app.open();
    ASSERT_TRUE(opens(QStringLiteral("This Computer")));
    registerAs(QStringLiteral("robin@fernhill.example"));
    const auto sessions = await(app.account()->client().listSessions());
    ASSERT_TRUE(sessions && sessions->size() == 1);
    ASSERT_TRUE(await(app.account()->client().revokeSession(sessions->front().id)));

    EntryDetails typed;
    typed.description = "Typed meanwhile";
    app.tracker()->start(typed, AppClock::now());
    ASSERT_TRUE(eventually([&] { return signIn.isShown(); }));
    EXPECT_EQ(signIn.notice(), QStringLiteral("Your session has ended. Please sign in again."));
    EXPECT_EQ(signIn.address(), teamAddress);
    EXPECT_EQ(signIn.email(), QStringLiteral("robin@fernhill.example"));
    EXPECT_EQ(signIn.waiting(), QStringLiteral("1 change is sent as soon as you are back."));
    ASSERT_TRUE(eventually([&] { return signIn.isMet(); }));
    signIn.submit(QStringLiteral("a good password"));
    ASSERT_TRUE(opens(QUrl(teamAddress).host())) << signIn.problem().toStdString();
    ASSERT_TRUE(eventually([&] { return app.sync()->kind() == SyncStatus::Kind::Saved; }));
    const auto running = await(app.account()->client().getCurrentTimeEntry());
    ASSERT_TRUE(running && *running);
    EXPECT_EQ((*running)->description, "Typed meanwhile");
}

TEST_F(SignIns, ForgetAnAccountThatIsNoMore)
{
    app.open();
    ASSERT_TRUE(opens(QStringLiteral("This Computer")));
    registerAs(QStringLiteral("robin@fernhill.example"));
    ASSERT_TRUE(start("Gone"));
    const std::string store = app.account()->storePath();
    ASSERT_TRUE(await(app.account()->client().deleteAccount(
        {.email = "robin@fernhill.example", .password = "a good password"})));
    app.forgetAccount();
    ASSERT_TRUE(opens(QStringLiteral("This Computer")));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(store)));
    EXPECT_EQ(row(PlacesModel::Kind::Server, teamAddress), -1);
    EXPECT_FALSE(signIn.isShown());

    // The account on this computer is made anew.
    const std::string before = app.account()->me().id;
    ASSERT_TRUE(await(app.account()->client().deleteAccount({.email = app.account()->me().email})));
    app.forgetAccount();
    ASSERT_TRUE(eventually([&] {
        return app.phase() == AppModel::Phase::Open && app.account() != nullptr &&
               app.account()->me().id != before;
    })) << app.problem().toStdString();
}

} // namespace
} // namespace orvane
