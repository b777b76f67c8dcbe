// SPDX-License-Identifier: GPL-3.0-or-later
// The outbox over the real server, with the proxy making the trouble. Each test ends by comparing what the
// server holds with what the changes asked for.
#include "Outbox/OutboxFixture.h"

#include <random>

namespace orvane {
namespace {

using namespace orvane::testing;

TEST_F(OutboxTest, DeliversEveryChangeOnceAndInOrderThroughAllTroubles)
{
    auto [outbox, retry] = stack.openOutbox();
    int conflicts = 0;
    outbox->onConflict = [&](const Outbox::Pending &, const TimeEntryResponse &) { ++conflicts; };
    int refusals = 0;
    outbox->onRejected = [&](const Outbox::Pending &row, const CallError &error, bool) {
        ++refusals;
        ADD_FAILURE() << row.change.action.index() << ": " << describe(error);
    };

    std::vector<EntryChange> changes;
    std::mt19937 random(7);
    std::vector<std::string> ids;
    for (int i = 0; i < 80; ++i) {
        const auto pick = random() % 10;
        if (ids.empty() || pick < 4) {
            ids.push_back(newId());
            changes.push_back(create(ids.back(), "created " + std::to_string(i), i * 15));
        } else if (pick < 9) {
            const std::string &id = ids[random() % ids.size()];
            changes.push_back(update(id, "updated " + std::to_string(i), i * 15));
        } else {
            const auto at = ids.begin() + static_cast<std::ptrdiff_t>(random() % ids.size());
            changes.push_back(remove(*at));
            ids.erase(at);
        }
    }
    stack.proxy().setDown(true);
    queue(*outbox, changes);
    EXPECT_EQ(outbox->pending().size(), changes.size());
    EXPECT_TRUE(outbox->isOffline());
    stack.proxy().setDown(false);
    stack.proxy().setPlan(plans::seeded(11, 0.35, plans::passingTroubles()));
    drain(*outbox);
    EXPECT_GT(stack.proxy().faults(), 10) << "the proxy made no trouble worth the name";
    EXPECT_EQ(conflicts, 0) << "a conflict was made up";
    EXPECT_EQ(refusals, 0);
    expectServerHolds(changes);
}

TEST_F(OutboxTest, ALostAnswerIsNoConflict)
{
    auto [outbox, retry] = stack.openOutbox();
    const std::string id = newId();
    ASSERT_TRUE(await(outbox->submit(create(id, "first", 0))));
    const std::string version = stack.serverEntries().front().version;
    const std::vector<EntryChange> later{update(id, "second", 0, version), update(id, "third", 5, version)};
    stack.proxy().setPlan(plans::inOrder({Fault::dropReply(), Fault::dropReply()}));
    queue(*outbox, later);
    drain(*outbox);
    EXPECT_TRUE(outbox->conflicts().empty());
    EXPECT_EQ(stack.serverEntries().front().description, "third");

    stack.proxy().setPlan(plans::inOrder({Fault::dropReply()}));
    queue(*outbox, {remove(id)});
    drain(*outbox);
    EXPECT_TRUE(stack.serverEntries().empty());
}

TEST_F(OutboxTest, AConflictWaitsForTheUserAndOnlyItsOwnEntryWaitsWithIt)
{
    auto [outbox, retry] = stack.openOutbox();
    const std::string id = newId();
    ASSERT_TRUE(await(outbox->submit(create(id, "mine", 0))));
    const TimeEntryResponse before = stack.serverEntries().front();
    ASSERT_TRUE(await(stack.otherDevice().updateTimeEntry(
        stack.workspaceId(), id, timeEntryRequest(requestAt("theirs", 0, 10)), before.version)));

    const std::string other = newId();
    const auto outcomes = await(outbox->submit(std::vector{update(id, "mine again", 0, before.version),
                                                           update(id, "and once more", 0, before.version),
                                                           create(other, "other", 60)}));
    ASSERT_TRUE(outcomes);
    EXPECT_TRUE(std::holds_alternative<Outbox::Queued>((*outcomes)[0]));
    EXPECT_TRUE(std::holds_alternative<Outbox::Queued>((*outcomes)[1]))
        << "a later change of that entry waits behind it";
    EXPECT_TRUE(std::holds_alternative<Outbox::Sent>((*outcomes)[2]));
    EXPECT_FALSE(outbox->isOffline());
    ASSERT_EQ(outbox->conflicts().size(), 1U);
    EXPECT_EQ(outbox->conflicts().front().conflict->description, "theirs");
    EXPECT_EQ(stack.serverEntries().front().description, "theirs") << "nothing is overwritten in silence";

    ASSERT_TRUE(*await(outbox->keepMine(outbox->conflicts().front().seq)));
    EXPECT_TRUE(outbox->pending().empty());
    EXPECT_EQ(stack.serverEntries().front().description, "and once more");
}

TEST_F(OutboxTest, KeepingTheirsDropsTheChange)
{
    auto [outbox, retry] = stack.openOutbox();
    const std::string id = newId();
    ASSERT_TRUE(await(outbox->submit(create(id, "mine", 0))));
    const std::string version = stack.serverEntries().front().version;
    ASSERT_TRUE(await(stack.otherDevice().updateTimeEntry(
        stack.workspaceId(), id, timeEntryRequest(requestAt("theirs", 0, 10)), version)));
    queue(*outbox, {update(id, "mine again", 0, version)});
    ASSERT_EQ(outbox->conflicts().size(), 1U);
    ASSERT_TRUE(*await(outbox->keepTheirs(outbox->conflicts().front().seq)));
    EXPECT_FALSE(*await(outbox->keepTheirs(9999)));
    EXPECT_TRUE(outbox->pending().empty());
    EXPECT_EQ(stack.serverEntries().front().description, "theirs");
}

TEST_F(OutboxTest, ARefusalLeavesTheQueueAndIsShownOnceEvenAfterARestart)
{
    const std::string unknown = newId();
    {
        auto [outbox, retry] = stack.openOutbox();
        const auto outcome = await(outbox->submit(update(unknown, "nowhere", 0)));
        ASSERT_TRUE(outcome);
        ASSERT_TRUE(std::holds_alternative<Outbox::Rejected>(*outcome));
        EXPECT_TRUE(await(outbox->unshownRefusals()).empty()) << "its caller was told";
        stack.proxy().setDown(true);
        queue(*outbox, {update(unknown, "typed while offline", 0), create(newId(), "behind it", 30),
                        create(newId(), "ends before it begins", 60, -5)});
        await(outbox->close());
    }
    stack.proxy().setDown(false);
    {
        auto [outbox, retry] = stack.openOutbox();
        EXPECT_EQ(outbox->pending().size(), 3U);
        await(outbox->flush());
        EXPECT_TRUE(outbox->pending().empty());
        EXPECT_EQ(stack.serverEntries().size(), 1U) << "a refusal never blocks what is behind it";
    }
    auto [outbox, retry] = stack.openOutbox();
    const auto refusals = await(outbox->unshownRefusals());
    ASSERT_EQ(refusals.size(), 2U);
    EXPECT_EQ(refusals.front().change, update(unknown, "typed while offline", 0))
        << "its whole content is kept";
    EXPECT_EQ(refusals.front().status, 404);
    EXPECT_EQ(refusals.back().message, "End: The end must not lie before the start.")
        << "the field is named to who was not there";
    ASSERT_TRUE(await(outbox->markShown(refusals)));
    EXPECT_TRUE(await(outbox->unshownRefusals()).empty());
}

TEST_F(OutboxTest, RetriesMoreAndMoreSlowlyUntilTheServerIsBack)
{
    auto [outbox, retry] = stack.openOutbox();
    stack.proxy().setDown(true);
    const std::string id = newId();
    queue(*outbox, {create(id, "offline", 0)});
    for (int i = 0; i < 6; ++i) {
        ASSERT_TRUE(retry->isScheduled());
        retry->advance(std::chrono::minutes{1});
        ASSERT_TRUE(eventually([&] { return !outbox->isFlushing(); }));
    }
    using std::chrono::seconds;
    const std::vector<std::chrono::milliseconds> wanted{seconds{2},  seconds{5},  seconds{15}, seconds{30},
                                                        seconds{60}, seconds{60}, seconds{60}};
    EXPECT_EQ(retry->delays, wanted);
    stack.proxy().setDown(false);
    retry->advance(std::chrono::minutes{1});
    ASSERT_TRUE(eventually([&] { return outbox->pending().empty(); }));
    EXPECT_FALSE(outbox->isOffline());
    EXPECT_FALSE(retry->isScheduled());
    EXPECT_EQ(stack.serverEntries().size(), 1U);
}

TEST_F(OutboxTest, TwoProcessesShareOneQueueWithoutSendingTwiceOrMakingUpAConflict)
{
    auto first = stack.openOutbox();
    auto second = stack.openOutbox();
    const std::string id = newId();
    ASSERT_TRUE(await(first.outbox->submit(create(id, "created", 0))));
    const std::string version = stack.serverEntries().front().version;

    // Both know the same version of the entry; both change it, several times, at once.
    std::vector<Task<Result<Outbox::Outcome, StoreError>>> submits;
    for (int i = 0; i < 10; ++i) {
        submits.push_back(first.outbox->submit(update(id, "first " + std::to_string(i), 0, version)));
        submits.push_back(second.outbox->submit(update(id, "second " + std::to_string(i), 0, version)));
        submits.push_back(second.outbox->submit(create(newId(), "another", 60 + i * 15)));
    }
    for (auto &submit : submits) {
        const auto outcome = await(std::move(submit));
        ASSERT_TRUE(outcome);
        EXPECT_TRUE(std::holds_alternative<Outbox::Sent>(*outcome)) << outcome->index();
    }
    EXPECT_TRUE(first.outbox->conflicts().empty());
    EXPECT_TRUE(second.outbox->conflicts().empty());
    await(first.outbox->flush());
    await(second.outbox->flush());
    EXPECT_TRUE(first.outbox->pending().empty());
    EXPECT_TRUE(second.outbox->pending().empty());
    EXPECT_EQ(stack.serverEntries().size(), 11U);
}

TEST_F(OutboxTest, SendsNothingToAnotherAccountThanTheStores)
{
    bool isOurs = false;
    const auto answer = [](bool isAllowed) -> Task<Outbox::SendVerdict> {
        co_return isAllowed ? Outbox::SendVerdict::allowed : Outbox::SendVerdict::notOurs;
    };
    auto [outbox, retry] = stack.openOutbox([&] { return answer(isOurs); });
    queue(*outbox, {create(newId(), "private", 0)});
    EXPECT_TRUE(outbox->isHeldBack());
    EXPECT_EQ(outbox->pending().size(), 1U);
    EXPECT_TRUE(stack.serverEntries().empty());
    isOurs = true;
    await(outbox->flush());
    EXPECT_FALSE(outbox->isHeldBack());
    EXPECT_EQ(stack.serverEntries().size(), 1U);
}

} // namespace
} // namespace orvane
