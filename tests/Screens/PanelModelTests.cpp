// SPDX-License-Identifier: GPL-3.0-or-later
// The panel without its window, over the real server.
#include "AppModel/AppModel.h"
#include "Client/OrvaneClient.h"
#include "OpenedApp.h"
#include "Screens/Panel/PanelModel.h"
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
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::StartsWith;

class PanelModelTest : public testing::OpenedApp {
protected:
    void SetUp() override
    {
        OpenedApp::SetUp();
        QObject::connect(&panel, &PanelModel::left, &panel, [this] { ++timesLeft; });
        QObject::connect(&panel, &PanelModel::wanted, &panel, [this] { ++timesWanted; });
    }
    CatalogEditor catalog() { return {app.account()->client(), tracker()}; }

    ProjectResponse project(const char *name, const std::optional<std::string> &clientId = {})
    {
        ProjectFields fields;
        fields.name = name;
        fields.color = "#2a7f62";
        fields.clientId = clientId;
        return *await(catalog().createProject(fields));
    }
    /// An entry of 25 minutes that ended an hour ago.
    TimeEntryResponse record(const char *description, const std::string &projectId)
    {
        EntryDetails details;
        details.description = description;
        details.projectId = projectId;
        const Instant start = std::chrono::floor<minutes>(AppClock::now()) - minutes{85};
        return await(tracker().create({details, start, start + minutes{25}, false})).entry.value();
    }
    void type(const QString &text)
    {
        panel.field()->setText(text);
        panel.setCursor(static_cast<int>(text.size()));
    }
    std::vector<std::string> said(PanelRows::Role role)
    {
        std::vector<std::string> all;
        for (int row = 0; row < panel.rows()->count(); ++row)
            all.push_back(panel.rows()->data(panel.rows()->index(row), role).toString().toStdString());
        return all;
    }
    std::vector<std::string> titles() { return said(PanelRows::titleRole); }
    bool settles()
    {
        return eventually([&] { return !panel.isBusy() && app.sync()->kind() == SyncStatus::Kind::Saved; });
    }
    bool runs(const char *description) const
    {
        return tracker().running() && tracker().running()->description == description;
    }
    PaletteUsage usage() { return app.installation().paletteUsage(tracker().workspace().id); }

    PanelModel panel{app};
    int timesLeft = 0;
    int timesWanted = 0;
};

TEST_F(PanelModelTest, CompletesTheMentionThatIsTyped)
{
    const auto client = await(catalog().createClient("Kestrel"));
    ASSERT_TRUE(client);
    const ProjectResponse atlas = project("Atlas API", client->id);
    ASSERT_TRUE(await(catalog().createTask(atlas.id, "Backend")));
    project("Alert Triage Log");
    record("Review Atlas quota notes", atlas.id);
    panel.open();
    type(QStringLiteral("Review the limits @atl"));
    EXPECT_THAT(titles(),
                ElementsAre("Atlas API", "Atlas API › Backend", "Alert Triage Log",
                            "Review Atlas quota notes", "Create project “atl”", "Create client “atl”"));
    EXPECT_THAT(said(PanelRows::detailRole)[0], "Kestrel");
    const QVariantList pieces = panel.rows()->data(panel.rows()->index(2), PanelRows::piecesRole).toList();
    std::string marked;
    for (const QVariant &piece : pieces) {
        if (piece.toMap()[QStringLiteral("isMatch")].toBool())
            marked += piece.toMap()[QStringLiteral("text")].toString().toStdString();
    }
    EXPECT_EQ(marked, "ATL");
    EXPECT_EQ(panel.currentRow(), 0);
    EXPECT_FALSE(panel.isRowChosen()) << "Return is the sentence's";
    EXPECT_EQ(panel.action(), QStringLiteral("Start"));
    panel.moveDown();
    EXPECT_EQ(panel.action(), QStringLiteral("Complete"));
    panel.act();
    EXPECT_EQ(panel.field()->text(), QStringLiteral("Review the limits @Backend "));
    EXPECT_EQ(panel.cursor(), panel.field()->text().size());
    EXPECT_EQ(timesLeft, 0);
    panel.act();
    EXPECT_EQ(timesLeft, 1);
    ASSERT_TRUE(settles());
    EXPECT_TRUE(runs("Review the limits"));
    EXPECT_EQ(tracker().running()->projectId, atlas.id);
    EXPECT_TRUE(usage().uses.contains("project:" + atlas.id));
}

