// SPDX-License-Identifier: GPL-3.0-or-later
// Entries divided in the application without its windows, over the real server.
#include "AppModel/AppModel.h"
#include "Catalog/EntryConversions.h"
#include "Client/OrvaneClient.h"
#include "OpenedApp.h"
#include "Screens/Timer/SplitModel.h"
#include "Time/AppClock.h"
#include "Tracker/CatalogEditor.h"
#include "support/Await.h"
#include "support/CommandRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace orvane::testing;
using std::chrono::minutes;
using ::testing::ElementsAre;

class SplitModelTest : public testing::OpenedApp {
protected:
    SplitRows &halves() { return *split.halves(); }
    SplitRows &parts() { return *split.parts(); }

    QString project(const char *name, bool isBillable = false)
    {
        ProjectFields fields;
        fields.name = name;
        fields.color = "#2a7f62";
        fields.isBillable = isBillable;
        const auto made = await(CatalogEditor(app.account()->client(), tracker()).createProject(fields));
        EXPECT_TRUE(made);
        return made ? QString::fromStdString(made->id) : QString();
    }

    /// One of 85 minutes; nothing as its end: it runs.
    QString record(const QString &projectId, std::optional<Instant> end)
    {
        EntryDetails details;
        details.description = "Whole";
        details.projectId = projectId.toStdString();
        details.isBillable = true;
        const SaveResult made = await(tracker().create({details, start, end, false}));
        EXPECT_TRUE(made.entry) << made.message;
        return made.entry ? QString::fromStdString(made.entry->id) : QString();
    }

    void changeWorkspace(const std::function<void(WorkspaceSettingsRequest &)> &change)
    {
        const auto &now = *tracker().settings();
        WorkspaceSettingsRequest request;
        request.name = now.name;
        request.currency = now.currency;
        change(request);
        EXPECT_TRUE(
            await(app.account()->client().updateWorkspaceSettings(tracker().workspace().id, request)));
        await(tracker().load());
    }

    /// What the server holds, in order of start, once all is sent.
    std::vector<TimeEntryResponse> held()
    {
        EXPECT_TRUE(eventually([&] { return app.sync()->kind() == SyncStatus::Kind::Saved; }));
        auto entries = await(app.account()->client().listTimeEntries(
            tracker().workspace().id, start - std::chrono::days{1}, start + std::chrono::days{2}));
        EXPECT_TRUE(entries);
        std::ranges::sort(*entries, {}, &TimeEntryResponse::start);
        return std::move(*entries);
    }
    bool tells(const char *notice)
    {
        return eventually([&] { return app.notices()->text() == QString::fromUtf8(notice); });
    }
    static std::string said(SplitRows &rows, int row, SplitRows::Role role)
    {
        return rows.data(rows.index(row), role).toString().toStdString();
    }
    static std::vector<std::string> saidByAll(SplitRows &rows, SplitRows::Role role)
    {
        std::vector<std::string> all;
        for (int row = 0; row < rows.count(); ++row)
            all.push_back(said(rows, row, role));
        return all;
    }

    SplitModel split{app};
    const Instant start = std::chrono::floor<minutes>(AppClock::now()) - minutes{120};
    const Instant stop = start + minutes{85};
};

TEST_F(SplitModelTest, DividesInTimeAsOneStep)
{
    const QString one = project("One");
    const QString other = project("Other");
    const QString id = record(one, stop);
    ASSERT_TRUE(split.open(id));
    EXPECT_EQ(split.mode(), SplitModel::Mode::AtTime);
    EXPECT_FALSE(split.isSplit());
    const auto type = [&](Instant at) {
        split.setProperty("moment", QString::fromStdString(tracker().time().clockLabel(at)));
    };
    split.setProperty("moment", QStringLiteral("soon"));
    split.save();
    EXPECT_TRUE(split.isMomentWrong());
    type(stop);
    EXPECT_FALSE(split.settleMoment());
    EXPECT_FALSE(split.entryId().isEmpty());
    EXPECT_EQ(tracker().entries().size(), 1U) << "nothing is changed before it can be";
    type(start + minutes{46});
    split.nudgeMoment(1);
    EXPECT_FALSE(split.isMomentWrong());
    EXPECT_THAT(saidByAll(halves(), SplitRows::lengthRole), ElementsAre("47m", "38m"));

    halves().setDescription(0, QStringLiteral("Limits"));
    halves().setProject(1, other, {});
    split.save();
    EXPECT_TRUE(split.entryId().isEmpty());
    const std::string at = tracker().time().clockLabel(start + minutes{47});
    EXPECT_TRUE(tells(("Split “Whole” at " + at).c_str()));
    EXPECT_EQ(app.notices()->action(), Notices::Action::Undo);
    const auto divided = held();
    ASSERT_EQ(divided.size(), 2U);
    EXPECT_EQ(divided[0].id, id.toStdString());
    EXPECT_EQ(divided[0].description, "Limits");
    EXPECT_EQ(divided[0].projectId, one.toStdString());
    EXPECT_EQ(divided[0].stop, start + minutes{47});
    EXPECT_EQ(divided[1].description, "Whole");
    EXPECT_EQ(divided[1].projectId, other.toStdString());
    EXPECT_EQ(divided[1].stop, stop);
    EXPECT_FALSE(divided[1].isBillable) << "as its project is";

    app.undo();
    ASSERT_TRUE(eventually([&] { return tracker().entries().size() == 1; }));
    const auto whole = held();
    ASSERT_EQ(whole.size(), 1U);
    EXPECT_EQ(whole[0].description, "Whole");
    EXPECT_EQ(whole[0].stop, stop);
}

