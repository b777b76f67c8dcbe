// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/StandInHome.h"
#include "PictureAlbum.h"
#include "PictureWorld.h"
#include "support/Await.h"
#include "support/LoopbackAgent.h"

#include <QQuickItem>
#include <QQuickWindow>

namespace orvane::testing {

namespace {

void settle(AgentConnection *agent)
{
    (void)eventually([&] { return !agent->isRunning(); });
}

void unfold(DesktopWindow &desktop, int choice)
{
    for (const char *box : {"claudeCodeBox", "codexBox"})
        desktop.window()->findChild<QObject *>(QLatin1String(box))->setProperty("choice", choice);
}

void drawConnections(Album &album, DesktopWindow &desktop, const StandInHome &home)
{
    AgentConnections &agents = *desktop.settings().agents();
    album.take(desktop, QStringLiteral("connect-begin"));
    agents.codex()->begin();
    settle(agents.codex());
    home.does("login", "sleep 60");
    agents.claudeCode()->begin();
    const auto *box = desktop.window()->findChild<QObject *>(QStringLiteral("claudeCodeBox"));
    if (!eventually([&] { return box->property("waits").toBool() && home.calls().size() == 2; }))
        album.complain(QStringLiteral("Nobody waits for the agent"));
    album.take(desktop, QStringLiteral("connect-waiting"));
    agents.cancel();
    settle(agents.claudeCode());
    album.take(desktop, QStringLiteral("connect-unsigned"));
    home.does("login", "echo unknown command; exit 1");
    agents.claudeCode()->begin();
    settle(agents.claudeCode());
    unfold(desktop, 0);
    album.take(desktop, QStringLiteral("connect-added"));
    agents.claudeCode()->remove();
    settle(agents.claudeCode());
    home.does("login", "exit 0");
    agents.claudeCode()->begin();
    settle(agents.claudeCode());
    unfold(desktop, 1);
    album.take(desktop, QStringLiteral("connect"));
    Album::withLongTexts(desktop.window(), [&] { album.take(desktop, QStringLiteral("connect-long")); });
}

/// An agent asks, is let in, and stands among those signed in.
void drawAsking(Album &album, DesktopWindow &desktop)
{
    AgentConnections &agents = *desktop.settings().agents();
    LoopbackAgent agent(desktop.app().account()->server());
    agents.asking()->take(QString::fromStdString(agent.programLink()));
    if (!eventually([&] { return agents.asking()->isOpen(); }))
        album.complain(QStringLiteral("The agent's request is not shown"));
    album.take(desktop, QStringLiteral("connect-asked"));
    Album::withLongTexts(desktop.window(),
                         [&] { album.take(desktop, QStringLiteral("connect-asked-long")); });
    agents.asking()->allow();
    if (!agent.getsTokensFor(agent.heard()) ||
        !eventually([&] { return agents.signedIn()->agents().size() == 1; }))
        album.complain(QStringLiteral("The agent is not among those signed in"));
    unfold(desktop, 0);
    album.take(desktop, QStringLiteral("connect-signed-in"));
}

} // namespace

/// Settings > Connect Agents with a stand-in for one agent's command, and none for the other.
void drawConnect(Album &album)
{
    const PictureWorld world(PictureWorld::Contents::nothing);
    const StandInHome home;
    home.install("claude");
    const HomeInUse inUse(home);
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    if (opens(desktop, [&] { return desktop.app().phase() == AppModel::Phase::Open; })) {
        desktop.window()->setProperty("section", QStringLiteral("settings"));
        desktop.settings().setPage(QStringLiteral("connect"));
        drawConnections(album, desktop, home);
        drawAsking(album, desktop);
    } else {
        album.complain(QStringLiteral("The window of the agents did not open"));
    }
    await(desktop.close());
}

} // namespace orvane::testing