TEST_F(PanelModelTest, StaysWithTheChosenRowWhileOthersComeAndGo)
{
    project("Atlas");
    panel.open();
    type(QStringLiteral("Plan @at"));
    panel.moveDown();
    ASSERT_THAT(titles(), ElementsAre("Atlas", "Create project “at”", "Create client “at”"));
    project("Ateliers");
    ASSERT_THAT(titles(), ElementsAre("Ateliers", "Atlas", "Create project “at”", "Create client “at”"));
    EXPECT_EQ(panel.currentRow(), 2);
    EXPECT_EQ(panel.action(), QStringLiteral("Create"));
}

TEST_F(PanelModelTest, CompletesInTheMiddleOfTheSentence)
{
    project("Website");
    panel.open();
    panel.field()->setText(QStringLiteral("Fix web since 9:40"));
    panel.setCursor(7);
    EXPECT_THAT(titles(), ElementsAre("Website"));
    EXPECT_EQ(panel.currentRow(), -1) << "no word is taken for a name unasked";
    panel.complete();
    EXPECT_EQ(panel.field()->text(), QStringLiteral("Fix @Website since 9:40"));
    EXPECT_EQ(panel.cursor(), 13);
}

TEST_F(PanelModelTest, ReturnIsTheRowsOnceOneIsChosen)
{
    const TimeEntryResponse before = record("Cursor pagination", project("Atlas API").id);
    panel.open();
    type(QStringLiteral("curs"));
    EXPECT_EQ(panel.action(), QStringLiteral("Start"));
    panel.moveDown();
    EXPECT_EQ(panel.action(), QStringLiteral("Continue"));
    EXPECT_EQ(panel.plan(), QStringLiteral("Continues “Cursor pagination”"));
    panel.moveUp();
    EXPECT_EQ(panel.action(), QStringLiteral("Start"));
    panel.moveDown();
    panel.act();
    EXPECT_EQ(timesLeft, 1);
    EXPECT_EQ(panel.field()->text(), QString());
    ASSERT_TRUE(settles());
    ASSERT_TRUE(runs("Cursor pagination"));
    EXPECT_EQ(tracker().running()->projectId, before.projectId);
    EXPECT_NE(tracker().running()->id, before.id);
    ASSERT_EQ(usage().uses.size(), 1U);
    EXPECT_THAT(usage().uses.begin()->first, StartsWith("entry:"));

    // A time that was typed is meant: the entry is put into the sentence.
    await(tracker().stop(AppClock::now()));
    panel.open();
    type(QStringLiteral("curs 10m ago"));
    panel.setCursor(4);
    panel.moveDown();
    EXPECT_EQ(panel.action(), QStringLiteral("Complete"));
    panel.act();
    EXPECT_EQ(panel.field()->text(), QStringLiteral("Cursor pagination @Atlas-API 10m ago "));
}

TEST_F(PanelModelTest, OffersWhatIsUsedBeforeTheFirstLetter)
{
    const ProjectResponse atlas = project("Atlas API");
    project("Never used");
    record("Cursor pagination", atlas.id);
    panel.open();
    EXPECT_THAT(titles(), ElementsAre("Continue Last Entry", "Cursor pagination", "Open Orvane"));
    EXPECT_EQ(panel.action(), QString()) << "Return does nothing unasked";
    panel.act();
    EXPECT_EQ(timesLeft, 0);
    type(QStringLiteral("Plan @atlas"));
    panel.act();
    ASSERT_TRUE(settles());
    panel.open();
    EXPECT_THAT(titles(), ElementsAre("Stop Timer", "Atlas API", "Cursor pagination", "Open Orvane"));
    panel.moveDown();
    EXPECT_THAT(panel.plan().toStdString(), StartsWith("Ends “Plan” at "));
    panel.act();
    ASSERT_TRUE(settles());
    EXPECT_FALSE(tracker().running());
}

