// SPDX-License-Identifier: GPL-3.0-or-later
// Conflicts settled in the application without its windows, over the real server.
#include "AppModel/AppModel.h"
#include "Catalog/EntryConversions.h"
#include "Client/OrvaneClient.h"
#include "OpenedApp.h"
#include "Screens/Conflict/ConflictModel.h"
#include "Time/AppClock.h"
#include "support/Await.h"
#include "support/CommandRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace orvane::testing;
using std::chrono::minutes;
using ::testing::ElementsAre;

class ConflictModelTest : public testing::OpenedApp {
protected:
    using Edit = std::function<void(EntryRequest &)>;

    void SetUp() override
    {
        OpenedApp::SetUp();
        EntryDetails details;
        details.description = "Pricing page copy";
        const SaveResult made = await(tracker().create({details, start, start + minutes{65}, false}));
        ASSERT_TRUE(made.entry) << made.message;
        before = *made.entry;
    }
    Outbox &outbox() const { return app.account()->outbox(); }
    OrvaneClient &client() const { return app.account()->client(); }

    TimeEntryResponse held() { return *await(client().getTimeEntry(before.workspaceId, before.id)); }
    void changeElsewhere(const Edit &change)
    {
        const TimeEntryResponse now = held();
        EntryRequest request = entryRequest(now);
        change(request);
        ASSERT_TRUE(
            await(client().updateTimeEntry(now.workspaceId, now.id, timeEntryRequest(request), now.version)));
    }
    /// Made by who sees the entry as it was in `before`.
    void changeHere(EntryChange::Action action)
    {
        std::vector<Submission> submissions;
        submissions.push_back({EntryChange{std::move(action)}, before, before});
        ASSERT_TRUE(await(outbox().submit(std::move(submissions))));
        ASSERT_EQ(outbox().conflicts().size(), 1U);
    }
    EntryChange::Update edited(const Edit &change) const
    {
        EntryRequest request = entryRequest(before);
        change(request);
        return {std::move(request), before.id, before.workspaceId, before.version};
    }
    void open()
    {
        ASSERT_TRUE(conflict.open(QString::fromStdString(before.id)));
        ASSERT_TRUE(eventually([&] { return !conflict.entryId().isEmpty(); }));
    }
    std::vector<std::string> said(ConflictFields::Role role)
    {
        std::vector<std::string> all;
        for (int row = 0; row < conflict.fields()->count(); ++row)
            all.push_back(
                conflict.fields()->data(conflict.fields()->index(row), role).toString().toStdString());
        return all;
    }
    std::string clock(Instant at) const { return tracker().time().clockLabel(at); }
    bool isSettled()
    {
        return eventually([&] { return outbox().pending().empty(); });
    }

    ConflictModel conflict{app};
    const Instant start = std::chrono::floor<minutes>(AppClock::now()) - minutes{300};
    TimeEntryResponse before;
};

TEST_F(ConflictModelTest, EachFieldThatDiffersIsChosenByItself)
{
    EXPECT_FALSE(conflict.open(QString::fromStdString(before.id))) << "nothing is to settle";
    changeElsewhere([](auto &theirs) {
        theirs.details.description = "Pricing page copy & FAQ";
        theirs.details.isBillable = true;
        *theirs.stop += minutes{15};
    });
    changeHere(edited([](auto &mine) {
        mine.details.description = "Pricing page";
        *mine.stop -= minutes{5};
    }));
    EXPECT_TRUE(conflict.entryId().isEmpty()) << "it never opens by itself";
    open();
    EXPECT_EQ(conflict.kind(), ConflictModel::Kind::Fields);
    EXPECT_THAT(said(ConflictFields::labelRole), ElementsAre("Description", "Stop"));
    EXPECT_THAT(said(ConflictFields::mineRole),
                ElementsAre("Pricing page", clock(start + minutes{60}) + " · 1h 00m"));
    EXPECT_EQ(said(ConflictFields::theirsRole).front(), "Pricing page copy & FAQ");
    EXPECT_EQ(conflict.same().toStdString(), "No project, start " + clock(start) + ", billable");
    EXPECT_EQ(conflict.description(), QStringLiteral("Pricing page")) << "differences start on mine";
    EXPECT_EQ(conflict.length(), QStringLiteral("1h 00m"));

    conflict.choose(0, true);
    EXPECT_EQ(conflict.description(), QStringLiteral("Pricing page copy & FAQ"));
    conflict.save();
    EXPECT_TRUE(conflict.entryId().isEmpty());
    ASSERT_TRUE(isSettled());
    EXPECT_EQ(held().description, "Pricing page copy & FAQ");
    EXPECT_TRUE(held().isBillable);
    EXPECT_EQ(held().stop, start + minutes{60});
}

