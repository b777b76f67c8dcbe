// SPDX-License-Identifier: GPL-3.0-or-later
#include "PictureAlbum.h"
#include "PictureWorld.h"
#include "support/Await.h"

#include <QQuickWindow>

namespace orvane::testing {

namespace {

void typeIntoPanel(DesktopWindow &desktop, const QString &text, int cursor)
{
    desktop.panel().model().field()->setText(text);
    desktop.panel().model().setCursor(cursor);
}

void drawSentences(Album &album, DesktopWindow &desktop)
{
    PanelModel &panel = desktop.panel().model();
    album.takePanel(desktop, QStringLiteral("panel-empty"));
    typeIntoPanel(desktop, QStringLiteral("Review the limits @atl #review since 15:20"), 22);
    if (panel.rows()->count() < 4)
        album.complain(QStringLiteral("The panel offers too little"));
    album.takePanel(desktop, QStringLiteral("panel-typed"));
    panel.moveDown();
    album.takePanel(desktop, QStringLiteral("panel-chosen"));
    Album::withLongTexts(desktop.panel().window(), [&] {
        typeIntoPanel(desktop, QStringLiteral("Review the limits @at #review since 15:20"), 21);
        panel.moveDown();
        album.takePanel(desktop, QStringLiteral("panel-long"));
    });
    typeIntoPanel(desktop, QStringLiteral("Find out why @nowhere 9-17"), 21);
    album.takePanel(desktop, QStringLiteral("panel-notes"));
    typeIntoPanel(desktop, QStringLiteral("pag"), 3);
    desktop.app().notices()->tellFailure(QStringLiteral("The server has refused it."));
    album.takePanel(desktop, QStringLiteral("panel-words"));
    typeIntoPanel(desktop, {}, 0);
}

} // namespace

void drawPanel(Album &album)
{
    const PictureWorld world;
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    const auto isLoaded = [&] {
        return desktop.app().tracker() != nullptr && desktop.app().tracker()->state() == LoadState::loaded;
    };
    if (desktop.openPanel() && eventually(isLoaded))
        drawSentences(album, desktop);
    else
        album.complain(QStringLiteral("The panel did not open"));
    await(desktop.close());
}

} // namespace orvane::testing
