// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/EntryMerge.h"

#include "Catalog/EntryConversions.h"

#include <functional>
#include <gtest/gtest.h>

namespace orvane {
namespace {

class EntryMergeTest : public ::testing::Test {
protected:
    EntryMergeTest()
    {
        base.id = "e";
        base.workspaceId = "w";
        base.version = "1";
        base.description = "Review";
        base.tagIds = {"a", "b"};
        base.projectId = "p";
        base.taskId = "t";
        base.start = instantFromMilliseconds(1'772'000'000'000);
        base.stop = base.start + std::chrono::hours{1};
        base.shares = {{"p", {}, false, 40, "Review"}, {"q", {}, true, 60, "Review"}};
    }

    /// What a user makes of `base`.
    EntryChange edit(const std::function<void(EntryRequest &)> &change) const
    {
        EntryRequest request = entryRequest(base);
        change(request);
        return {EntryChange::Update{std::move(request), "e", "w", "1"}};
    }
    Rebased putOn(const EntryChange &change, const TimeEntryResponse &head) const
    {
        return putOnTop(change, base, head);
    }
    static TimeEntryResponse outcome(const Rebased &rebased, const TimeEntryResponse &head)
    {
        return *applied(rebased.change, head);
    }

    TimeEntryResponse base;
};

TEST_F(EntryMergeTest, KeepsWhatEachSideChangedInAFieldOfItsOwn)
{
    TimeEntryResponse head = base;
    head.isBillable = true;
    head.start -= std::chrono::minutes{5};
    head.tagIds = {"c"};
    const Rebased rebased = putOn(edit([](EntryRequest &mine) { mine.details.description = "Mine"; }), head);
    EXPECT_FALSE(rebased.isContested);
    TimeEntryResponse wanted = head;
    wanted.description = "Mine";
    for (TimeShareResponse &share : wanted.shares)
        share.description = "Mine"; // parts that say nothing of their own follow
    EXPECT_TRUE(saysTheSame(outcome(rebased, head), wanted));
    EXPECT_EQ(rebased.change.version(), "1") << "what it is made against is for others to say";
}

TEST_F(EntryMergeTest, TakesBothOfMyTimesWhereTheyDoNotGoTogetherWithTheirs)
{
    base.stop.reset();
    TimeEntryResponse head = base;
    head.stop = base.start + std::chrono::minutes{10};
    head.description = "Theirs";
    const Instant late = base.start + std::chrono::minutes{30};
    const Rebased rebased = putOn(edit([&](EntryRequest &mine) { mine.start = late; }), head);
    EXPECT_TRUE(rebased.isContested);
    const TimeEntryResponse result = outcome(rebased, head);
    EXPECT_EQ(result.start, late);
    EXPECT_FALSE(result.stop) << "it would end before it starts";
    EXPECT_EQ(result.description, "Theirs") << "which I did not touch";
}

TEST_F(EntryMergeTest, TellsTheSameFieldTwice)
{
    struct Case {
        const char *name;
        std::function<void(TimeEntryResponse &)> theirs;
        std::function<void(EntryRequest &)> mine;
        bool isContested;
    };
    const Case cases[] = {
        {"description", [](auto &e) { e.description = "Theirs"; },
         [](auto &r) { r.details.description = "Mine"; }, true},
        {"the same words", [](auto &e) { e.description = "Both"; },
         [](auto &r) { r.details.description = "Both"; }, false},
        {"tags in another order", [](auto &e) { std::swap(e.tagIds[0], e.tagIds[1]); },
         [](auto &r) { r.details.tagIds = {"b"}; }, false},
        {"a task of a project that went",
         [](auto &e) {
             e.projectId = "q";
             e.taskId.reset();
         },
         [](auto &r) { r.details.taskId = "u"; }, true},
        {"parts", [](auto &e) { e.shares.clear(); }, [](auto &r) { r.details.shares[0].percent = 30; }, true},
        {"an end before the start", [](auto &e) { e.start += std::chrono::minutes{50}; },
         [](auto &r) { *r.stop -= std::chrono::minutes{20}; }, true},
    };
    for (const Case &one : cases) {
        TimeEntryResponse head = base;
        one.theirs(head);
        EXPECT_EQ(putOn(edit(one.mine), head).isContested, one.isContested) << one.name;
    }
    TimeEntryResponse head = base;
    const EntryChange removal{EntryChange::Delete{"e", "w", "1"}};
    EXPECT_FALSE(putOn(removal, head).isContested);
    head.description = "Theirs";
    EXPECT_TRUE(putOn(removal, head).isContested) << "what was never seen is not deleted in silence";
    EXPECT_FALSE(putOnTop(removal, base, head, head).isContested);
    // Another timer's start was shown to end it, and did not.
    TimeEntryResponse running = base;
    running.stop.reset();
    EXPECT_FALSE(putOn(removal, running).isContested);
    EXPECT_FALSE(putOn(edit([](auto &r) { *r.stop += std::chrono::minutes{1}; }), running).isContested);
    const EntryChange words = edit([](auto &r) { r.details.description = "Mine"; });
    EXPECT_TRUE(putOn(words, head).isContested);
    EXPECT_FALSE(putOnTop(words, base, head, head).isContested) << "the user knew of it before";
}

TEST_F(EntryMergeTest, MakesAChangeAnewOverWhatStandsAgainstIt)
{
    TimeEntryResponse current = base;
    current.version = "9";
    current.description = "Theirs";
    const EntryChange mine = edit([](EntryRequest &request) { request.details.isBillable = true; });
    const EntryChange anew = madeAnew(mine, base, current);
    EXPECT_EQ(anew.version(), "9");
    EXPECT_EQ(applied(anew, current)->description, "Theirs");
    EXPECT_TRUE(applied(anew, current)->isBillable);
    EXPECT_EQ(applied(madeAnew(mine, {}, current), current)->description, "Review")
        << "without knowing what changed, mine is the whole of it";

    const EntryChange stop{EntryChange::Stop{base.start + std::chrono::minutes{7}, "e", "w", "1"}};
    const EntryChange end = madeAnew(stop, base, current);
    ASSERT_TRUE(std::holds_alternative<EntryChange::Update>(end.action)) << "nobody stops an entry twice";
    EXPECT_EQ(applied(end, current)->stop, base.start + std::chrono::minutes{7});
    current.stop.reset();
    EXPECT_EQ(madeAnew(stop, base, current), stop.withVersion("9"));
}

} // namespace
} // namespace orvane
