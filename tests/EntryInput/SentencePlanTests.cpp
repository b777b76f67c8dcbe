// SPDX-License-Identifier: GPL-3.0-or-later
#include "EntryInput/SentencePlan.h"

#include "Support/DateText.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

/// In UTC, on Wednesday 4 March 2026 at 15:47.
class SentencePlanTest : public ::testing::Test {
protected:
    SentencePlanTest()
    {
        ProjectResponse website;
        website.id = "website";
        website.name = "Website";
        website.isBillable = true;
        catalog.replace({website}, {}, {});
    }

    static Instant at(std::string_view text) { return instantFromIso8601(text).value(); }
    void run(const std::string &description, std::string_view since)
    {
        running.emplace();
        running->id = "running";
        running->description = description;
        running->start = at(since);
    }
    SentencePlan planned(std::string_view sentence, const std::string &refusal = {}) const
    {
        const SentenceCatalog names(catalog.projects(), catalog.clients(), catalog.tags());
        return SentencePlan::of(EntrySentence::read(sentence, names, {}, now, time),
                                {catalog, time, running, now, [&](const EntryRequest &) { return refusal; }});
    }

    Catalog catalog;
    const UserTime time = UserTime::utc();
    const Instant now = at("2026-03-04T15:47:12.345Z");
    std::optional<TimeEntryResponse> running;
};

TEST_F(SentencePlanTest, SaysWhenATimerStartsAndWhatItEnds)
{
    SentencePlan plan = planned("Review @web");
    EXPECT_EQ(plan.kind, SentencePlan::Kind::starts);
    EXPECT_EQ(plan.action, "Start");
    EXPECT_EQ(plan.words, "");
    EXPECT_EQ(plan.request->start, now);
    EXPECT_EQ(plan.request->details.projectId, "website");
    EXPECT_TRUE(plan.request->details.isBillable);

    run("Fix the sync bug", "2026-03-04T13:00:00Z");
    plan = planned("Review since 15:20");
    EXPECT_EQ(plan.action, "Start at 15:20");
    EXPECT_EQ(plan.words, "Ends “Fix the sync bug” at 15:20");
    EXPECT_EQ(plan.ends->id, "running");
    EXPECT_EQ(plan.request->start, at("2026-03-04T15:20:00Z"));
    EXPECT_EQ(planned("Review").words, "Ends “Fix the sync bug” at 15:47");

    run("", "2026-03-03T08:00:00Z");
    plan = planned("Night shift since 22:00");
    EXPECT_EQ(plan.action, "Start at 22:00 yesterday");
    EXPECT_EQ(plan.words, "Ends the running timer at 22:00 yesterday");
}

TEST_F(SentencePlanTest, SaysWhatIsAddedAndLeavesTheTimerAlone)
{
    run("Fix the sync bug", "2026-03-04T15:00:00Z");
    const SentencePlan plan = planned("Stand-up 9-10:30");
    EXPECT_EQ(plan.kind, SentencePlan::Kind::records);
    EXPECT_EQ(plan.action, "Add Entry");
    EXPECT_EQ(plan.words, "Adds 09:00 – 10:30 today");
    EXPECT_FALSE(plan.ends);
    EXPECT_EQ(plan.request->stop, at("2026-03-04T10:30:00Z"));
    EXPECT_EQ(planned("Stand-up yesterday 9-10:30").words, "Adds 09:00 – 10:30 yesterday");
    EXPECT_EQ(planned("Deploy 22:00-1:00").words, "Adds 22:00 today – 01:00 tomorrow");
    EXPECT_EQ(planned("Lunch 45m").words, "Adds 15:02 – 15:47 today");
    EXPECT_TRUE(planned("Plan 2026-02-27 9-10:30").words.starts_with("Adds 09:00 – 10:30 on Fri, 27 Feb"));
}

TEST_F(SentencePlanTest, SaysWhyItCannot)
{
    run("Fix the sync bug", "2026-03-04T15:30:00Z");
    const SentencePlan plan = planned("Review since 15:20", "Another timer runs.");
    EXPECT_EQ(plan.kind, SentencePlan::Kind::cannot);
    EXPECT_EQ(plan.words, "Another timer runs.");
    EXPECT_EQ(plan.action, "");
    EXPECT_FALSE(plan.ends);

    run("Tomorrow", "2026-03-05T09:00:00Z");
    EXPECT_EQ(planned("Review").kind, SentencePlan::Kind::cannot);
    run("Of a clock just ahead", "2026-03-04T15:47:40Z");
    EXPECT_EQ(planned("Review").request->start, running->start);
    EXPECT_EQ(planned("Review").kind, SentencePlan::Kind::starts);
}

} // namespace
} // namespace orvane
