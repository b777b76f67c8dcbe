// SPDX-License-Identifier: GPL-3.0-or-later
#include "PictureAlbum.h"
#include "PictureWorld.h"
#include "support/Await.h"

#include <QQuickWindow>

namespace orvane::testing {

namespace {

void addCatalog(const PictureWorld &world)
{
    const std::vector<Arguments> commands{
        {"clients", "add", "Kestrel"},
        {"clients", "add", "Fernhill"},
        {"tasks", "add", "Atlas API", "Dashboard"},
        {"projects", "edit", "Atlas API", "--client", "Kestrel", "--rate", "95", "--estimate", "120h",
         "--billable"},
        {"projects", "edit", "Checkout", "--client", "Kestrel", "--rate", "95", "--estimate", "60h",
         "--private"},
        {"projects", "edit", "Mobile App", "--client", "Fernhill", "--rate", "90"},
        {"projects", "edit", "Website", "--client", "Fernhill", "--rate", "85", "--estimate", "80h"},
        {"projects", "add", "Alert Triage Log"},
        {"projects", "archive", "Alert Triage Log"},
    };
    for (const Arguments &command : commands) {
        const CommandRun run = world.installation().run(command);
        if (run.exitStatus != 0)
            std::fputs(run.all().c_str(), stderr);
    }
}

QString projectCalled(DesktopWindow &desktop, std::string_view name)
{
    const auto &projects = desktop.app().tracker()->catalog().projects();
    const auto found = std::ranges::find(projects, name, &ProjectResponse::name);
    return found == projects.end() ? QString() : QString::fromStdString(found->id);
}

void drawProjects(Album &album, DesktopWindow &desktop)
{
    desktop.window()->setProperty("section", QStringLiteral("projects"));
    ProjectsModel &projects = desktop.projects();
    album.take(desktop, QStringLiteral("projects"));
    projects.editor()->open(projectCalled(desktop, "Atlas API"));
    album.take(desktop, QStringLiteral("projects-editor"));
    projects.removal()->ask(CatalogRemoval::Project, projectCalled(desktop, "Atlas API"));
    if (!eventually([&] { return projects.removal()->isKnown(); }))
        album.complain(QStringLiteral("Nobody knows what hangs on the project"));
    album.take(desktop, QStringLiteral("projects-delete"));
    projects.removal()->keep();
    projects.editor()->cancel();
    projects.beginNew();
    album.take(desktop, QStringLiteral("projects-new"));
    projects.editor()->cancel();
    projects.setKind(ProjectsModel::Clients);
    album.take(desktop, QStringLiteral("clients"));
    projects.setKind(ProjectsModel::Tags);
    projects.tags()->edit(projects.tags()->index(1).data(NameList::itemIdRole).toString());
    album.take(desktop, QStringLiteral("tags"));
    projects.tags()->cancel();
    projects.setKind(ProjectsModel::Projects);
}

void drawSettings(Album &album, DesktopWindow &desktop)
{
    desktop.window()->setProperty("section", QStringLiteral("settings"));
    SettingsModel &settings = desktop.settings();
    for (const char *page : {"time", "appearance", "workspace", "sync"}) {
        settings.setPage(QLatin1String(page));
        album.take(desktop, QStringLiteral("settings-") + QLatin1String(page));
    }
    settings.setPage(QStringLiteral("shortcuts"));
    settings.shortcuts()->record(KeyTable::SplitEntry);
    settings.shortcuts()->press(QStringLiteral("Ctrl+E"));
    album.take(desktop, QStringLiteral("settings-shortcuts"));
    settings.shortcuts()->keep();
}

void drawLongSections(Album &album, DesktopWindow &desktop)
{
    for (const char *page : {"time", "shortcuts", "workspace"}) {
        desktop.settings().setPage(QLatin1String(page));
        album.take(desktop, QStringLiteral("settings-long-") + QLatin1String(page));
    }
    desktop.window()->setProperty("section", QStringLiteral("projects"));
    album.take(desktop, QStringLiteral("projects-long"));
}

} // namespace

void drawSections(Album &album)
{
    const PictureWorld world;
    addCatalog(world);
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    const auto isLoaded = [&] {
        return desktop.app().tracker() != nullptr && desktop.app().tracker()->state() == LoadState::loaded;
    };
    if (opens(desktop, isLoaded)) {
        drawProjects(album, desktop);
        drawSettings(album, desktop);
        Album::withLongTexts(desktop.window(), [&] { drawLongSections(album, desktop); });
    } else {
        album.complain(QStringLiteral("The window of the sections did not open"));
    }
    await(desktop.close());
}

} // namespace orvane::testing
