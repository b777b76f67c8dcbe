// SPDX-License-Identifier: GPL-3.0-or-later
// The tracker as a signed-in account has it, over the real server on this computer.
#include "Account/Account.h"
#include "Catalog/EntryConversions.h"
#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "Time/AppClock.h"
#include "support/AccountStack.h"
#include "support/Await.h"
#include "support/CommandRun.h"
#include "support/MidweekClock.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace orvane::testing;
using std::chrono::minutes;

class TrackerTest : public ::testing::Test {
    MidweekClock midweek;

protected:
    std::unique_ptr<Account> open(bool startsServer = true)
    {
        auto account = await(openAccount(installation, startsServer));
        if (!account) {
            ADD_FAILURE() << account.error().message;
            return nullptr;
        }
        return std::move(*account);
    }

    void close(std::unique_ptr<Account> account) { await(account->close()); }

    static EntryDetails details(const std::string &description)
    {
        EntryDetails details;
        details.description = description;
        return details;
    }

    static SplitPart share(std::int64_t percent)
    {
        SplitPart part;
        part.percent = percent;
        return part;
    }

    /// What the server holds of this week, straight from it.
    static std::vector<TimeEntryResponse> held(Account &account)
    {
        const Instant now = AppClock::now();
        auto entries = await(account.client().listTimeEntries(
            account.tracker().workspace().id, now - std::chrono::days{8}, now + std::chrono::days{8}));
        EXPECT_TRUE(entries);
        return entries ? std::move(*entries) : std::vector<TimeEntryResponse>{};
    }

    TestInstallation folder;
    Installation installation{folder.folder()};
};

TEST_F(TrackerTest, SendsARequestOfItsOwnWithTheServersProof)
{
    // As who opens a connection of another kind has to.
    const auto account = open();
    ASSERT_TRUE(account);
    HttpRequest request;
    request.path = "/api/me";
    const auto token = await(account->access().session()->validAccessToken());
    ASSERT_TRUE(token);
    request.headers.set("Authorization", "Bearer " + *token);
    NetworkThread network;
    const auto send = [&](const HttpRequest &one, const std::string &address) {
        return await(network.run(
            [&network, one, address] { return network.transport()->send(one, address, nullptr); }));
    };
    const auto bare = send(request, account->server());
    ASSERT_TRUE(bare);
    EXPECT_EQ(bare->status, 401) << "the token is bound to the proof";
    const auto proven = await(account->access().proven(request));
    ASSERT_TRUE(proven);
    EXPECT_EQ(proven->address, account->server());
    const auto answer = send(proven->request, proven->address);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200);
    await(account->close());
}

TEST_F(TrackerTest, TracksAcrossARestartWithoutTheServer)
{
    auto account = open();
    ASSERT_TRUE(account);
    EXPECT_TRUE(account->isAutomatic());
    await(account->tracker().load());
    ASSERT_EQ(account->tracker().state(), LoadState::loaded);
    const SaveResult started =
        await(account->tracker().start(details("Write the README"), AppClock::now() - minutes{30}));
    EXPECT_EQ(started.outcome, SaveOutcome::saved) << started.message;
    ASSERT_TRUE(account->tracker().running());
    const std::string id = account->tracker().running()->id;
    close(std::move(account));

    ASSERT_TRUE(folder.killServer());
    account = open(false);
    ASSERT_TRUE(account);
    EXPECT_FALSE(account->isReachable());
    EXPECT_TRUE(await(account->tracker().loadSnapshot()));
    ASSERT_TRUE(account->tracker().running()) << "the snapshot shows what the last run knew";
    EXPECT_EQ(account->tracker().running()->id, id);
    const SaveResult next =
        await(account->tracker().start(details("Offline"), AppClock::now() - minutes{10}));
    EXPECT_EQ(next.outcome, SaveOutcome::waiting) << next.message;
    const SaveResult stopped = await(account->tracker().stop(AppClock::now() - minutes{5}));
    EXPECT_EQ(stopped.outcome, SaveOutcome::stopped);
    EXPECT_TRUE(stopped.isQueued);
    EXPECT_FALSE(account->tracker().running());
    await(account->tracker().load());
    EXPECT_EQ(account->tracker().state(), LoadState::failed);
    EXPECT_EQ(account->tracker().entries().size(), 2U) << "a failed load takes nothing away";
    EXPECT_FALSE(await(account->tracker().loadWeekBefore()));
    EXPECT_EQ(account->tracker().weeksLoaded(), 0);
    const std::vector<TimeEntryResponse> shown = account->tracker().entries();
    close(std::move(account));

    account = open();
    ASSERT_TRUE(account);
    EXPECT_EQ(account->outbox().pending().size(), 3U);
    await(account->outbox().flush());
    await(account->tracker().load());
    EXPECT_TRUE(account->outbox().pending().empty());
    std::vector<TimeEntryResponse> now = account->tracker().entries();
    EXPECT_EQ(now.size(), held(*account).size());
    ASSERT_EQ(now.size(), shown.size());
    for (std::size_t i = 0; i < now.size(); ++i) {
        now[i].version = shown[i].version;
        EXPECT_EQ(now[i], shown[i]) << "what was shown offline is what the server holds";
    }
    close(std::move(account));
}