TEST_F(PanelModelTest, CreatesWhatIsMissingWhereTheRoleAllowsIt)
{
    panel.open();
    type(QStringLiteral("Fix the door @nova"));
    EXPECT_THAT(titles(), ElementsAre("Create project “nova”", "Create client “nova”"));
    EXPECT_EQ(panel.currentRow(), -1);
    panel.moveDown();
    EXPECT_EQ(panel.action(), QStringLiteral("Create"));
    panel.act();
    ASSERT_TRUE(eventually([&] { return !panel.isPending(); }));
    EXPECT_EQ(panel.field()->text(), QStringLiteral("Fix the door @nova "));
    ASSERT_EQ(tracker().catalog().projects().size(), 1U);
    EXPECT_EQ(tracker().catalog().projects().front().name, "nova");
    EXPECT_TRUE(panel.field()->notes().isEmpty());
    type(QStringLiteral("Fix #dee"));
    panel.moveDown();
    panel.act();
    ASSERT_TRUE(eventually([&] { return !panel.isPending(); }));
    EXPECT_EQ(tracker().catalog().tags().front().name, "dee");
    type(QStringLiteral("Fix @nova"));
    EXPECT_THAT(titles(), ElementsAre("nova")) << "it is there already";

    const auto &now = *tracker().settings();
    WorkspaceSettingsRequest request;
    request.name = now.name;
    request.currency = now.currency;
    request.onlyAdminsCreateProjects = true;
    request.onlyAdminsCreateTags = true;
    ASSERT_TRUE(await(app.account()->client().updateWorkspaceSettings(tracker().workspace().id, request)));
    await(tracker().load());
    WorkspaceSummary workspace = tracker().workspace();
    workspace.role = WorkspaceRole::member;
    tracker().setWorkspace(workspace);
    type(QStringLiteral("Fix @lyra"));
    EXPECT_THAT(titles(), ElementsAre());
    type(QStringLiteral("Fix #lyra"));
    EXPECT_THAT(titles(), ElementsAre());
}

TEST_F(PanelModelTest, ComesBackWithWhatFailed)
{
    const auto &now = *tracker().settings();
    WorkspaceSettingsRequest request;
    request.name = now.name;
    request.currency = now.currency;
    ASSERT_TRUE(await(tracker().start({}, AppClock::now() - minutes{5})).entry);
    request.requireProject = true;
    ASSERT_TRUE(await(app.account()->client().updateWorkspaceSettings(tracker().workspace().id, request)));
    await(tracker().load());
    panel.open();
    type(QStringLiteral("stop"));
    panel.moveDown();
    EXPECT_EQ(panel.action(), QStringLiteral("Stop"));
    panel.act();
    EXPECT_EQ(timesLeft, 1);
    ASSERT_TRUE(settles());
    EXPECT_EQ(timesWanted, 1);
    EXPECT_TRUE(tracker().running());
    EXPECT_TRUE(app.notices()->isFailure());
    EXPECT_EQ(panel.field()->text(), QStringLiteral("stop"));
}

TEST_F(PanelModelTest, KeepsWhatWasTypedWhenItIsLeft)
{
    panel.open();
    type(QStringLiteral("Half a sen"));
    panel.leave();
    EXPECT_EQ(timesLeft, 1);
    panel.open();
    EXPECT_EQ(panel.field()->text(), QStringLiteral("Half a sen"));
    EXPECT_EQ(panel.cursor(), 10);
    EXPECT_EQ(app.draft("panel"), QStringLiteral("Half a sen"));
    EXPECT_EQ(PanelModel(app).field()->text(), QStringLiteral("Half a sen"));
}

TEST(PanelModel, DoesWhatReturnSaidOnceTheAccountIsOpen)
{
    const TestInstallation installation;
    ASSERT_EQ(installation.run({"projects", "add", "Website"}).exitStatus, 0);
    AppModel app({.folder = installation.folder(), .serverProgram = builtProgram("orvane-server")});
    PanelModel panel(app);
    app.open();
    panel.open();
    panel.field()->setText(QStringLiteral("Fix the door @website"));
    panel.act();
    EXPECT_TRUE(panel.isPending());
    ASSERT_TRUE(eventually([&] { return app.tracker() != nullptr && app.tracker()->running(); }));
    EXPECT_TRUE(app.tracker()->running()->projectId) << "the names were known";
    await(app.close());
}

TEST(PanelPlace, IsWhatStandsAtTheCursor)
{
    const auto at = [](const char16_t *text, qsizetype cursor) {
        const PanelPlace place = PanelPlace::at(QString::fromUtf16(text), cursor);
        const QString sign = place.isMention() ? QString(place.sign) : QString();
        return (sign + place.name).toStdString() + " " + std::to_string(place.start) + "-" +
               std::to_string(place.end);
    };
    EXPECT_EQ(at(u"Fix @web now", 8), "@web 4-8");
    EXPECT_EQ(at(u"Fix @web now", 5), "@web 4-8") << "also behind the cursor";
    EXPECT_EQ(at(u"Fix @web now", 12), "now 9-12");
    EXPECT_EQ(at(u"Fix  now", 4), " 4-4");
    EXPECT_EQ(at(u"Fix @\"Big Pro", 13), "@Big Pro 4-13");
    EXPECT_EQ(at(u"\U0001F680\U0001F680 #é", 7), "#é 5-7");
    EXPECT_EQ(at(u"C# x@y", 2), "C# 0-2");
    EXPECT_EQ(at(u"", 9), " 0-0");
}

} // namespace
} // namespace orvane
