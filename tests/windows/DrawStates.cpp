// SPDX-License-Identifier: GPL-3.0-or-later
#include "PictureAlbum.h"
#include "PictureWorld.h"
#include "support/Await.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <csignal>
#include <filesystem>

namespace orvane::testing {

namespace {

/// On the way to an account that nothing is known of, at a server that takes its time.
void drawLoading(Album &album)
{
    const PictureWorld world(PictureWorld::Contents::nothing);
    const auto server = static_cast<pid_t>(world.installation().hello()->pid);
    for (const auto &file : std::filesystem::directory_iterator(world.folder())) {
        if (file.is_regular_file())
            std::filesystem::remove(file.path());
    }
    ::kill(server, SIGSTOP);
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    const auto areBarsShown = [&] {
        const auto *bars = desktop.window()->findChild<QQuickItem *>(QStringLiteral("bars"));
        return bars != nullptr && bars->isVisible();
    };
    if (opens(desktop, areBarsShown))
        album.take(desktop, QStringLiteral("loading"));
    else
        album.complain(QStringLiteral("The window did not say that it is loading"));
    ::kill(server, SIGCONT);
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
