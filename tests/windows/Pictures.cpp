// SPDX-License-Identifier: GPL-3.0-or-later
// Draws the application's windows as people see them and saves the pictures: Pictures FOLDER [--all]
// [SUBJECT…]. The real window over a real server, with a week of time as people have it.
#include "Client/OrvaneClient.h"
#include "Desktop/DesktopWindow.h"
#include "PictureAlbum.h"
#include "PictureWorld.h"
#include "Time/AppClock.h"
#include "support/Await.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QTextStream>

namespace orvane::testing {

namespace {

/// Between its project and another one.
void divide(DesktopWindow &desktop, std::string_view description)
{
    const TimeEntryResponse *entry = entryCalled(desktop, description);
    const auto &projects = desktop.app().tracker()->catalog().projects();
    const auto website = std::ranges::find(projects, "Website", &ProjectResponse::name);
    if (entry == nullptr || website == projects.end())
        return;
    await(desktop.app().tracker()->split(entry->id, {SplitPart{entry->projectId, {}, false, 60, {}},
                                                     SplitPart{website->id, {}, false, 40, {}}}));
}

void drawOffline(Album &album, DesktopWindow &desktop, const PictureWorld &world)
{
    world.installation().killServer();
    desktop.timer().field()->setText(QStringLiteral("Pager @platform/ci 15:10-15:40"));
    desktop.timer().field()->submit();
    const auto isAway = [&] { return desktop.app().sync()->kind() == SyncStatus::Kind::Offline; };
    if (!eventually(isAway) || desktop.app().sync()->waiting() == 0)
        album.complain(QStringLiteral("The window did not notice that the server is away"));
    album.take(desktop, QStringLiteral("timer-offline"));
}

void drawSplit(Album &album, DesktopWindow &desktop)
{
    SplitModel &split = *desktop.timer().split();
    if (!split.open(idOf(desktop, "Rate limits per key")))
        album.complain(QStringLiteral("The entry could not be split"));
    split.moveMoment(47.0 / 85);
    split.halves()->setDescription(0, QStringLiteral("Limits and their tests"));
    album.take(desktop, QStringLiteral("split-time"));
    split.cancel();
    split.open(idOf(desktop, "Cursor pagination"));
    split.setMode(SplitModel::Mode::ByPercent);
    split.addPart();
    const std::array<std::pair<const char *, const char *>, 2> others{
        {{"Website", "Document the new paging"}, {"Admin", "Answer questions"}}};
    for (int row = 1; const auto &[project, description] : others) {
        desktop.timer().picker()->setQuery(QLatin1String(project));
        split.parts()->setProject(row, desktop.timer().picker()->projectIdAt(0), {});
        split.parts()->setDescription(row++, QLatin1String(description));
    }
    split.nudgePercent(0, -10);
    split.nudgePercent(1, 10);
    album.take(desktop, QStringLiteral("split-percent"));
    split.cancel();
}

/// Below the description of the entry that is edited.
void drawEarlierWork(Album &album, DesktopWindow &desktop)
{
    DescriptionSuggestions &suggestions = *desktop.timer().suggestions();
    suggestions.type(QStringLiteral("li"));
    if (!eventually([&] { return suggestions.count() > 1; }))
        album.complain(QStringLiteral("No earlier work was offered"));
    album.take(desktop, QStringLiteral("timer-earlier-work"));
    suggestions.close();
}

/// Everything before today.
void drawLocked(Album &album, DesktopWindow &desktop)
{
    Tracker &tracker = *desktop.app().tracker();
    WorkspaceSettingsRequest request;
    request.name = tracker.settings()->name;
    request.currency = tracker.settings()->currency;
    request.lockedBefore = tracker.time().startOfDay(tracker.time().today());
    if (!await(desktop.app().account()->client().updateWorkspaceSettings(tracker.workspace().id, request)))
        album.complain(QStringLiteral("The time before today could not be locked"));
    await(tracker.load());
    album.take(desktop, QStringLiteral("timer-locked"));
}

void drawTimer(Album &album)
{
    const PictureWorld world;
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    const auto isLoaded = [&] {
        return desktop.app().tracker() != nullptr && desktop.app().tracker()->state() == LoadState::loaded;
    };
    if (!opens(desktop, isLoaded)) {
        album.complain(QStringLiteral("The window did not open"));
        await(desktop.close());
        return;
    }
    divide(desktop, "Cursor pagination");
    album.take(desktop, QStringLiteral("timer"));
    desktop.timer().field()->setText(QStringLiteral("Review the limits @atlas #review since 15:20"));
    album.take(desktop, QStringLiteral("timer-typed"));
    desktop.timer().field()->setText({});
    if (!desktop.timer().editor()->open(idOf(desktop, "Rate limits per key")))
        album.complain(QStringLiteral("The entry could not be edited"));
    album.take(desktop, QStringLiteral("timer-editor"));
    drawEarlierWork(album, desktop);
    desktop.timer().editRunning();
    album.take(desktop, QStringLiteral("timer-running-editor"));
    desktop.timer().editor()->cancel();
    drawSplit(album, desktop);
    Album::withLongTexts(desktop.window(), [&] { album.take(desktop, QStringLiteral("timer-long")); });
    drawLocked(album, desktop);
    drawOffline(album, desktop, world);
    await(desktop.close());
}

void drawEmpty(Album &album)
{
    const PictureWorld world(PictureWorld::Contents::nothing);
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    if (opens(desktop, [&] { return desktop.timer().isEmpty(); }))
        album.take(desktop, QStringLiteral("empty"));
    else
        album.complain(QStringLiteral("The empty window did not open"));
    await(desktop.close());
}

} // namespace

} // namespace orvane::testing

int main(int argc, char **argv)
{
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("LC_ALL", "C.UTF-8");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const bool isWhole = arguments.contains(QStringLiteral("--all"));
    if (arguments.size() < 2) {
        QTextStream(stderr) << "usage: Pictures FOLDER [--all] [SUBJECT…]" << Qt::endl;
        return 2;
    }
    const QStringList wanted = arguments.mid(isWhole ? 3 : 2);
    orvane::testing::Album album(arguments.at(1), isWhole);
    using orvane::testing::Album;
    const std::array<std::pair<QLatin1String, void (*)(Album &)>, 10> subjects{
        {{QLatin1String("timer"), orvane::testing::drawTimer},
         {QLatin1String("empty"), orvane::testing::drawEmpty},
         {QLatin1String("states"), orvane::testing::drawStates},
         {QLatin1String("signin"), orvane::testing::drawSignIn},
         {QLatin1String("passkeys"), orvane::testing::drawPasskeys},
         {QLatin1String("panel"), orvane::testing::drawPanel},
         {QLatin1String("conflict"), orvane::testing::drawConflict},
         {QLatin1String("connect"), orvane::testing::drawConnect},
         {QLatin1String("review"), orvane::testing::drawReview},
         {QLatin1String("sections"), orvane::testing::drawSections}}};
    for (const auto &[name, draw] : subjects) {
        if (wanted.isEmpty() || wanted.contains(name))
            draw(album);
    }
    return album.problems() == 0 ? 0 : 1;
}
