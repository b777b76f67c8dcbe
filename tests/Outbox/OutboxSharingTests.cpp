// SPDX-License-Identifier: GPL-3.0-or-later
// Two processes on one store, two devices on one entry, and answers that were lost on the way.
#include "Outbox/OutboxFixture.h"

#include <QCoro/QCoroSignal>

#include <set>

namespace orvane {
namespace {

using namespace orvane::testing;

bool isSent(const Result<Outbox::Outcome, StoreError> &outcome)
{
    return outcome && std::holds_alternative<Outbox::Sent>(*outcome);
}

class OutboxSharingTest : public OutboxTest {
protected:
    OutboxSharingTest()
    {
        EXPECT_TRUE(isSent(await(one.outbox->submit(create(id, "made", 0)))));
        seen = stack.serverEntries().front();
    }

    /// What a user makes of the entry as it stood in `seen`.
    Submission edit(const std::function<void(EntryRequest &)> &change) const
    {
        EntryRequest request = entryRequest(seen);
        change(request);
        return {EntryChange{EntryChange::Update{std::move(request), seen.id, seen.workspaceId, seen.version}},
                seen};
    }
    Submission stop(const TimeEntryResponse &running, int minutes) const
    {
        return {EntryChange{EntryChange::Stop{running.start + std::chrono::minutes{minutes}, running.id,
                                              running.workspaceId, running.version}},
                running};
    }
    static Task<Result<Outbox::Outcome, StoreError>> submit(Outbox *outbox, Submission submission)
    {
        std::vector<Submission> submissions;
        submissions.push_back(std::move(submission));
        auto outcomes = co_await outbox->submit(std::move(submissions));
        if (!outcomes)
            co_return failure(outcomes.error());
        co_return std::move(outcomes->front());
    }
    TimeEntryResponse startTimer()
    {
        const std::string timer = newId();
        EXPECT_TRUE(isSent(await(one.outbox->submit(create(timer, "timer", 60, {})))));
        return *await(stack.client().getTimeEntry(stack.workspaceId(), timer));
    }
    void changeElsewhere(const TimeEntryResponse &entry, const std::string &description)
    {
        EntryRequest request = entryRequest(entry);
        request.details.description = description;
        ASSERT_TRUE(await(stack.otherDevice().updateTimeEntry(stack.workspaceId(), entry.id,
                                                              timeEntryRequest(request), entry.version)));
    }
    TimeEntryResponse held(const std::string &entryId)
    {
        return *await(stack.otherDevice().getTimeEntry(stack.workspaceId(), entryId));
    }

