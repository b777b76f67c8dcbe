// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntryConversions.h"
#include "Client/OrvaneClient.h"
#include "PictureAlbum.h"
#include "PictureWorld.h"
#include "support/Await.h"

#include <functional>

namespace orvane::testing {

namespace {

using std::chrono::minutes;

std::string tagCalled(DesktopWindow &desktop, std::string_view name)
{
    const auto &tags = desktop.app().tracker()->catalog().tags();
    const auto found = std::ranges::find(tags, name, &TagResponse::name);
    return found == tags.end() ? std::string() : found->id;
}

using Edit = std::function<void(EntryRequest &)>;

/// Another device changes the entry, which this one has not heard of when it changes it as well; none: it
/// deletes it.
void changeTwice(DesktopWindow &desktop, Album &album, std::string_view description, const Edit &theirs,
                 const Edit &mine)
{
    const TimeEntryResponse *known = entryCalled(desktop, description);
    if (known == nullptr)
        return album.complain(QStringLiteral("There is no entry to change twice"));
    const TimeEntryResponse before = *known;
    EntryRequest elsewhere = entryRequest(before);
    theirs(elsewhere);
    await(desktop.app().account()->client().updateTimeEntry(before.workspaceId, before.id,
                                                            timeEntryRequest(elsewhere), before.version));
    EntryChange change{EntryChange::Delete{before.id, before.workspaceId, before.version}};
    if (mine) {
        EntryRequest here = entryRequest(before);
        mine(here);
        change = EntryChange{EntryChange::Update{here, before.id, before.workspaceId, before.version}};
    }
    std::vector<Submission> submissions;
    submissions.push_back({std::move(change), before, before});
    await(desktop.app().account()->outbox().submit(std::move(submissions)));
}

void drawSheets(Album &album, DesktopWindow &desktop)
{
    changeTwice(
        desktop, album, "Pricing page copy",
        [&](EntryRequest &theirs) {
            theirs.details.description = "Pricing page copy and FAQ";
            theirs.details.tagIds.push_back(tagCalled(desktop, "review"));
            *theirs.stop += minutes{15};
        },
        [&](EntryRequest &mine) {
            mine.details.description = "Pricing page";
            mine.details.tagIds.push_back(tagCalled(desktop, "meeting"));
            *mine.stop -= minutes{5};
        });
    album.take(desktop, QStringLiteral("conflict-marked"));
    ConflictModel &conflict = *desktop.timer().conflict();
    conflict.openFirst();
    if (!eventually([&] { return conflict.fields()->count() == 3; }))
        album.complain(QStringLiteral("There is no conflict to settle"));
    conflict.choose(0, true);
    conflict.choose(1, true);
    album.take(desktop, QStringLiteral("conflict"));
    conflict.save();
    changeTwice(desktop, album, "Stand-up", [](EntryRequest &theirs) { *theirs.stop -= minutes{5}; }, {});
    conflict.openFirst();
    if (!eventually([&] { return conflict.kind() == ConflictModel::Kind::Delete; }))
        album.complain(QStringLiteral("There is no deletion to settle"));
    album.take(desktop, QStringLiteral("conflict-delete"));
    conflict.save();
}

void requireProjects(DesktopWindow &desktop, bool isRequired)
{
    const Tracker &tracker = *desktop.app().tracker();
    WorkspaceSettingsRequest request;
    request.name = tracker.settings()->name;
    request.currency = tracker.settings()->currency;
    request.requireProject = isRequired;
    await(desktop.app().account()->client().updateWorkspaceSettings(tracker.workspace().id, request));
}

/// Without a project, which the workspace requires for the moment.
void drawRefused(Album &album, DesktopWindow &desktop)
{
    requireProjects(desktop, true);
    const TimeEntryResponse *known = entryCalled(desktop, "Cursor pagination");
    EntryRequest request = entryRequest(*known);
    request.details.projectId.reset();
    request.details.taskId.reset();
    *request.stop += minutes{30};
    std::vector<Submission> submissions;
    submissions.push_back(
        {EntryChange{EntryChange::Update{request, known->id, known->workspaceId, known->version}}, *known,
         *known});
    await(desktop.app().account()->outbox().submit(std::move(submissions)));
    requireProjects(desktop, false);
    if (!eventually([&] { return desktop.timer().refused()->count() == 1; }))
        album.complain(QStringLiteral("Nothing was refused"));
    album.take(desktop, QStringLiteral("refused"));
    desktop.timer().refused()->discard(0);
    if (!eventually([&] { return desktop.timer().refused()->count() == 0; }))
        album.complain(QStringLiteral("What was refused could not be discarded"));
}

void drawOverlap(Album &album, DesktopWindow &desktop)
{
    const TimeEntryResponse standUp = *entryCalled(desktop, "Stand-up");
    EntryRequest longer = entryRequest(standUp);
    *longer.stop += minutes{15};
    await(desktop.app().tracker()->update(standUp.id, longer));
    album.take(desktop, QStringLiteral("overlap"));
    if (!desktop.timer().trim(QString::fromStdString(standUp.id)))
        album.complain(QStringLiteral("There is no overlap to trim"));
}

void drawSeveral(Album &album, DesktopWindow &desktop)
{
    SeveralEntries &several = *desktop.timer().several();
    for (const char *name : {"Badge counts", "Copy review", "Rate limits: design"})
        several.toggle(idOf(desktop, name));
    desktop.timer().picker()->setQuery(QStringLiteral("Checkout"));
    several.setProject(desktop.timer().picker()->projectIdAt(0), {});
    album.take(desktop, QStringLiteral("several"));
    several.clear();
}

void drawAll(Album &album, DesktopWindow &desktop)
{
    drawSheets(album, desktop);
    drawRefused(album, desktop);
    drawOverlap(album, desktop);
    drawSeveral(album, desktop);
}

} // namespace

void drawConflict(Album &album)
{
    const PictureWorld world;
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    const auto isLoaded = [&] {
        return desktop.app().tracker() != nullptr && desktop.app().tracker()->state() == LoadState::loaded;
    };
    if (opens(desktop, isLoaded))
        drawAll(album, desktop);
    else
        album.complain(QStringLiteral("The window did not open"));
    await(desktop.close());
}

} // namespace orvane::testing