TEST_F(TrackerTest, AsksForRequiredDetailsBeforeAnythingIsSent)
{
    auto account = open();
    ASSERT_TRUE(account);
    Tracker &tracker = account->tracker();
    await(tracker.load());
    auto settings = await(account->client().getWorkspaceSettings(tracker.workspace().id));
    ASSERT_TRUE(settings);
    WorkspaceSettingsRequest stricter;
    stricter.name = settings->name;
    stricter.currency = settings->currency;
    stricter.requireProject = true;
    const auto updated = await(account->client().updateWorkspaceSettings(tracker.workspace().id, stricter));
    ASSERT_TRUE(updated) << describe(updated.error());
    await(tracker.load());

    ASSERT_EQ(await(tracker.start(details("no project"), AppClock::now() - minutes{20})).outcome,
              SaveOutcome::saved);
    const SaveResult stopped = await(tracker.stop(AppClock::now()));
    EXPECT_EQ(stopped.outcome, SaveOutcome::needsDetails);
    EXPECT_EQ(stopped.message, "Add the details this workspace requires to stop the timer.");
    EXPECT_EQ(await(tracker.start(details("another"), AppClock::now())).outcome, SaveOutcome::needsDetails);
    EntryRequest finished{details("finished"), AppClock::now() - minutes{90}, AppClock::now() - minutes{60},
                          false};
    EXPECT_EQ(await(tracker.create(finished)).outcome, SaveOutcome::needsDetails);
    EXPECT_TRUE(account->outbox().pending().empty());
    EXPECT_EQ(held(*account).size(), 1U);
    close(std::move(account));
}

TEST_F(TrackerTest, StartingEndsWhatRunsAndContinueTakesUpTheLastEntry)
{
    auto account = open();
    ASSERT_TRUE(account);
    Tracker &tracker = account->tracker();
    await(tracker.load());
    const Instant now = AppClock::now();
    const SaveResult nothing = await(tracker.continueLast(now));
    EXPECT_EQ(nothing.outcome, SaveOutcome::failed);
    EXPECT_EQ(nothing.message, "There is no entry to continue yet.");
    EXPECT_EQ(await(tracker.stop(now)).outcome, SaveOutcome::failed);

    EntryDetails first = details("first");
    first.isBillable = true;
    ASSERT_EQ(await(tracker.start(first, now - minutes{60})).outcome, SaveOutcome::saved);
    EXPECT_EQ(await(tracker.start(details("too early"), now - minutes{90})).outcome, SaveOutcome::rejected)
        << "the running entry cannot end before it began";
    ASSERT_EQ(await(tracker.start(details("second"), now - minutes{30})).outcome, SaveOutcome::saved);
    std::vector<TimeEntryResponse> entries = held(*account);
    ASSERT_EQ(entries.size(), 2U);
    std::ranges::sort(entries, {}, &TimeEntryResponse::start);
    EXPECT_EQ(entries[0].stop, entries[1].start);
    EXPECT_FALSE(entries[1].stop);

    ASSERT_EQ(await(tracker.stop(now - minutes{20})).outcome, SaveOutcome::stopped);
    ASSERT_EQ(await(tracker.remove(entries[1].id)).outcome, SaveOutcome::saved);
    ASSERT_EQ(await(tracker.continueLast(now)).outcome, SaveOutcome::saved);
    EXPECT_EQ(tracker.running()->description, "first");
    EXPECT_TRUE(tracker.running()->isBillable);
    EXPECT_EQ(held(*account).size(), 2U);
    close(std::move(account));
}