    ClientStack::Box one = stack.openOutbox();
    ClientStack::Box two = stack.openOutbox();
    std::string id = newId();
    TimeEntryResponse seen;
};

TEST_F(OutboxSharingTest, EditsOfDifferentFieldsBothStay)
{
    // At once, one after the other, and queued without the server.
    auto words = submit(one.outbox.get(), edit([](auto &mine) { mine.details.description = "words"; }));
    auto bill = submit(two.outbox.get(), edit([](auto &mine) { mine.details.isBillable = true; }));
    EXPECT_TRUE(isSent(await(std::move(words))));
    EXPECT_TRUE(isSent(await(std::move(bill))));
    stack.proxy().setDown(true);
    await(submit(one.outbox.get(), edit([](auto &mine) { mine.start -= std::chrono::minutes{5}; })));
    await(submit(two.outbox.get(), edit([](auto &mine) { *mine.stop += std::chrono::minutes{5}; })));
    stack.proxy().setDown(false);
    await(one.outbox->flush());
    EXPECT_TRUE(one.outbox->pending().empty());
    const TimeEntryResponse entry = held(id);
    EXPECT_EQ(entry.description, "words");
    EXPECT_TRUE(entry.isBillable);
    EXPECT_EQ(entry.start, seen.start - std::chrono::minutes{5});
    EXPECT_EQ(entry.stop, *seen.stop + std::chrono::minutes{5});
}

TEST_F(OutboxSharingTest, TheSameFieldTwiceIsForTheUserToSettle)
{
    stack.proxy().setDown(true);
    await(submit(one.outbox.get(), edit([](auto &mine) { mine.details.description = "one"; })));
    await(submit(two.outbox.get(), edit([](auto &mine) { mine.details.description = "two"; })));
    stack.proxy().setDown(false);
    await(two.outbox->flush());
    ASSERT_EQ(two.outbox->conflicts().size(), 1U);
    EXPECT_EQ(held(id).description, "one");
    ASSERT_TRUE(*await(two.outbox->keepMine(two.outbox->conflicts().front().seq)));
    EXPECT_EQ(held(id).description, "two");
    EXPECT_TRUE(two.outbox->pending().empty());
    // Removing what another process has changed unseen asks as well.
    EXPECT_FALSE(isSent(
        await(submit(one.outbox.get(),
                     {EntryChange{EntryChange::Delete{seen.id, seen.workspaceId, seen.version}}, seen}))));
    EXPECT_EQ(one.outbox->conflicts().size(), 1U);
}

TEST_F(OutboxSharingTest, AChangeOverARemovalThatItsUserDidNotSeeAsks)
{
    // This computer's other program moves the start, then removes the entry over what another device changed.
    EXPECT_TRUE(isSent(
        await(submit(two.outbox.get(), edit([](auto &mine) { mine.start -= std::chrono::minutes{5}; })))));
    const TimeEntryResponse moved = held(id);
    changeElsewhere(moved, "elsewhere");
    const Submission removal{EntryChange{EntryChange::Delete{id, moved.workspaceId, moved.version}}, moved};
    EXPECT_FALSE(isSent(await(submit(two.outbox.get(), removal))));
    ASSERT_EQ(two.outbox->conflicts().size(), 1U);
    // This one knows of none of it.
    EXPECT_FALSE(isSent(
        await(submit(one.outbox.get(), edit([](auto &mine) { mine.start -= std::chrono::minutes{9}; })))));
    ASSERT_TRUE(*await(two.outbox->keepTheirs(two.outbox->conflicts().front().seq)));
    await(one.outbox->flush());
    EXPECT_EQ(held(id).start, moved.start) << "not overwritten by who never saw it";
    ASSERT_EQ(one.outbox->conflicts().size(), 1U);
    ASSERT_TRUE(*await(one.outbox->keepMine(one.outbox->conflicts().front().seq)));
    EXPECT_EQ(held(id).start, seen.start - std::chrono::minutes{9});
}

TEST_F(OutboxSharingTest, OfTwoStopsByOneHandTheFirstStands)
{
    const TimeEntryResponse running = startTimer();
    auto first = submit(one.outbox.get(), stop(running, 5));
    // It is in the store, and on its way.
    QCoro::waitFor(qCoro(one.outbox.get(), &Outbox::pendingChanged));
    auto second = submit(two.outbox.get(), stop(running, 6));
    EXPECT_TRUE(isSent(await(std::move(first))));
    const auto told = await(std::move(second));
    ASSERT_TRUE(isSent(told));
    EXPECT_EQ(std::get<Outbox::Sent>(*told).entry->stop, running.start + std::chrono::minutes{5});
    EXPECT_EQ(held(running.id).stop, running.start + std::chrono::minutes{5});
}

TEST_F(OutboxSharingTest, AStopThatStandsAgainstAnotherDevicesCanBeKept)
{
    const TimeEntryResponse running = startTimer();
    ASSERT_TRUE(await(stack.otherDevice().stopTimeEntry(
        stack.workspaceId(), running.id, {running.start + std::chrono::minutes{9}}, running.version)));
    EXPECT_FALSE(isSent(await(submit(one.outbox.get(), stop(running, 5)))));
    ASSERT_EQ(one.outbox->conflicts().size(), 1U);
    ASSERT_TRUE(*await(one.outbox->keepMine(one.outbox->conflicts().front().seq)));
    EXPECT_TRUE(one.outbox->pending().empty());
    EXPECT_EQ(held(running.id).stop, running.start + std::chrono::minutes{5});
}

TEST_F(OutboxSharingTest, WhatIsSettledDuringAPassIsSentByIt)
{
    changeElsewhere(seen, "theirs");
    EXPECT_FALSE(
        isSent(await(submit(one.outbox.get(), edit([](auto &mine) { mine.details.description = "mine"; })))));
    const std::int64_t conflict = one.outbox->conflicts().front().seq;
    std::optional<Task<Result<bool, StoreError>>> settling;
    one.outbox->onSent = [&](const Outbox::Pending &, const auto &) {
        if (!settling)
            settling = one.outbox->keepMine(conflict);
    };
    TimeEntryResponse shown = seen;
    shown.description = "mine";
    seen = shown;
    std::vector<Submission> more;
    more.push_back({create(newId(), "a", 120), {}});
    more.push_back({create(newId(), "b", 180), {}});
    more.push_back(edit([](auto &mine) { mine.details.description = "mine, later"; }));
    await(one.outbox->submit(std::move(more)));
    ASSERT_TRUE(settling);
    ASSERT_TRUE(*await(std::move(*settling)));
    EXPECT_TRUE(one.outbox->pending().empty());
    EXPECT_EQ(held(id).description, "mine, later") << "what waited behind it does not overtake it";
}

TEST_F(OutboxSharingTest, WhatWasMadeOnTopOfADroppedChangeLosesIt)
{
    changeElsewhere(seen, "theirs");
    auto words = submit(one.outbox.get(), edit([](auto &mine) { mine.details.description = "mine"; }));
    EXPECT_FALSE(isSent(await(std::move(words))));
    TimeEntryResponse shown = seen;
    shown.description = "mine";
    seen = shown;
    EXPECT_FALSE(
        isSent(await(submit(one.outbox.get(), edit([](auto &mine) { mine.details.isBillable = true; })))));
    ASSERT_TRUE(*await(one.outbox->keepTheirs(one.outbox->conflicts().front().seq)));
    EXPECT_TRUE(one.outbox->pending().empty());
    EXPECT_EQ(held(id).description, "theirs");
    EXPECT_TRUE(held(id).isBillable);
}

TEST_F(OutboxSharingTest, ASubmitIsAnsweredWheneverItComes)
{
    // The other process sends what this one knows of; this one finds that out at the end of a pass, and that
    // is when the user acts.
    for (int round = 0; round < 5; ++round) {
        stack.proxy().setDown(true);
        queue(*one.outbox, {create(newId(), "known to both", 60 * round)});
        await(two.outbox->flush());
        stack.proxy().setDown(false);
        await(one.outbox->flush());
        std::optional<Task<Result<Outbox::Outcome, StoreError>>> late;
        two.outbox->onSent = [&](const Outbox::Pending &, const auto &) {
            if (!late)
                late = two.outbox->submit(create(newId(), "late", 60 * round + 30));
        };
        await(two.outbox->flush());
        ASSERT_TRUE(late);
        EXPECT_TRUE(isSent(await(std::move(*late))));
        two.outbox->onSent = {};
    }
}

TEST_F(OutboxSharingTest, WhatWasNeverSeenAtTheServerIsNotRemovedUnseen)
{
    // Another program's creation has arrived, and a device changed it; here it is known from the queue alone.
    const std::string theirs = newId();
    EntryRequest request = requestAt("made by another program", 300, 10);
    TimeEntryResponse shown = entryResponse(request, theirs, stack.workspaceId());
    request.details.description = "changed since";
    ASSERT_TRUE(await(
        stack.otherDevice().createTimeEntry(stack.workspaceId(), createTimeEntryRequest(request, theirs))));
    EXPECT_FALSE(isSent(await(submit(
        one.outbox.get(), {EntryChange{EntryChange::Delete{theirs, shown.workspaceId, {}}}, shown, shown}))));
    EXPECT_EQ(one.outbox->conflicts().size(), 1U);
    EXPECT_EQ(held(theirs).description, "changed since");
}

TEST_F(OutboxSharingTest, ACreationTakesItsStopAlongAndEndsNobodysTimer)
{
    const std::string elsewhere = newId();
    EntryRequest theirs = requestAt("running elsewhere", 200, {});
    ASSERT_TRUE(await(
        stack.otherDevice().createTimeEntry(stack.workspaceId(), createTimeEntryRequest(theirs, elsewhere))));
    stack.proxy().setDown(true);
    const std::string mine = newId();
    const EntryChange creation = create(mine, "on the train", 100, {});
    TimeEntryResponse shown = entryResponse(*creation.request(), mine, stack.workspaceId());
    auto started = one.outbox->submit(creation);
    auto stopped = submit(one.outbox.get(), stop(shown, 20));
    await(std::move(started));
    await(std::move(stopped));
    const std::size_t before = stack.proxy().requests().size();
    stack.proxy().setDown(false);
    std::vector<std::string> told;
    one.outbox->onSent = [&](const Outbox::Pending &row, const auto &) {
        told.push_back(row.change.entryId());
    };
    await(one.outbox->flush());
    EXPECT_EQ(told, (std::vector{mine, mine})) << "both are told";
    EXPECT_EQ(stack.proxy().requests().size(), before + 1) << "in one request";
    EXPECT_EQ(held(mine).stop, shown.start + std::chrono::minutes{20});
    EXPECT_FALSE(held(elsewhere).stop) << "the other device's timer runs on";
}

TEST_F(OutboxSharingTest, ACreationThatMayHaveArrivedGoesAgainAsItWas)
{
    stack.proxy().setPlan(plans::inOrder({Fault::dropReply(), Fault::dropReply()}));
    const std::string mine = newId();
    const EntryChange creation = create(mine, "started", 100, {});
    const TimeEntryResponse shown = entryResponse(*creation.request(), mine, stack.workspaceId());
    await(one.outbox->submit(creation));
    await(submit(one.outbox.get(), stop(shown, 20)));
    for (int i = 0; i < 3; ++i)
        await(one.outbox->flush());
    std::set<std::string> forms;
    for (const SeenRequest &request : stack.proxy().requests()) {
        if (request.method == "POST" && request.body.contains(mine))
            forms.insert(request.body);
    }
    EXPECT_EQ(forms.size(), 1U) << "another server may not tell two forms apart";
    EXPECT_TRUE(one.outbox->pending().empty());
    EXPECT_EQ(held(mine).stop, shown.start + std::chrono::minutes{20});
}

TEST_F(OutboxSharingTest, AnotherProcessSendsACreationInTheFormInWhichItWasTried)
{
    const std::string mine = newId();
    const EntryChange creation = create(mine, "started", 100, {});
    std::vector<Submission> both;
    both.push_back({creation, {}});
    both.push_back(stop(entryResponse(*creation.request(), mine, stack.workspaceId()), 20));
    stack.proxy().setPlan(
        plans::inOrder({Fault::dropReply(), Fault::dropReply(), Fault::refuse(), Fault::refuse()}));
    await(two.outbox->submit(std::move(both)));
    int refusals = 0;
    one.outbox->onRejected = [&](const Outbox::Pending &, const CallError &, bool) { ++refusals; };
    // Its own row lies behind rows that it has not read.
    await(one.outbox->submit(create(newId(), "another", 200)));
    for (int i = 0; i < 4; ++i)
        await(one.outbox->flush());
    EXPECT_EQ(refusals, 0) << "the server tells a repeated creation by its contents";
    EXPECT_TRUE(one.outbox->pending().empty());
    EXPECT_EQ(held(mine).description, "started");
}

TEST_F(OutboxSharingTest, ARefusalIsKeptForWhoWaitsAfterItWasShown)
{
    const auto store = *await(LocalStore::open(stack.storePath()));
    const PendingChange refused{*await(store->enqueue(create(newId(), "x", 0))), create(newId(), "x", 0)};
    ASSERT_TRUE(await(settleRefused(store, refused, Refusal{refused.seq, refused.change, "No.", 422})));
    ASSERT_EQ(await(one.outbox->unshownRefusals()).size(), 1U);
    ASSERT_TRUE(await(one.outbox->markShown(await(one.outbox->unshownRefusals()))));
    EXPECT_TRUE(await(one.outbox->unshownRefusals()).empty());
    const auto settled = await(settledElsewhere(store, {refused}));
    ASSERT_TRUE(settled);
    ASSERT_EQ(settled->refusals.size(), 1U) << "a process that waits for it is not told that it was taken";
    EXPECT_EQ(settled->refusals.front().message, "No.");
}

TEST_F(OutboxSharingTest, WhatWasGivenUpElsewhereIsNotCarriedOn)
{
    changeElsewhere(seen, "theirs");
    EXPECT_FALSE(
        isSent(await(submit(one.outbox.get(), edit([](auto &mine) { mine.details.description = "mine"; })))));
    await(two.outbox->flush());
    ASSERT_TRUE(*await(two.outbox->keepTheirs(two.outbox->conflicts().front().seq)));
    // The first process still shows its words over the entry as the server has it.
    const TimeEntryResponse known = held(id);
    seen = known;
    seen.description = "mine";
    Submission later = edit([](auto &mine) { mine.details.isBillable = true; });
    later.server = known;
    EXPECT_TRUE(isSent(await(submit(one.outbox.get(), std::move(later)))));
    EXPECT_EQ(held(id).description, "theirs");
    EXPECT_TRUE(held(id).isBillable);
}

TEST_F(OutboxSharingTest, ALostAnswerToAStopHandsNobodyElsesVersionOn)
{
    const TimeEntryResponse running = startTimer();
    stack.proxy().setPlan(plans::inOrder({Fault::dropReply(), Fault::answer(503), Fault::answer(503)}));
    await(submit(one.outbox.get(), stop(running, 5)));
    changeElsewhere(held(running.id), "theirs");
    TimeEntryResponse shown = running;
    shown.stop = running.start + std::chrono::minutes{5};
    seen = shown;
    await(submit(one.outbox.get(), edit([](auto &mine) { mine.details.description = "mine"; })));
    for (int i = 0; i < 3; ++i)
        await(one.outbox->flush());
    EXPECT_EQ(held(running.id).description, "theirs") << "not overwritten in silence";
    EXPECT_EQ(one.outbox->conflicts().size(), 1U);
}

TEST_F(OutboxSharingTest, ALongQueueOfOneEntryMakesUpNoConflict)
{
    stack.proxy().setDown(true);
    for (int i = 0; i < 40; ++i) {
        await(submit(one.outbox.get(),
                     edit([&](auto &mine) { mine.details.description = std::to_string(i); })));
        seen.description = std::to_string(i);
    }
    stack.proxy().setDown(false);
    await(one.outbox->flush());
    EXPECT_TRUE(one.outbox->pending().empty()) << one.outbox->conflicts().size() << " conflicts";
    EXPECT_EQ(held(id).description, "39");
}

} // namespace
} // namespace orvane