TEST_F(ConflictModelTest, TimesThatMakeNoEntryAreNotSaved)
{
    changeElsewhere([&](auto &theirs) { theirs.stop = start + minutes{10}; });
    changeHere(edited([&](auto &mine) { mine.start = start + minutes{30}; }));
    open();
    EXPECT_THAT(said(ConflictFields::labelRole), ElementsAre("Start", "Stop"));
    conflict.choose(1, true);
    EXPECT_EQ(conflict.problem(), QStringLiteral("The end must not be before the start."));
    conflict.save();
    EXPECT_EQ(outbox().conflicts().size(), 1U);
    conflict.chooseAll(true);
    EXPECT_TRUE(conflict.problem().isEmpty());
    conflict.save();
    ASSERT_TRUE(isSettled());
    EXPECT_EQ(held().start, start);
    EXPECT_EQ(held().stop, start + minutes{10});
}

TEST_F(ConflictModelTest, WhatChangesAgainMeanwhileWaitsAndIsTold)
{
    changeElsewhere([](auto &theirs) { theirs.details.description = "theirs"; });
    changeHere(edited([](auto &mine) { mine.details.description = "mine"; }));
    open();
    changeElsewhere([](auto &theirs) { theirs.details.description = "theirs again"; });
    conflict.save();
    ASSERT_TRUE(eventually([&] { return app.notices()->isFailure(); }));
    EXPECT_EQ(app.notices()->text(),
              QStringLiteral("“mine” was changed again meanwhile; your choice waits."));
    EXPECT_EQ(held().description, "theirs again");
    conflict.openFirst();
    ASSERT_TRUE(eventually([&] { return !conflict.entryId().isEmpty(); }));
    EXPECT_THAT(said(ConflictFields::theirsRole), ElementsAre("theirs again"));
    conflict.save();
    ASSERT_TRUE(isSettled());
    EXPECT_EQ(held().description, "mine");
}

TEST_F(ConflictModelTest, ADeletionIsMadeAnywayOrDropped)
{
    const EntryChange::Delete deletion{before.id, before.workspaceId, before.version};
    changeElsewhere([](auto &theirs) { theirs.details.description = "theirs"; });
    changeHere(deletion);
    open();
    EXPECT_EQ(conflict.kind(), ConflictModel::Kind::Delete);
    EXPECT_EQ(conflict.fields()->count(), 0);
    EXPECT_EQ(conflict.description(), QStringLiteral("theirs"));
    conflict.save();
    ASSERT_TRUE(isSettled());
    EXPECT_EQ(held().description, "theirs");

    changeHere(deletion);
    open();
    conflict.deleteAnyway();
    ASSERT_TRUE(isSettled());
    EXPECT_FALSE(await(client().getTimeEntry(before.workspaceId, before.id)));
}

TEST_F(ConflictModelTest, AStopAsksOnlyForItsTime)
{
    EntryDetails details;
    details.description = "Timer";
    const SaveResult started = await(tracker().start(details, start + minutes{100}));
    ASSERT_TRUE(started.entry);
    before = *started.entry;
    changeElsewhere([&](auto &theirs) {
        theirs.details.description = "Timer, renamed";
        theirs.stop = start + minutes{120};
    });
    changeHere(EntryChange::Stop{start + minutes{110}, before.id, before.workspaceId, before.version});
    open();
    EXPECT_EQ(conflict.kind(), ConflictModel::Kind::Stop);
    EXPECT_THAT(said(ConflictFields::labelRole), ElementsAre("Stop"));
    conflict.save();
    ASSERT_TRUE(isSettled());
    EXPECT_EQ(held().stop, start + minutes{110});
    EXPECT_EQ(held().description, "Timer, renamed");
}

TEST(MarkedDifference, IsInTheWordsThatTheOtherSideDoesNotHave)
{
    const auto marked = [](const char *text, const char *other) {
        return markedAgainst(QString::fromUtf8(text), QString::fromUtf8(other)).join(u'|').toStdString();
    };
    EXPECT_EQ(marked("a b c", "a x c"), "a|b|c");
    EXPECT_EQ(marked("a b", "a b c"), "a b||");
    EXPECT_EQ(marked("a b c d", "a d"), "a|b c|d");
    EXPECT_EQ(marked("a a", "a"), "a|a|");
    EXPECT_EQ(marked("x", "y"), "|x|");
}

} // namespace
} // namespace orvane
