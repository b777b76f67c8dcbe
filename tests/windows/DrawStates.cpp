// SPDX-License-Identifier: GPL-3.0-or-later
#include "PictureAlbum.h"
#include "PictureWorld.h"
#include "support/Await.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <csignal>
#include <filesystem>
#include <sqlite3.h>

namespace orvane::testing {

namespace {

/// Takes what is kept of the entries out of the account's store.
void forgetEntries(const PictureWorld &world)
{
    for (const auto &file : std::filesystem::directory_iterator(world.folder())) {
        if (file.path().extension() != ".sqlite")
            continue;
        sqlite3 *store = nullptr;
        sqlite3_open(file.path().c_str(), &store);
        sqlite3_exec(store, "DELETE FROM document WHERE key LIKE 'workspace:%'", nullptr, nullptr, nullptr);
        sqlite3_close(store);
    }
}

/// Nothing is kept here of what the team's server has, and that takes its time.
void drawLoading(Album &album)
{
    const PictureWorld world(PictureWorld::Contents::nothing);
    const TestInstallation team;
    if (team.run({"status"}).exitStatus != 0)
        album.complain(QStringLiteral("The team's server does not run"));
    const ServerHello server = *team.hello();
    (void)world.installation().run({"--server", server.address, "login", "--register", "--email",
                                    "robin@fernhill.example", "--password-stdin"},
                                   "a good password\n");
    forgetEntries(world);
    const auto process = static_cast<pid_t>(server.pid);
    ::kill(process, SIGSTOP);
    DesktopWindow desktop({.folder = world.folder(), .server = server.address, .startsServer = false});
    const auto areBarsShown = [&] {
        const auto *bars = desktop.window()->findChild<QQuickItem *>(QStringLiteral("bars"));
        return bars != nullptr && bars->isVisible();
    };
    if (opens(desktop, areBarsShown))
        album.take(desktop, QStringLiteral("loading"));
    if (desktop.window() == nullptr || !areBarsShown())
        album.complain(QStringLiteral("The window did not say that it is loading"));
    ::kill(process, SIGCONT);
    await(desktop.close());
}

/// Nothing is known here, and the server cannot be started.
void drawFailed(Album &album)
{
    const TestInstallation nothing;
    DesktopWindow desktop({.folder = nothing.folder(), .serverProgram = "/bin/false"});
    if (opens(desktop, [&] { return desktop.app().phase() == AppModel::Phase::Failed; }))
        album.take(desktop, QStringLiteral("failed"));
    else
        album.complain(QStringLiteral("The window did not say that its server cannot be started"));
    await(desktop.close());
}

} // namespace

void drawStates(Album &album)
{
    drawLoading(album);
    drawFailed(album);
}

} // namespace orvane::testing
