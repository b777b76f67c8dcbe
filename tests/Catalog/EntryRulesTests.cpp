// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntryRules.h"
#include "Support/DateText.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using enum RequiredDetail;
using Details = std::vector<RequiredDetail>;

EntryRules strictRules()
{
    EntryRules rules;
    rules.settings.requireDescription = true;
    rules.settings.requireProject = true;
    rules.settings.requireTask = true;
    rules.settings.requireTag = true;
    return rules;
}

EntryDetails fullDetails()
{
    EntryDetails details;
    details.description = "Review";
    details.projectId = "p";
    details.taskId = "k";
    details.tagIds = {"t"};
    return details;
}

TEST(EntryRules, TellsWhatAnEntryLacksInTheOrderOfTheSettings)
{
    EXPECT_EQ(strictRules().missing({}), (Details{description, project, task, tag}));
    EXPECT_EQ(strictRules().missing(fullDetails()), Details{});
    EXPECT_EQ(EntryRules{}.missing({}), Details{});

    EntryDetails details = fullDetails();
    details.description = " \t\xC2\xA0";
    details.taskId = "";
    EXPECT_EQ(strictRules().missing(details), (Details{description, task}));
    EntryRules rules = strictRules();
    rules.settings.requireDescription = false;
    rules.isAdmin = true; // what is required is required of admins too
    EXPECT_EQ(rules.missing(details), Details{task});
}

TEST(EntryRules, AsksEveryShareOfASplitEntry)
{
    EntryDetails details = fullDetails();
    details.description.clear();
    details.shares = {{"p", "k", false, 50, "one"}, {"q", "l", false, 50, "two"}};
    EXPECT_EQ(strictRules().missing(details), Details{});

    details.shares[1].taskId.reset();
    EXPECT_EQ(strictRules().missing(details), Details{task});
    details.shares[1].projectId.reset();
    details.shares[1].description = " ";
    // The entry's own project and task do not stand in for a share's; its description does.
    EXPECT_EQ(strictRules().missing(details), (Details{description, project, task}));
    details.description = "both";
    EXPECT_EQ(strictRules().missing(details), (Details{project, task}));

    details.projectId.reset();
    details.taskId.reset();
    details.shares = {{"p", "k", false, 100, ""}};
    EXPECT_EQ(strictRules().missing(details), Details{});
}

TEST(EntryRules, LetsOnlyAdminsCreateWhereTheWorkspaceSaysSo)
{
    EntryRules rules;
    EXPECT_TRUE(rules.mayCreateProjects() && rules.mayCreateTags());
    rules.settings.onlyAdminsCreateProjects = true;
    EXPECT_FALSE(rules.mayCreateProjects());
    EXPECT_TRUE(rules.mayCreateTags());
    rules.settings.onlyAdminsCreateTags = true;
    EXPECT_FALSE(rules.mayCreateTags());
    rules.isAdmin = true;
    EXPECT_TRUE(rules.mayCreateProjects() && rules.mayCreateTags());
}

TEST(EntryRules, LocksTheTimeBeforeTheLockDate)
{
    const Instant lock = *instantFromIso8601("2026-03-01T00:00:00Z");
    EntryRules rules;
    EXPECT_FALSE(rules.isLocked(lock - std::chrono::years{10}));
    rules.settings.lockedBefore = lock;
    EXPECT_TRUE(rules.isLocked(lock - std::chrono::milliseconds{1}));
    EXPECT_FALSE(rules.isLocked(lock));
}

} // namespace
} // namespace orvane
