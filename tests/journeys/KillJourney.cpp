// SPDX-License-Identifier: GPL-3.0-or-later
// Both programs are killed the hard way, again and again, while 500 changes are on their way: in the end the
// server holds what the changes asked for, each once, and nobody was told of a conflict that there was not.
#include "Account/Account.h"
#include "Client/OrvaneClient.h"
#include "Tracker/Overlay.h"
#include "support/AccountStack.h"
#include "support/Await.h"
#include "support/ClientStack.h"
#include "support/CommandRun.h"

#include <QProcess>
#include <QUuid>
#include <gtest/gtest.h>
#include <random>

namespace orvane {
namespace {

using namespace orvane::testing;

constexpr int changeCount = 500;

class KillJourney : public ::testing::Test {
protected:
    void SetUp() override
    {
        // The first run starts the server and makes the account known.
        const CommandRun first = folder.json({"status"});
        ASSERT_EQ(first.exitStatus, 0) << first.all();
        workspaceId =
            first.object()[QLatin1String("workspace")][QLatin1String("id")].toString().toStdString();
    }

    std::unique_ptr<Account> open(bool startsServer)
    {
        auto account = await(openAccount(installation, startsServer));
        EXPECT_TRUE(account) << (account ? "" : account.error().message);
        return account ? std::move(*account) : nullptr;
    }

    /// Creates, updates (several of one entry among them) and deletes, as a user's week would mix them.
    std::vector<EntryChange> plan()
    {
        std::vector<EntryChange> changes;
        std::vector<std::string> ids;
        while (changes.size() < changeCount) {
            const int i = static_cast<int>(changes.size());
            const auto pick = random() % 10;
            if (ids.empty() || pick < 4) {
                ids.push_back(QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString());
                changes.push_back({EntryChange::Create{requestAt("created " + std::to_string(i), i, 5),
                                                       ids.back(), workspaceId}});
            } else if (pick < 9) {
                // Mostly one of the last few, so that an entry is changed several times in a row.
                const std::size_t back = random() % std::min<std::size_t>(ids.size(), 4);
                changes.push_back({EntryChange::Update{requestAt("updated " + std::to_string(i), i, 7),
                                                       ids[ids.size() - 1 - back],
                                                       workspaceId,
                                                       {}}});
            } else {
                const auto at = ids.begin() + static_cast<std::ptrdiff_t>(random() % ids.size());
                changes.push_back({EntryChange::Delete{*at, workspaceId, {}}});
                ids.erase(at);
            }
        }
        return changes;
    }

    void queueOffline(const std::vector<EntryChange> &changes)
    {
        ASSERT_TRUE(folder.killServer());
        const auto account = open(false);
        ASSERT_TRUE(account);
        const auto outcomes = await(account->outbox().submit(changes));
        ASSERT_TRUE(outcomes) << describe(outcomes.error());
        EXPECT_EQ(account->outbox().pending().size(), changes.size());
        await(account->close());
    }

    /// Starts a delivery and kills it, or the server under it, after a random while. True when it came to its
    /// end.
    bool deliverAndKill(bool killsServer)
    {
        const auto process = folder.start({"outbox", "flush"});
        const bool hasEnded = process->waitForFinished(static_cast<int>(150 + random() % 900));
        if (hasEnded)
            return process->exitCode() == 0;
        if (killsServer)
            folder.killServer();
        else
            process->kill();
        process->waitForFinished(30'000);
        return false;
    }

    TestInstallation folder;
    Installation installation{folder.folder()};
    std::string workspaceId;
    std::mt19937 random{20'260'430};
};

TEST_F(KillJourney, EachOfFiveHundredChangesArrivesOnce)
{
    const std::vector<EntryChange> changes = plan();
    queueOffline(changes);
    int kills = 0;
    for (int round = 0; round < 12; ++round)
        kills += deliverAndKill(round % 3 == 2) ? 0 : 1;
    EXPECT_GT(kills, 2) << "everything was delivered before anything was killed";

    const auto account = open(true);
    ASSERT_TRUE(account);
    await(account->outbox().flush());
    EXPECT_TRUE(account->outbox().pending().empty());
    EXPECT_TRUE(account->outbox().conflicts().empty());
    EXPECT_TRUE(await(account->outbox().unshownRefusals()).empty());

    std::vector<TimeEntryResponse> wanted = overlay({}, std::nullopt, changes, workspaceId).entries;
    const Instant first = requestAt("", 0, {}).start;
    auto held = await(account->client().listTimeEntries(workspaceId, first, first + std::chrono::days{2}));
    ASSERT_TRUE(held) << describe(held.error());
    for (TimeEntryResponse &entry : *held)
        entry.version.clear();
    const auto byId = [](const TimeEntryResponse &entry) { return entry.id; };
    std::ranges::sort(wanted, {}, byId);
    std::ranges::sort(*held, {}, byId);
    EXPECT_EQ(*held, wanted);
    await(account->close());
}

TEST_F(KillJourney, CommandsAtOnceShareTheQueue)
{
    ASSERT_TRUE(folder.killServer());
    constexpr int count = 6;
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int i = 0; i < count; ++i)
        processes.push_back(
            folder.start({"add", "entry " + std::to_string(i), "--start", "0:" + std::to_string(i) + "0",
                          "--stop", "0:" + std::to_string(i) + "5"}));
    for (const auto &process : processes) {
        ASSERT_TRUE(process->waitForFinished(60'000));
        const std::string said = process->readAllStandardError().toStdString();
        EXPECT_EQ(process->exitCode(), 0) << said;
        EXPECT_EQ(said.find("wait"), std::string::npos)
            << "what another command sends is not told as waiting: " << said;
    }
    const CommandRun status = folder.json({"status"});
    EXPECT_EQ(status.object()[QLatin1String("outbox")][QLatin1String("pending")].toInt(), 0) << status.all();
    const auto account = open(true);
    ASSERT_TRUE(account);
    await(account->tracker().load());
    const DayKey today = account->tracker().time().today();
    EXPECT_EQ(account->tracker().days(today, 1).front().entries.size(), static_cast<std::size_t>(count));
    await(account->close());
}

} // namespace
} // namespace orvane
