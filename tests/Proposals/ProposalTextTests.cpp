// SPDX-License-Identifier: GPL-3.0-or-later
#include "Proposals/ProposalText.h"

#include "Catalog/Catalog.h"
#include "Time/AppClock.h"
#include "Time/UserTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ProposalTextTest : public ::testing::Test {
protected:
    ProposalTextTest()
    {
        ProjectResponse site;
        site.id = "site";
        site.name = "Website";
        site.tasks = {{"docs", "site", "Docs", true}};
        ProjectResponse chores;
        chores.id = "chores";
        chores.name = "Chores";
        catalog.replace({site, chores}, {}, {{"deps", "", "deps"}, {"ci", "", "ci"}});
        proposal.agentName = "Codex";
        proposal.plan.action = "update";
        ProposedEntrySnapshotResponse before;
        before.id = "entry";
        before.description = "Write the README";
        before.projectId = "site";
        before.taskId = "docs";
        before.start = noon;
        before.stop = noon + 36min;
        proposal.plan.before = before;
        proposal.plan.changes.emplace();
    }

    ProposalText text() const { return ProposalText::of(proposal, catalog, time); }
    ProposedFieldsResponse &changes() { return *proposal.plan.changes; }

    const Instant noon = std::chrono::sys_days(2024y / 3 / 6) + 12h;
    const UserTime time = UserTime::utc();
    Catalog catalog;
    AgentProposalResponse proposal;
};

TEST_F(ProposalTextTest, TellsOfNewWork)
{
    proposal.plan = {};
    proposal.plan.action = "create";
    ProposedWorkResponse work;
    work.range = {noon - 13h, noon - 11h};
    work.description = "Dependency updates";
    work.tagIds = {"deps", "gone", "ci"};
    work.isBillable = true;
    work.shares = {{"site", "docs", true, 60, ""}, {{}, {}, false, 40, "the rest"}};
    proposal.plan.work = work;
    proposal.note = "You ran them.";
    const ProposalText shown = text();
    EXPECT_EQ(shown.title, "Codex proposes “Dependency updates”");
    EXPECT_EQ(shown.day, "Tue, 5 Mar 2024");
    EXPECT_EQ(shown.times, "23:00 – Wed, 6 Mar 2024, 01:00");
    EXPECT_EQ(shown.length, "2h 00m");
    EXPECT_EQ(shown.place, "Website › Docs 60% billable, No project 40% “the rest”");
    EXPECT_EQ(shown.tags, "#ci #deps #unknown");
    EXPECT_EQ(shown.billing, "Partly billable") << "the parts say so, not the entry";
    EXPECT_EQ(shown.note, "You ran them.");
    EXPECT_THAT(shown.fields, IsEmpty());
}

TEST_F(ProposalTextTest, TellsOfAChangeBeforeAndAfter)
{
    changes().description = "";
    changes().project = ProjectChoice{"chores", {}};
    changes().replaceTags = true;
    changes().tagIds = {"ci"};
    changes().isBillable = true;
    changes().start = noon - 14h;
    changes().stop = noon + 36min + 20s;
    const ProposalText shown = text();
    EXPECT_EQ(shown.title, "Codex proposes to change “Write the README”");
    EXPECT_EQ(shown.place, "Website › Docs");
    EXPECT_THAT(shown.fields, ElementsAre(ProposedField{"Description", "Write the README", "No description"},
                                          ProposedField{"Project", "Website › Docs", "Chores"},
                                          ProposedField{"Tags", "No tags", "#ci"},
                                          ProposedField{"Billing", "Not billable", "Billable"},
                                          ProposedField{"Start", "12:00", "Tue, 5 Mar 2024, 22:00"},
                                          ProposedField{"Stop", "12:36:00", "12:36:20"}));
}

TEST_F(ProposalTextTest, TellsOfSplitsAndTimersAndDeletions)
{
    changes().shares = {{{"chores", {}, false, 100, ""}}};
    proposal.plan.before->stop.reset();
    changes().stop = noon + 1h;
    EXPECT_EQ(text().times, "12:00 – now");
    EXPECT_EQ(text().length, "");
    EXPECT_THAT(text().fields, ElementsAre(ProposedField{"Project", "Website › Docs", "Chores 100%"},
                                           ProposedField{"Stop", "Still running", "13:00"}));
    // Putting a split entry on one project ends the split.
    proposal.plan.before->shares = *changes().shares;
    changes() = {};
    changes().project = ProjectChoice{};
    EXPECT_THAT(text().fields, ElementsAre(ProposedField{"Project", "Chores 100%", "No project"}));
    // Nothing is billed unseen.
    changes() = {};
    changes().shares = {{{"chores", {}, true, 100, ""}}};
    EXPECT_THAT(text().fields, ElementsAre(ProposedField{"Project", "Chores 100%", "Chores 100%"},
                                           ProposedField{"Billing", "Not billable", "Billable"}));

    changes() = {};
    changes().remove = true;
    proposal.plan.action = "remove";
    proposal.plan.before->description = "";
    EXPECT_EQ(text().title, "Codex proposes to delete an entry without a description");
    EXPECT_THAT(text().fields, IsEmpty());
}

} // namespace
} // namespace orvane