TEST_F(TrackerTest, RefusesWhatCannotBeAndGroupsByDay)
{
    auto account = open();
    ASSERT_TRUE(account);
    Tracker &tracker = account->tracker();
    await(tracker.load());
    const DayKey today = tracker.time().today();
    const Instant noon = tracker.time().date(today, 12, 0);
    EntryRequest backwards{details("backwards"), noon, noon - minutes{1}, false};
    EXPECT_EQ(await(tracker.create(backwards)).outcome, SaveOutcome::rejected);
    EXPECT_EQ(await(tracker.update("unknown", backwards)).outcome, SaveOutcome::failed);
    EXPECT_EQ(await(tracker.remove("unknown")).outcome, SaveOutcome::failed);

    const DayKey yesterday = today.adding(-1);
    const Instant late = tracker.time().date(yesterday, 23, 50);
    ASSERT_EQ(await(tracker.create({details("across midnight"), late, late + minutes{20}, false})).outcome,
              SaveOutcome::saved);
    ASSERT_EQ(await(tracker.create({details("before it"), late - minutes{60}, late, false})).outcome,
              SaveOutcome::saved);
    ASSERT_TRUE(await(tracker.loadDays(yesterday.adding(-1), 3)));
    const std::vector<DayGroup> days = tracker.days(yesterday.adding(-1), 3);
    ASSERT_EQ(days.size(), 3U);
    EXPECT_TRUE(days[0].entries.empty());
    ASSERT_EQ(days[1].entries.size(), 2U) << "an entry belongs to the day it starts on";
    EXPECT_EQ(days[1].entries[0].description, "before it");
    EXPECT_EQ(days[2].day, today);

    const SaveResult halves = await(tracker.split(days[1].entries[0].id, {share(60), share(30)}));
    EXPECT_EQ(halves.outcome, SaveOutcome::rejected) << "the shares of an entry are the whole of it";
    const SaveResult split = await(tracker.split(days[1].entries[0].id, {share(60), share(40)}));
    EXPECT_EQ(split.outcome, SaveOutcome::saved) << split.message;
    EXPECT_EQ(split.entry->shares.size(), 2U);
    close(std::move(account));
}

TEST_F(TrackerTest, ContinuesASplitEntryWithItsPartsDescriptions)
{
    auto account = open();
    ASSERT_TRUE(account);
    Tracker &tracker = account->tracker();
    await(tracker.load());
    const Instant now = AppClock::now();
    const SaveResult made =
        await(tracker.create({details("whole"), now - minutes{60}, now - minutes{30}, false}));
    ASSERT_EQ(made.outcome, SaveOutcome::saved) << made.message;
    std::vector<SplitPart> parts{share(60), share(40)};
    parts[0].description = "the one";
    parts[1].description = "the other";
    ASSERT_EQ(await(tracker.split(made.entry->id, parts)).outcome, SaveOutcome::saved);

    const SaveResult continued = await(tracker.continueLast(now));
    ASSERT_EQ(continued.outcome, SaveOutcome::saved) << continued.message;
    EXPECT_FALSE(continued.entry->stop);
    EXPECT_EQ(continued.entry->start, now);
    EXPECT_EQ(continued.entry->shares, tracker.entry(made.entry->id)->shares);
    EXPECT_EQ(continued.entry->shares[1].description, "the other");
    close(std::move(account));
}

TEST_F(TrackerTest, SplitsAnEntryAtATime)
{
    auto account = open();
    ASSERT_TRUE(account);
    Tracker &tracker = account->tracker();
    await(tracker.load());
    const Instant now = millisecondsFloor(AppClock::now());
    const auto made = await(tracker.create({details("whole"), now - minutes{90}, now - minutes{30}, false}));
    const std::string id = made.entry->id;
    for (const minutes outside : {minutes{95}, minutes{90}, minutes{30}, minutes{20}}) {
        const SaveResult refused = await(tracker.splitAt(id, now - outside, details("rest")));
        EXPECT_EQ(refused.outcome, SaveOutcome::rejected);
        EXPECT_EQ(refused.message, "An entry can only be split at a time within it.");
    }
    EntryDetails rest = details("rest");
    rest.shares = {share(30), share(70)};
    rest.shares[0].description = "of its own";
    const SaveResult split = await(tracker.splitAt(id, now - minutes{50}, rest));
    ASSERT_EQ(split.outcome, SaveOutcome::saved) << split.message;
    EXPECT_EQ(split.turns.size(), 2U);
    ASSERT_TRUE(await(tracker.start(details("runs"), now - minutes{20})).entry);
    const std::string first = tracker.running()->id;
    EXPECT_EQ(await(tracker.splitAt(first, now + minutes{1}, details("runs on"))).outcome,
              SaveOutcome::rejected);
    ASSERT_EQ(await(tracker.splitAt(first, now - minutes{5}, details("runs on"))).outcome,
              SaveOutcome::saved);
    EXPECT_EQ(tracker.running()->description, "runs on");

    std::vector<TimeEntryResponse> entries = held(*account);
    std::ranges::sort(entries, {}, &TimeEntryResponse::start);
    ASSERT_EQ(entries.size(), 4U);
    EXPECT_EQ(entries[0].id, id);
    EXPECT_EQ(entries[0].description, "whole");
    EXPECT_EQ(entries[0].stop, now - minutes{50});
    EXPECT_EQ(entries[1].start, now - minutes{50});
    EXPECT_EQ(entries[1].stop, now - minutes{30});
    EXPECT_EQ(entries[1].shares[0].description, "of its own");
    EXPECT_EQ(entries[2].id, first);
    EXPECT_EQ(entries[2].stop, now - minutes{5});
    EXPECT_EQ(entries[3].start, now - minutes{5});
    EXPECT_FALSE(entries[3].stop);
    close(std::move(account));
}

