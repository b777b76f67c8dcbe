// SPDX-License-Identifier: GPL-3.0-or-later
// Several entries edited as one in the application without its windows, over the real server.
#include "AppModel/AppModel.h"
#include "Client/OrvaneClient.h"
#include "OpenedApp.h"
#include "Screens/Timer/TimerModel.h"
#include "Time/AppClock.h"
#include "Tracker/CatalogEditor.h"
#include "support/Await.h"
#include "support/CommandRun.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace orvane::testing;
using std::chrono::minutes;

class SeveralEntriesTest : public testing::OpenedApp {
protected:
    void SetUp() override
    {
        OpenedApp::SetUp();
        ProjectFields fields;
        fields.name = "Checkout";
        fields.color = "#BE4C6F";
        const auto made = await(CatalogEditor(app.account()->client(), tracker()).createProject(fields));
        ASSERT_TRUE(made);
        checkout = QString::fromStdString(made->id);
        const auto tag = await(CatalogEditor(app.account()->client(), tracker()).createTag("review"));
        ASSERT_TRUE(tag);
        for (const char *name : {"One", "Two", "Three"}) {
            EntryDetails details;
            details.description = name;
            if (ids.size() == 1)
                details.tagIds = {tag->id};
            const Instant start = noon + minutes{60 * static_cast<int>(ids.size())};
            const SaveResult saved = await(tracker().create({details, start, start + minutes{30}, false}));
            ASSERT_TRUE(saved.entry) << saved.message;
            ids.push_back(QString::fromStdString(saved.entry->id));
        }
    }
    using Held = std::vector<std::pair<std::string, std::string>>;

    /// Whether the server comes to hold these, each as what it is and its project, in order of start.
    bool holds(const Held &wanted)
    {
        return eventually([&] {
            auto entries = await(app.account()->client().listTimeEntries(
                tracker().workspace().id, noon - std::chrono::days{1}, noon + std::chrono::days{1}));
            std::ranges::sort(*entries, {}, &TimeEntryResponse::start);
            Held held;
            for (const TimeEntryResponse &entry : *entries)
                held.emplace_back(entry.description, entry.projectId.value_or("none"));
            return held == wanted;
        });
    }

    TimerModel timer{app};
    SeveralEntries &several = *timer.several();
    const Instant noon = std::chrono::floor<minutes>(AppClock::now()) - minutes{400};
    QString checkout;
    std::vector<QString> ids;
};

TEST_F(SeveralEntriesTest, ChangesWhatIsTouchedAndLeavesTheRestAsOneStep)
{
    for (const QString &id : ids)
        several.toggle(id);
    EXPECT_EQ(several.title(), QStringLiteral("3 entries"));
    EXPECT_TRUE(several.about().startsWith(QStringLiteral("1h 30m")));
    EXPECT_EQ(several.descriptionHint(), QStringLiteral("3 descriptions"));
    EXPECT_EQ(several.tagsHint(), QStringLiteral("#review on 1"));
    EXPECT_EQ(several.lastId(), ids.front()) << "the latest stands highest";
    several.toggle(ids.back());
    several.setProject(checkout, {});
    EXPECT_EQ(several.changes().toStdString(),
              "Project: 2 change to Checkout. Descriptions, tags, times and billing stay.");
    several.setProperty("tags", QStringLiteral("#nothing"));
    several.save();
    EXPECT_EQ(several.problem(), QStringLiteral("No tag is called “#nothing”."));
    EXPECT_EQ(several.count(), 2) << "nothing is lost";
    several.setProperty("tags", QString());
    several.save();
    EXPECT_EQ(several.count(), 0);
    const std::string project = checkout.toStdString();
    EXPECT_TRUE(holds({{"One", project}, {"Two", project}, {"Three", "none"}}));
    app.undo();
    EXPECT_TRUE(holds({{"One", "none"}, {"Two", "none"}, {"Three", "none"}}));
}

TEST_F(SeveralEntriesTest, AreChosenByRowsAndDeletedAsOneStep)
{
    const int first = timer.list()->rowOf(ids[2]);
    const int last = timer.list()->rowOf(ids[1]);
    several.chooseRows(last, first);
    EXPECT_EQ(several.count(), 2);
    EXPECT_TRUE(timer.list()->data(timer.list()->index(first), TimerList::isSelectedRole).toBool());
    // One goes elsewhere meanwhile.
    await(tracker().remove(ids[2].toStdString()));
    EXPECT_EQ(several.count(), 1);
    several.toggle(ids[0]);
    several.remove();
    EXPECT_TRUE(holds({}));
    app.undo();
    EXPECT_TRUE(holds({{"One", "none"}, {"Two", "none"}}));
}

} // namespace
} // namespace orvane
