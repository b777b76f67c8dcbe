// SPDX-License-Identifier: GPL-3.0-or-later
// Earlier work offered in the editor of the application without its windows, over the real server.
#include "AppModel/AppModel.h"
#include "Client/OrvaneClient.h"
#include "OpenedApp.h"
#include "Screens/Timer/TimerModel.h"
#include "Time/AppClock.h"
#include "Tracker/CatalogEditor.h"
#include "support/Await.h"
#include "support/CommandRun.h"

#include <QUuid>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace orvane::testing;
using std::chrono::hours;
using ::testing::ElementsAre;

class DescriptionSuggestionsTest : public testing::OpenedApp {
protected:
    DescriptionSuggestions &suggestions() { return *timer.suggestions(); }
    EntryEditor &editor() { return *timer.editor(); }

    QString record(const char *description, hours ago, const std::optional<std::string> &projectId = {},
                   bool isBillable = false)
    {
        EntryDetails details;
        details.description = description;
        details.projectId = projectId;
        details.isBillable = isBillable;
        const SaveResult made =
            await(tracker().create({std::move(details), now - ago, now - ago + hours{1}, false}));
        EXPECT_TRUE(made.entry) << made.message;
        return made.entry ? QString::fromStdString(made.entry->id) : QString();
    }
    /// One that lies before what is loaded here.
    void recordLongAgo(const char *description)
    {
        CreateTimeEntryRequest request;
        request.id = QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
        request.description = description;
        request.start = now - hours{1000};
        request.stop = now - hours{999};
        EXPECT_TRUE(await(app.account()->client().createTimeEntry(tracker().workspace().id, request)));
    }
    std::vector<std::string> offered()
    {
        std::vector<std::string> all;
        for (int row = 0; row < suggestions().count(); ++row)
            all.push_back(suggestions()
                              .data(suggestions().index(row), DescriptionSuggestions::descriptionRole)
                              .toString()
                              .toStdString());
        return all;
    }
    bool offers(const std::vector<std::string> &descriptions)
    {
        return eventually([&] { return offered() == descriptions; });
    }

    TimerModel timer{app};
    const Instant now = millisecondsFloor(AppClock::now());
};

TEST_F(DescriptionSuggestionsTest, OffersWhatIsKnownAndBelowItWhatTheServerKnows)
{
    recordLongAgo("Re\u0301sume\u0301 of the year");
    recordLongAgo("Rest of the invoices");
    const QString id = record("Resumed here", hours{2});
    record("Résumé for Ada", hours{4});
    record("Résumé for Ada", hours{6});
    ASSERT_TRUE(editor().open(id));

    suggestions().type(QStringLiteral("résumé"));
    EXPECT_EQ(suggestions().count(), 0) << "before typing rests";
    EXPECT_TRUE(offers({"Résumé for Ada", "Re\u0301sume\u0301 of the year"}))
        << ::testing::PrintToString(offered());
    suggestions().type(QStringLiteral("res"));
    EXPECT_TRUE(offers({"Résumé for Ada", "Rest of the invoices"})) << ::testing::PrintToString(offered());
    suggestions().type(QStringLiteral(" "));
    EXPECT_EQ(suggestions().count(), 0);

    // A list that was closed stays closed, whatever comes in later.
    suggestions().type(QStringLiteral("res"));
    ASSERT_TRUE(eventually([&] { return suggestions().count() > 0; }));
    suggestions().close();
    ASSERT_TRUE(await(app.account()->client().suggestDescriptions(tracker().workspace().id, "res")));
    EXPECT_EQ(suggestions().count(), 0);

    ASSERT_TRUE(installation.killServer());
    suggestions().type(QStringLiteral("RESUME"));
    EXPECT_TRUE(offers({"Résumé for Ada"}));
    editor().cancel();
    EXPECT_EQ(suggestions().count(), 0);
}

TEST_F(DescriptionSuggestionsTest, BringsWhatTheEntryLacks)
{
    ProjectFields fields;
    fields.name = "Atlas";
    fields.color = "#2a7f62";
    CatalogEditor catalog(app.account()->client(), tracker());
    const auto project = await(catalog.createProject(fields));
    fields.name = "Other";
    const auto other = await(catalog.createProject(fields));
    ASSERT_TRUE(project && other);
    record("Limits per key", hours{4}, project->id, true);
    const auto take = [&](const QString &id) {
        ASSERT_TRUE(editor().open(id));
        suggestions().type(QStringLiteral("limits"));
        ASSERT_TRUE(offers({"Limits per key"}));
        suggestions().take(0);
        EXPECT_EQ(suggestions().count(), 0);
        EXPECT_EQ(editor().property("description").toString(), QStringLiteral("Limits per key"));
        editor().save();
        ASSERT_TRUE(eventually([&] {
            return tracker().entry(id.toStdString())->description == "Limits per key" &&
                   app.sync()->kind() == SyncStatus::Kind::Saved;
        }));
    };

    const QString bare = record("x", hours{2});
    take(bare);
    EXPECT_EQ(tracker().entry(bare.toStdString())->projectId, project->id);
    EXPECT_TRUE(tracker().entry(bare.toStdString())->isBillable);

    const QString placed = record("y", hours{8}, other->id);
    take(placed);
    EXPECT_EQ(tracker().entry(placed.toStdString())->projectId, other->id);
    EXPECT_FALSE(tracker().entry(placed.toStdString())->isBillable);
}

} // namespace
} // namespace orvane
