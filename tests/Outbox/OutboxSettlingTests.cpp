// SPDX-License-Identifier: GPL-3.0-or-later
// Conflicts that their user settles field by field, over the real server.
#include "Outbox/OutboxFixture.h"

namespace orvane {
namespace {

using namespace orvane::testing;

class OutboxSettlingTest : public OutboxTest {
protected:
    OutboxSettlingTest()
    {
        EXPECT_TRUE(await(box.outbox->submit(create(id, "made", 0))));
        seen = held();
    }

    TimeEntryResponse held() { return *await(stack.otherDevice().getTimeEntry(stack.workspaceId(), id)); }
    void changeElsewhere(const std::function<void(EntryRequest &)> &change)
    {
        const TimeEntryResponse entry = held();
        EntryRequest request = entryRequest(entry);
        change(request);
        ASSERT_TRUE(await(stack.otherDevice().updateTimeEntry(stack.workspaceId(), id,
                                                              timeEntryRequest(request), entry.version)));
    }
    /// What a user makes of the entry as it stood in `seen`, which then shows it.
    void edit(const std::function<void(EntryRequest &)> &change)
    {
        EntryRequest request = entryRequest(seen);
        change(request);
        std::vector<Submission> submissions;
        submissions.push_back(
            {EntryChange{EntryChange::Update{request, id, seen.workspaceId, seen.version}}, seen});
        ASSERT_TRUE(await(box.outbox->submit(std::move(submissions))));
        seen = entryResponse(request, id, seen.workspaceId, seen.version);
    }
    Outbox::ConflictSides sides()
    {
        if (box.outbox->conflicts().empty()) {
            ADD_FAILURE() << "there is no conflict";
            return {};
        }
        auto sides = await(box.outbox->sides(box.outbox->conflicts().front().seq));
        EXPECT_TRUE(sides);
        return sides ? *sides : Outbox::ConflictSides{};
    }

    ClientStack::Box box = stack.openOutbox();
    std::string id = newId();
    TimeEntryResponse seen;
};

TEST_F(OutboxSettlingTest, WhatIsPutTogetherIsWhatIsSent)
{
    changeElsewhere([](auto &theirs) {
        theirs.details.description = "theirs";
        theirs.start -= std::chrono::minutes{30};
    });
    edit([](auto &mine) {
        mine.details.description = "mine";
        mine.details.isBillable = true;
    });
    const auto sides = this->sides();
    ASSERT_NE(sides.mine.request(), nullptr);
    EXPECT_EQ(sides.mine.request()->details.description, "mine");
    EXPECT_EQ(sides.mine.request()->start, sides.theirs.start) << "what was not touched here is theirs";
    EXPECT_FALSE(sides.isStop);

    EntryRequest merged = *sides.mine.request();
    merged.details.description = "theirs";
    ASSERT_TRUE(*await(box.outbox->keepMerged(sides.seq, merged, sides.theirs)));
    EXPECT_TRUE(box.outbox->pending().empty());
    EXPECT_EQ(entryRequest(held()), merged);
    EXPECT_FALSE(*await(box.outbox->keepMerged(sides.seq, merged, sides.theirs))) << "it is settled";
    EXPECT_FALSE(await(box.outbox->sides(sides.seq)));
}

TEST_F(OutboxSettlingTest, WhatChangedWhileTheUserChoseIsAskedAboutAgain)
{
    changeElsewhere([](auto &theirs) { theirs.details.description = "theirs"; });
    edit([](auto &mine) {
        mine.details.description = "mine";
        mine.details.isBillable = true;
    });
    const auto first = sides();
    changeElsewhere([](auto &theirs) { theirs.details.description = "theirs, later"; });
    EntryRequest merged = *first.mine.request();
    merged.details.description = "theirs";
    ASSERT_TRUE(*await(box.outbox->keepMerged(first.seq, merged, first.theirs)));
    EXPECT_EQ(held().description, "theirs, later") << "nothing is overwritten in silence";
    EXPECT_FALSE(held().isBillable);

    const auto second = sides();
    EXPECT_EQ(second.theirs.description, "theirs, later");
    EXPECT_EQ(second.mine.request()->details.description, "theirs, later")
        << "the choice of theirs is no wish for what it was";
    EXPECT_TRUE(second.mine.request()->details.isBillable);
    ASSERT_TRUE(*await(box.outbox->keepMerged(second.seq, *second.mine.request(), second.theirs)));
    EXPECT_EQ(held().description, "theirs, later");
    EXPECT_TRUE(held().isBillable);
    EXPECT_TRUE(box.outbox->pending().empty());
}

TEST_F(OutboxSettlingTest, TakingAllOfTheirsSendsNothing)
{
    changeElsewhere([](auto &theirs) { theirs.details.description = "theirs"; });
    edit([](auto &mine) { mine.details.description = "mine"; });
    const auto sides = this->sides();
    const std::size_t before = stack.proxy().requests().size();
    ASSERT_TRUE(*await(box.outbox->keepMerged(sides.seq, entryRequest(sides.theirs), sides.theirs)));
    EXPECT_TRUE(box.outbox->pending().empty());
    EXPECT_EQ(stack.proxy().requests().size(), before);
    EXPECT_EQ(held().version, sides.theirs.version);
}

TEST_F(OutboxSettlingTest, WhatWaitsBehindStandsOnTheMergeOrAsks)
{
    changeElsewhere([](auto &theirs) { theirs.details.description = "theirs"; });
    edit([](auto &mine) {
        mine.details.description = "mine";
        mine.start -= std::chrono::minutes{5};
    });
    edit([](auto &mine) { mine.details.isBillable = true; });
    edit([](auto &mine) { mine.details.description = "mine, longer"; });
    const auto sides = this->sides();
    EntryRequest merged = *sides.mine.request();
    merged.details.description = "theirs";
    ASSERT_TRUE(*await(box.outbox->keepMerged(sides.seq, merged, sides.theirs)));
    EXPECT_EQ(held().description, "theirs") << "the later words were typed without having seen theirs";
    EXPECT_EQ(held().start, merged.start);
    EXPECT_TRUE(held().isBillable);
    const auto later = this->sides();
    EXPECT_EQ(later.mine.request()->details.description, "mine, longer");
    ASSERT_TRUE(*await(box.outbox->keepMerged(later.seq, *later.mine.request(), later.theirs)));
    EXPECT_EQ(held().description, "mine, longer");
    EXPECT_TRUE(box.outbox->pending().empty());
}

TEST_F(OutboxSettlingTest, WhatAnotherWindowGaveUpIsNotOfferedAsMine)
{
    changeElsewhere([](auto &theirs) { theirs.start -= std::chrono::minutes{30}; });
    edit([](auto &mine) {
        mine.details.description = "mine";
        mine.start -= std::chrono::minutes{5};
    });
    ClientStack::Box beside = stack.openOutbox();
    await(beside.outbox->flush());
    ASSERT_EQ(beside.outbox->conflicts().size(), 1U);

    // The first window takes their start while the server is away; the one beside it has not heard of that.
    stack.proxy().setDown(true);
    const auto first = this->sides();
    EntryRequest merged = *first.mine.request();
    merged.start = first.theirs.start;
    ASSERT_TRUE(*await(box.outbox->keepMerged(first.seq, merged, first.theirs)));
    const auto second = await(beside.outbox->sides(first.seq));
    ASSERT_TRUE(second);
    EXPECT_EQ(second->mine.request()->start, second->theirs.start);
    EXPECT_EQ(second->mine.request()->details.description, "mine");
}

} // namespace
} // namespace orvane
