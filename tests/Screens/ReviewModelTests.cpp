// SPDX-License-Identifier: GPL-3.0-or-later
// What agents propose, as the window settles it, over the real server.
#include "Screens/Review/ReviewModel.h"

#include "Account/Account.h"
#include "Catalog/EntryConversions.h"
#include "Client/OrvaneClient.h"
#include "OpenedApp.h"
#include "Screens/Timer/TimerModel.h"
#include "Time/AppClock.h"

#include <gmock/gmock.h>

namespace orvane {
namespace {

using namespace orvane::testing;
using std::chrono::minutes;
using ::testing::HasSubstr;

class ReviewModelTest : public OpenedApp {
protected:
    void SetUp() override
    {
        OpenedApp::SetUp();
        timer.emplace(app);
        review.emplace(app, *timer);
        ASSERT_TRUE(eventually([&] { return !review->isLoading(); }));
    }
    void TearDown() override
    {
        OpenedApp::TearDown();
        review.reset();
        timer.reset();
    }

    OrvaneClient &client() { return app.account()->client(); }
    const std::string &workspace() { return tracker().workspace().id; }
    QString propose(const std::string &description, minutes ago = minutes{60})
    {
        ProposeEntriesRequest request;
        request.entries.push_back(
            {.description = description, .start = now - ago, .stop = now - ago + minutes{30}});
        const auto outcomes = await(client().proposeEntries(workspace(), request));
        return told(outcomes && outcomes->front().proposal ? outcomes->front().proposal->id : "");
    }
    /// Of an entry that is there, under another description.
    QString proposeRenaming(const TimeEntryResponse &entry, const std::string &description)
    {
        ProposedChangeRequest change;
        change.entryId = entry.id;
        change.version = entry.version;
        change.description = description;
        const auto outcomes = await(client().proposeChanges(workspace(), {{change}, {}}));
        return told(outcomes && outcomes->front().proposal ? outcomes->front().proposal->id : "");
    }
    /// Once the window has heard of it.
    QString told(const std::string &id)
    {
        EXPECT_NE(id, "");
        const int before = review->waiting();
        await(app.account()->proposals().refresh());
        EXPECT_TRUE(eventually([&] { return review->waiting() == before + 1; }));
        return QString::fromStdString(id);
    }
    std::string said(OfferList::Role role, int row = 0)
    {
        return review->offers()->data(review->offers()->index(row), role).toString().toStdString();
    }
    std::string settled(SettledList::Role role)
    {
        return review->settled()->data(review->settled()->index(0), role).toString().toStdString();
    }
    bool isSettled(int waiting = 0)
    {
        return eventually([&] { return !review->isSettling() && review->waiting() == waiting; });
    }

    const Instant now = millisecondsFloor(AppClock::now());
    std::optional<TimerModel> timer;
    std::optional<ReviewModel> review;
};

TEST_F(ReviewModelTest, AcceptsDeclinesAndTakesBoth)
{
    const QString first = propose("First", minutes{300});
    const QString second = propose("Second");
    EXPECT_THAT(said(OfferList::titleRole), HasSubstr("proposes “First”"));
    EXPECT_TRUE(tracker().entries().empty()) << "nothing changes unasked";

    review->accept(first);
    review->decline(second);
    ASSERT_TRUE(isSettled(1)) << "one answer at a time";
    ASSERT_EQ(tracker().entries().size(), 1U);
    EXPECT_EQ(settled(SettledList::whatRole), "Accepted");
    EXPECT_EQ(app.notices()->action(), Notices::Action::Undo);
    review->decline(second);
    ASSERT_TRUE(isSettled());
    EXPECT_EQ(settled(SettledList::whatRole), "Declined");
    EXPECT_EQ(review->settled()->count(), 2);

    app.undo();
    ASSERT_TRUE(isSettled(1));
    review->reopen(first);
    ASSERT_TRUE(isSettled(2)) << "the settled list leads back as well";
    EXPECT_TRUE(tracker().entries().empty());
    EXPECT_THAT(said(OfferList::titleRole), HasSubstr("First")) << "where it stood before";
}

TEST_F(ReviewModelTest, SettlesAProposalThatWasEditedBeforeItWasRecorded)
{
    const QString fresh = propose("Write the notes");
    ASSERT_TRUE(review->edit(fresh));
    EXPECT_THAT(timer->field()->text().toStdString(), HasSubstr("Write the notes"));
    timer->field()->setText(QStringLiteral("Re") + timer->field()->text());
    timer->field()->submit();
    ASSERT_TRUE(isSettled());
    ASSERT_EQ(tracker().entries().size(), 1U);
    const TimeEntryResponse entry = tracker().entries().front();
    EXPECT_EQ(entry.description, "ReWrite the notes");
    EXPECT_EQ(settled(SettledList::whatRole), "Edited and recorded");

    const QString renaming = proposeRenaming(entry, "Notes of the release");
    ASSERT_TRUE(review->edit(renaming));
    EXPECT_EQ(timer->editor()->entryId().toStdString(), entry.id);
    EXPECT_EQ(timer->editor()->property("description").toString(), u"Notes of the release");
    timer->editor()->save();
    ASSERT_TRUE(isSettled());
    EXPECT_EQ(tracker().entry(entry.id)->description, "Notes of the release");

    // Something else was typed instead.
    const QString other = propose("Another", minutes{200});
    ASSERT_TRUE(review->edit(other));
    timer->field()->setText({});
    timer->field()->setText(QStringLiteral("Lunch"));
    timer->field()->submit();
    ASSERT_TRUE(eventually([&] { return tracker().running().has_value(); }));
    EXPECT_EQ(review->waiting(), 1);
}

TEST_F(ReviewModelTest, TellsWhyAnOfferCannotBeTaken)
{
    const TimeEntryResponse entry = *await(tracker().create([&] {
                                         EntryRequest request;
                                         request.details.description = "Stand-up";
                                         request.start = now - minutes{90};
                                         request.stop = now - minutes{60};
                                         return request;
                                     }()))
                                         .entry;
    const QString renaming = proposeRenaming(entry, "Daily");
    EntryRequest meanwhile = entryRequest(entry);
    meanwhile.details.description = "Weekly";
    ASSERT_FALSE(await(tracker().update(entry.id, meanwhile)).error);
    review->accept(renaming);
    ASSERT_TRUE(eventually([&] { return app.notices()->isFailure(); }));
    EXPECT_EQ(tracker().entry(entry.id)->description, "Weekly");
    EXPECT_EQ(review->waiting(), 1);
}

} // namespace
} // namespace orvane
