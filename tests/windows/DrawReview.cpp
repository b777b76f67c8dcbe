// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client/OrvaneClient.h"
#include "PictureAlbum.h"
#include "PictureWorld.h"
#include "Proposals/AgentProposals.h"
#include "support/Await.h"

#include <QQuickItem>
#include <QQuickWindow>

namespace orvane::testing {

namespace {

using std::chrono::minutes;

std::string projectCalled(DesktopWindow &desktop, std::string_view name)
{
    const auto &projects = desktop.app().tracker()->catalog().projects();
    const auto found = std::ranges::find(projects, name, &ProjectResponse::name);
    return found == projects.end() ? std::string() : found->id;
}

/// New entries, a change of several fields and a removal, as an agent would have them.
void propose(DesktopWindow &desktop, Album &album)
{
    Tracker &tracker = *desktop.app().tracker();
    OrvaneClient &client = desktop.app().account()->client();
    const Instant morning = tracker.time().startOfDay(tracker.time().today()) + minutes{60 * 8 + 10};
    ProposeEntriesRequest fresh;
    fresh.entries.push_back({.description = "Dependency updates",
                             .projectId = projectCalled(desktop, "Website"),
                             .start = morning,
                             .stop = morning + minutes{36}});
    fresh.note =
        "Three pull requests were merged in website between 08:10 and 08:46, and no entry covers them.";
    fresh.entries.push_back({.description = "会議の準備 – وثائق التصميم 🗂",
                             .start = morning - minutes{60 * 24},
                             .stop = morning - minutes{60 * 24 - 50}});
    const TimeEntryResponse *copy = entryCalled(desktop, "Pricing page copy");
    const TimeEntryResponse *limits = entryCalled(desktop, "Rate limits per key");
    if (copy == nullptr || limits == nullptr)
        return album.complain(QStringLiteral("There is nothing to propose a change of"));
    ProposeChangesRequest changes;
    ProposedChangeRequest change;
    change.entryId = copy->id;
    change.version = copy->version;
    change.description = "Pricing page copy and the FAQ below it";
    change.project = ProjectChoice{projectCalled(desktop, "Admin"), {}};
    change.isBillable = !copy->isBillable;
    change.reason = "The commits of that hour are all in the admin repository.";
    changes.changes.push_back(change);
    ProposedChangeRequest removal;
    removal.entryId = limits->id;
    removal.version = limits->version;
    removal.remove = true;
    changes.changes.push_back(removal);
    if (!await(client.proposeEntries(tracker.workspace().id, fresh)) ||
        !await(client.proposeChanges(tracker.workspace().id, changes)))
        album.complain(QStringLiteral("Nothing could be proposed"));
    await(desktop.app().account()->proposals().load());
}

QString waiting(DesktopWindow &desktop, std::size_t place)
{
    const auto pending = desktop.app().account()->proposals().pending();
    return place < pending.size() ? QString::fromStdString(pending[place].id) : QString();
}

void settle(DesktopWindow &desktop)
{
    (void)eventually([&] { return !desktop.review().isSettling(); });
    desktop.app().notices()->dismiss();
}

void lookAt(DesktopWindow &desktop, int row)
{
    if (auto *offers = desktop.window()->findChild<QQuickItem *>(QStringLiteral("offers")))
        offers->setProperty("currentIndex", row);
}

} // namespace

/// Review with nothing, with offers of each kind, and with some of them settled.
void drawReview(Album &album)
{
    const PictureWorld world;
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    const auto isLoaded = [&] {
        return desktop.app().tracker() != nullptr && desktop.app().tracker()->state() == LoadState::loaded;
    };
    if (opens(desktop, isLoaded)) {
        desktop.window()->setProperty("section", QStringLiteral("review"));
        album.take(desktop, QStringLiteral("review-empty"));
        propose(desktop, album);
        album.take(desktop, QStringLiteral("review"));
        lookAt(desktop, 1);
        album.take(desktop, QStringLiteral("review-change"));
        Album::withLongTexts(desktop.window(), [&] { album.take(desktop, QStringLiteral("review-long")); });
        desktop.review().accept(waiting(desktop, 0));
        settle(desktop);
        desktop.review().decline(waiting(desktop, 0));
        settle(desktop);
        album.take(desktop, QStringLiteral("review-settled"));
    } else {
        album.complain(QStringLiteral("The window of the review did not open"));
    }
    await(desktop.close());
}

} // namespace orvane::testing
