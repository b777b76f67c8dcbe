// SPDX-License-Identifier: GPL-3.0-or-later
#include "PictureAlbum.h"
#include "PictureWorld.h"
#include "support/Await.h"

#include <QQuickWindow>

namespace orvane::testing {

/// Signing in to a team's server, which is that of another installation, and the switcher afterwards.
void drawSignIn(Album &album)
{
    const PictureWorld world;
    const TestInstallation team;
    if (team.run({"status"}).exitStatus != 0)
        album.complain(QStringLiteral("The team's server does not run"));
    const std::string address = team.hello()->address;
    (void)world.installation().run(
        {"--server", address, "login", "--register", "--email", "robin@fernhill.example", "--password-stdin"},
        "a good password\n");
    (void)world.installation().run({"--server", address, "logout"});
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    if (!desktop.show() || !eventually([&] { return desktop.app().phase() == AppModel::Phase::Open; })) {
        album.complain(QStringLiteral("The window did not open"));
        await(desktop.close());
        return;
    }
    auto *switcher = desktop.window()->findChild<QObject *>(QStringLiteral("switcher"));
    QMetaObject::invokeMethod(switcher, "open");
    album.take(desktop, QStringLiteral("switcher"));
    QMetaObject::invokeMethod(switcher, "close");
    desktop.app().askForSignIn({});
    album.take(desktop, QStringLiteral("signin"));
    desktop.signIn().setAddress(QStringLiteral("http://127.0.0.1:9"));
    (void)eventually([&] { return !desktop.signIn().addressProblem().isEmpty(); });
    album.take(desktop, QStringLiteral("signin-nobody"));
    desktop.signIn().setAddress(QString::fromStdString(address));
    (void)eventually([&] { return desktop.signIn().isMet(); });
    desktop.signIn().setRegistering(true);
    desktop.signIn().submit({});
    album.take(desktop, QStringLiteral("signin-register"));
    Q_EMIT desktop.app().signInWanted(QString::fromStdString(address),
                                      QStringLiteral("Your session has ended. Please sign in again."));
    (void)eventually([&] { return desktop.signIn().isMet(); });
    album.take(desktop, QStringLiteral("signin-ended"));
    Album::withLongTexts(desktop.window(), [&] { album.take(desktop, QStringLiteral("signin-long")); });
    await(desktop.close());
}

} // namespace orvane::testing
