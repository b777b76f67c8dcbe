// SPDX-License-Identifier: GPL-3.0-or-later
// Refused changes in the application without its windows, over the real server.
#include "AppModel/AppModel.h"
#include "Catalog/EntryConversions.h"
#include "Client/OrvaneClient.h"
#include "Screens/Timer/TimerModel.h"
#include "Time/AppClock.h"
#include "support/Await.h"
#include "support/CommandRun.h"
#include "support/MidweekClock.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace orvane::testing;
using std::chrono::minutes;

class RefusedListTest : public ::testing::Test {
    MidweekClock midweek;

protected:
    void SetUp() override
    {
        open();
        EntryDetails details;
        details.description = "Error budget notes";
        const SaveResult made = await(tracker().create({details, start, start + minutes{60}, false}));
        ASSERT_TRUE(made.entry) << made.message;
        entry = *made.entry;
    }
    void TearDown() override { await(app->close()); }

    void open()
    {
        timer.reset();
        app.emplace(AppModel::Options{.folder = installation.folder(),
                                      .serverProgram = builtProgram("orvane-server")});
        app->open();
        ASSERT_TRUE(eventually([&] { return app->tracker() && tracker().state() == LoadState::loaded; }));
        timer.emplace(*app);
    }
    Tracker &tracker() const { return *app->tracker(); }
    OrvaneClient &client() const { return app->account()->client(); }
    RefusedList &refused() { return *timer->refused(); }

    void requireProjects(bool isRequired)
    {
        WorkspaceSettingsRequest request;
        request.name = tracker().settings()->name;
        request.currency = tracker().settings()->currency;
        request.requireProject = isRequired;
        ASSERT_TRUE(await(client().updateWorkspaceSettings(tracker().workspace().id, request)));
        await(tracker().load());
    }
    /// A change that the server does not take, as one that waited while the rules changed.
    void beRefused(EntryChange::Action action)
    {
        requireProjects(true);
        std::vector<Submission> submissions;
        submissions.push_back({EntryChange{std::move(action)}, entry, entry});
        ASSERT_TRUE(await(app->account()->outbox().submit(std::move(submissions))));
        requireProjects(false);
        ASSERT_TRUE(eventually([&] { return refused().count() == 1; })) << refused().count();
    }
    EntryChange::Update longer()
    {
        EntryRequest request = entryRequest(entry);
        *request.stop += minutes{30};
        return {request, entry.id, entry.workspaceId, entry.version};
    }
    std::string said(RefusedList::Role role)
    {
        return refused().data(refused().index(0), role).toString().toStdString();
    }
    TimeEntryResponse held() { return *await(client().getTimeEntry(entry.workspaceId, entry.id)); }
    std::string clock(Instant at) const { return tracker().time().clockLabel(at); }
    bool isAnswered()
    {
        return eventually([&] { return refused().count() == 0; });
    }

    TestInstallation installation;
    std::optional<AppModel> app;
    std::optional<TimerModel> timer;
    const Instant start = std::chrono::floor<minutes>(AppClock::now()) - minutes{300};
    TimeEntryResponse entry;
};

TEST_F(RefusedListTest, KeepsWhatWasWantedUntilItIsAnsweredAndOverRestarts)
{
    beRefused(longer());
    EXPECT_EQ(said(RefusedList::stopRole), clock(start + minutes{90})) << "what was wanted";
    EXPECT_TRUE(refused().data(refused().index(0), RefusedList::isStopNewRole).toBool());
    EXPECT_FALSE(said(RefusedList::reasonRole).empty());
    EXPECT_EQ(said(RefusedList::sentenceRole), "Your change isn't saved; the server has " + clock(start) +
                                                   " – " + clock(start + minutes{60}) + ".");
    // Another program of this computer tells it, too; it stays here all the same.
    EXPECT_EQ(installation.run({"list"}).exitStatus, 0);
    await(app->close());
    open();
    ASSERT_TRUE(eventually([&] { return refused().count() == 1; }));
    EXPECT_EQ(said(RefusedList::titleRole), "Error budget notes");

    refused().tryAgain(0);
    ASSERT_TRUE(isAnswered());
    EXPECT_EQ(held().stop, start + minutes{90});
}

TEST_F(RefusedListTest, IsCorrectedInTheEditorWithWhatWasTyped)
{
    beRefused(longer());
    refused().edit(0);
    EntryEditor &editor = *timer->editor();
    EXPECT_EQ(editor.entryId().toStdString(), entry.id);
    EXPECT_EQ(editor.property("stop").toString().toStdString(), clock(start + minutes{90}));
    editor.cancel();
    EXPECT_EQ(refused().count(), 1) << "leaving the editor is no answer";
    refused().edit(0);
    editor.setProperty("description", QStringLiteral("Error budget"));
    editor.save();
    ASSERT_TRUE(isAnswered());
    EXPECT_EQ(held().stop, start + minutes{90});
    EXPECT_EQ(held().description, "Error budget");
}

TEST_F(RefusedListTest, ANewEntryGoesBackIntoTheFieldOrIsDiscarded)
{
    EntryRequest request = entryRequest(entry);
    request.details.description = "Offline note";
    requireProjects(true);
    const EntryChange creation{
        EntryChange::Create{request, "6f1e3a52-4f0e-4c57-9d41-0c0a7f9d2b11", entry.workspaceId}};
    const auto store = *await(LocalStore::open(app->account()->storePath()));
    ASSERT_TRUE(await(store->enqueue(creation)));
    await(app->account()->outbox().flush());
    requireProjects(false);
    ASSERT_TRUE(eventually([&] { return refused().count() == 1; }));
    timer->field()->setText(QStringLiteral("half typed"));
    refused().edit(0);
    EXPECT_EQ(timer->field()->text(), QStringLiteral("half typed")) << "nothing typed is lost";
    timer->field()->setText({});
    refused().edit(0);
    EXPECT_EQ(timer->field()->text().toStdString(),
              "Offline note " + clock(start) + "-" + clock(start + minutes{60}));
    EXPECT_TRUE(isAnswered());

    beRefused(longer());
    refused().discard(0);
    EXPECT_TRUE(isAnswered());
    EXPECT_EQ(held().stop, start + minutes{60});
}

} // namespace
} // namespace orvane
