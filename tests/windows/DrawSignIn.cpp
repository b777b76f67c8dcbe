// SPDX-License-Identifier: GPL-3.0-or-later
#include "PictureAlbum.h"
#include "PictureWorld.h"
#include "support/Await.h"

#include <QProcess>
#include <QQuickWindow>

namespace orvane::testing {

namespace {

/// The page of the account that was signed in to, at first with all sent, then with the server away.
void drawAccount(Album &album, DesktopWindow &desktop, const TestInstallation &team)
{
    desktop.signIn().submit(QStringLiteral("a good password"));
    const auto isLoaded = [&] {
        return desktop.app().phase() == AppModel::Phase::Open && !desktop.app().account()->isLocal() &&
               desktop.app().tracker()->state() == LoadState::loaded;
    };
    if (!eventually(isLoaded))
        album.complain(QStringLiteral("Nobody could sign in"));
    SettingsModel &settings = desktop.settings();
    desktop.window()->setProperty("section", QStringLiteral("settings"));
    settings.setPage(QStringLiteral("account"));
    if (!eventually([&] { return !settings.account()->sessions().isEmpty(); }))
        album.complain(QStringLiteral("Nobody knows where one is signed in"));
    album.take(desktop, QStringLiteral("settings-account"));
    Album::withLongTexts(desktop.window(),
                         [&] { album.take(desktop, QStringLiteral("settings-account-long")); });
    desktop.window()
        ->findChild<QObject *>(QStringLiteral("accountPage"))
        ->setProperty("question", QStringLiteral("delete"));
    album.take(desktop, QStringLiteral("settings-account-delete"));
    team.killServer();
    desktop.timer().field()->setText(QStringLiteral("Call the printer 9-10"));
    desktop.timer().field()->submit();
    if (!eventually([&] { return settings.account()->waiting() == 1; }))
        album.complain(QStringLiteral("Nothing waits"));
    desktop.window()
        ->findChild<QObject *>(QStringLiteral("accountPage"))
        ->setProperty("question", QStringLiteral("signout"));
    album.take(desktop, QStringLiteral("settings-account-signout"));
}

} // namespace

/// Signing in to a team's server, which is that of another installation, and the switcher afterwards.
void drawSignIn(Album &album)
{
    const PictureWorld world;
    const TestInstallation team;
    const std::unique_ptr<QProcess> server = team.start({"serve", "--dev-provider"});
    if (!eventually([&] { return team.hello().has_value(); }))
        album.complain(QStringLiteral("The team's server does not run"));
    const std::string address = team.hello()->address;
    (void)world.installation().run(
        {"--server", address, "login", "--register", "--email", "robin@fernhill.example", "--password-stdin"},
        "a good password\n");
    (void)world.installation().run({"--server", address, "logout"});
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    if (!opens(desktop, [&] { return desktop.app().phase() == AppModel::Phase::Open; })) {
        album.complain(QStringLiteral("The window did not open"));
        await(desktop.close());
        return;
    }
    auto *switcher = desktop.window()->findChild<QObject *>(QStringLiteral("switcher"));
    switcher->setProperty("isWanted", true);
    album.take(desktop, QStringLiteral("switcher"));
    QMetaObject::invokeMethod(switcher->property("item").value<QObject *>(), "close");
    desktop.app().askForSignIn({});
    album.take(desktop, QStringLiteral("signin"));
    desktop.signIn().setAddress(QStringLiteral("http://127.0.0.1:9"));
    (void)eventually([&] { return !desktop.signIn().addressProblem().isEmpty(); });
    album.take(desktop, QStringLiteral("signin-nobody"));
    desktop.signIn().setAddress(QString::fromStdString(address));
    (void)eventually([&] { return desktop.signIn().isMet(); });
    album.take(desktop, QStringLiteral("signin-provider"));
    desktop.signIn().setRegistering(true);
    desktop.signIn().submit({});
    album.take(desktop, QStringLiteral("signin-register"));
    Q_EMIT desktop.app().signInWanted(QString::fromStdString(address),
                                      QStringLiteral("Your session has ended. Please sign in again."));
    (void)eventually([&] { return desktop.signIn().isMet(); });
    album.take(desktop, QStringLiteral("signin-ended"));
    Album::withLongTexts(desktop.window(), [&] { album.take(desktop, QStringLiteral("signin-long")); });
    drawAccount(album, desktop, team);
    await(desktop.close());
    server->waitForFinished();
}

} // namespace orvane::testing