TEST_F(TrackerTest, ChangesSeveralEntriesOrNone)
{
    auto account = open();
    ASSERT_TRUE(account);
    Tracker &tracker = account->tracker();
    await(tracker.load());
    const Instant now = millisecondsFloor(AppClock::now());
    std::vector<std::pair<std::string, EntryRequest>> requests;
    for (const minutes ago : {minutes{60}, minutes{40}, minutes{20}}) {
        EntryRequest request{details("one of them"), now - ago, now - ago + minutes{15}, false};
        const SaveResult made = await(tracker.create(request));
        request.details.isBillable = true;
        requests.emplace_back(made.entry->id, request);
    }
    const std::vector<TimeEntryResponse> before = held(*account);
    auto backwards = requests;
    backwards.back().second.stop = now - minutes{30};
    EXPECT_EQ(await(tracker.updateAll(backwards)).outcome, SaveOutcome::rejected);
    EXPECT_EQ(await(tracker.removeAll({requests[0].first, "unknown"})).outcome, SaveOutcome::failed);
    EXPECT_EQ(await(tracker.removeAll({})).outcome, SaveOutcome::failed);
    EXPECT_EQ(held(*account), before);

    const SaveResult changed = await(tracker.updateAll(requests));
    EXPECT_EQ(changed.outcome, SaveOutcome::saved) << changed.message;
    EXPECT_FALSE(changed.isQueued);
    EXPECT_EQ(changed.turns.size(), 3U);
    for (const TimeEntryResponse &entry : held(*account))
        EXPECT_TRUE(entry.isBillable);
    const SaveResult removed = await(tracker.removeAll({requests[0].first, requests[2].first}));
    EXPECT_EQ(removed.outcome, SaveOutcome::saved) << removed.message;
    ASSERT_EQ(held(*account).size(), 1U);
    EXPECT_EQ(held(*account).front().id, requests[1].first);
    close(std::move(account));
}

TEST_F(TrackerTest, SaysSoWhenAnotherDeviceChangedTheEntry)
{
    auto account = open();
    ASSERT_TRUE(account);
    Tracker &tracker = account->tracker();
    await(tracker.load());
    const Instant now = AppClock::now();
    const SaveResult made =
        await(tracker.create({details("mine"), now - minutes{60}, now - minutes{30}, false}));
    ASSERT_EQ(made.outcome, SaveOutcome::saved);
    EntryRequest theirs = entryRequest(*made.entry);
    theirs.details.description = "theirs";
    ASSERT_TRUE(await(account->client().updateTimeEntry(tracker.workspace().id, made.entry->id,
                                                        timeEntryRequest(theirs), made.entry->version)));
    EntryRequest mine = entryRequest(*made.entry);
    mine.details.description = "mine again";
    const SaveResult changed = await(tracker.update(made.entry->id, mine));
    EXPECT_EQ(changed.outcome, SaveOutcome::waiting);
    EXPECT_FALSE(changed.message.empty());
    EXPECT_EQ(tracker.entry(made.entry->id)->description, "mine again")
        << "the user's change shows until it is settled";
    ASSERT_EQ(account->outbox().conflicts().size(), 1U);
    ASSERT_TRUE(*await(account->outbox().keepTheirs(account->outbox().conflicts().front().seq)));
    EXPECT_EQ(tracker.entry(made.entry->id)->description, "theirs");
    close(std::move(account));
}

} // namespace
} // namespace orvane