TEST_F(SplitModelTest, DividesByPercentsAndJoinsAgain)
{
    const QString one = project("One");
    const QString other = project("Other", true);
    const QString id = record(one, stop);
    ASSERT_TRUE(split.open(id));
    split.setMode(SplitModel::Mode::ByPercent);
    split.addPart();
    split.addPart();
    EXPECT_FALSE(split.canAddPart());
    split.removePart(3);
    parts().setProject(1, other, {});
    parts().setDescription(1, QStringLiteral("Paging"));
    for (const char *typed : {"4", "", "4x", "90", "45%"})
        split.typePercent(1, QString::fromUtf8(typed));
    EXPECT_THAT(saidByAll(parts(), SplitRows::percentRole), ElementsAre("50", "45", "5"))
        << "as if nothing had been typed in between";
    split.settlePercents();
    split.moveBorder(1, 0.9);
    EXPECT_THAT(saidByAll(parts(), SplitRows::percentTextRole), ElementsAre("50", "40", "10"));
    // 42.5, 34 and 8.5 minutes.
    EXPECT_THAT(saidByAll(parts(), SplitRows::lengthRole), ElementsAre("43m", "34m", "8m"));
    split.save();
    EXPECT_TRUE(tells("Split “Whole” into 3 parts"));
    const std::vector<SplitPart> shares = entryDetails(held().at(0)).shares;
    const SplitPart first{one.toStdString(), {}, true, 50, "Whole"};
    const SplitPart second{other.toStdString(), {}, true, 40, "Paging"};
    EXPECT_EQ(shares, (std::vector{first, second, SplitPart{{}, {}, false, 10, "Whole"}}));

    ASSERT_TRUE(split.open(id));
    EXPECT_EQ(split.mode(), SplitModel::Mode::ByPercent);
    ASSERT_TRUE(split.isSplit());
    EXPECT_EQ(said(parts(), 1, SplitRows::projectRole), "Other");
    split.joinAgain();
    EXPECT_TRUE(tells("Joined “Whole” again"));
    EXPECT_TRUE(held().at(0).shares.empty());
    app.undo();
    ASSERT_TRUE(eventually([&] { return tracker().entries().front().shares.size() == 3; }));
    EXPECT_EQ(entryDetails(held().at(0)).shares, shares);
}

TEST_F(SplitModelTest, DividesWhatRuns)
{
    const QString id = record(project("One"), {});
    ASSERT_TRUE(split.open(id));
    split.setMode(SplitModel::Mode::ByPercent);
    split.nudgePercent(0, 10);
    split.save();
    ASSERT_TRUE(tells("Split “Whole” into 2 parts"));
    ASSERT_TRUE(tracker().running());
    EXPECT_EQ(tracker().running()->shares.front().percent, 60);

    ASSERT_TRUE(split.open(id));
    split.setMode(SplitModel::Mode::AtTime);
    split.moveMoment(0);
    halves().setDescription(0, QStringLiteral("Before"));
    split.save();
    ASSERT_TRUE(eventually([&] { return tracker().entries().size() == 2; }));
    const auto divided = held();
    EXPECT_EQ(divided.at(0).description, "Before");
    EXPECT_EQ(divided[0].stop, start + minutes{1});
    EXPECT_EQ(divided[0].shares.size(), 2U);
    EXPECT_EQ(divided[0].shares[0].description, "Before")
        << "parts without a name of their own follow the entry";
    EXPECT_EQ(divided.at(1).description, "Whole");
    EXPECT_FALSE(divided[1].stop);
}

TEST_F(SplitModelTest, KeepsWhatIsTypedWhenItIsRefused)
{
    const QString id = record(project("One"), stop);
    changeWorkspace([](auto &settings) { settings.requireProject = true; });
    ASSERT_TRUE(split.open(id));
    split.setMode(SplitModel::Mode::ByPercent);
    parts().setDescription(1, QStringLiteral("Typed"));
    split.save();
    EXPECT_FALSE(split.problem().isEmpty());
    EXPECT_FALSE(split.entryId().isEmpty());
    EXPECT_EQ(said(parts(), 1, SplitRows::descriptionRole), "Typed");

    // Another device deletes it meanwhile.
    ASSERT_TRUE(await(
        app.account()->client().deleteTimeEntry(tracker().workspace().id, id.toStdString(), std::nullopt)));
    await(tracker().refresh(Topic::entries));
    EXPECT_TRUE(split.entryId().isEmpty());
    EXPECT_TRUE(tells("The entry was deleted meanwhile; nothing was changed."));
}

TEST_F(SplitModelTest, RefusesLockedTime)
{
    const QString id = record(project("One"), stop);
    changeWorkspace([this](auto &settings) { settings.lockedBefore = stop; });
    EXPECT_FALSE(split.open(id));
    EXPECT_TRUE(split.entryId().isEmpty());
    EXPECT_TRUE(app.notices()->isFailure());
}

} // namespace
} // namespace orvane
