// SPDX-License-Identifier: GPL-3.0-or-later
// Over the real server on this computer.
#include "Proposals/AgentProposals.h"

#include "Account/Account.h"
#include "Client/OrvaneClient.h"
#include "Proposals/SettledProposal.h"
#include "Time/AppClock.h"
#include "support/AccountStack.h"
#include "support/Await.h"
#include "support/CommandRun.h"
#include "support/MidweekClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace orvane::testing;
using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Ending = UndoableChange::Ending;

class AgentProposalsTest : public ::testing::Test {
    MidweekClock midweek;

protected:
    void SetUp() override
    {
        auto opened = await(openAccount(installation, true));
        ASSERT_TRUE(opened) << opened.error().message;
        account = std::move(*opened);
        await(account->tracker().load());
    }
    void TearDown() override
    {
        if (account)
            await(account->close());
    }

    AgentProposals &proposals() { return account->proposals(); }
    const std::vector<TimeEntryResponse> &entries() const { return account->tracker().entries(); }
    const std::string &workspaceId() const { return account->tracker().workspace().id; }

    /// As an agent does it, beside the list.
    std::string propose(const std::string &description, Instant start, Instant stop)
    {
        ProposeEntriesRequest request;
        request.entries.push_back({.description = description, .start = start, .stop = stop});
        const auto made = await(account->client().proposeEntries(workspaceId(), request));
        EXPECT_TRUE(made && made->front().proposal);
        return made && made->front().proposal ? made->front().proposal->id : "";
    }
    std::string propose(const std::string &description)
    {
        m_start -= 1h;
        return propose(description, m_start, m_start + 30min);
    }

    TestInstallation folder;
    Installation installation{folder.folder()};
    std::unique_ptr<Account> account;

private:
    Instant m_start = AppClock::now();
};

TEST_F(AgentProposalsTest, AreListedOnceSomebodyLooks)
{
    int told = 0;
    QObject::connect(&proposals(), &AgentProposals::changed, [&told] { ++told; });
    const std::string first = propose("First");
    await(proposals().refresh());
    EXPECT_THAT(proposals().proposals(), IsEmpty());
    EXPECT_TRUE(await(proposals().load()));
    const std::string second = propose("Second");
    await(proposals().refresh());
    EXPECT_EQ(told, 2);
    await(proposals().refresh());
    EXPECT_EQ(told, 2) << "nothing new";
    EXPECT_EQ(proposals().proposals().front().id, second);
    EXPECT_EQ(proposals().pending().front().id, first);
    EXPECT_EQ(proposals().pendingCount(), 2);
}

TEST_F(AgentProposalsTest, AreAppliedAndTakenBack)
{
    const std::string id = propose("Fix the login");
    ASSERT_TRUE(await(proposals().load()));
    const auto applied = await(proposals().apply(id));
    ASSERT_TRUE(applied) << describe(applied.error());
    EXPECT_EQ(proposals().pendingCount(), 0);
    EXPECT_EQ(proposals().find(id)->status, "applied");
    ASSERT_THAT(entries(), SizeIs(1));
    EXPECT_EQ(entries().front(), applied->entries.front());

    const auto undoable = undoableSettling(proposals(), applied->proposal);
    EXPECT_EQ(undoable->sentence(), "Accepted a proposal for “Fix the login”");
    EXPECT_EQ(await(undoable->undo()).ending, Ending::done);
    EXPECT_THAT(entries(), IsEmpty());
    EXPECT_EQ(proposals().pendingCount(), 1);
    EXPECT_EQ(await(undoable->redo()).ending, Ending::done);
    ASSERT_THAT(entries(), SizeIs(1));

    // Its entry is no longer what applying made of it.
    TimeEntryRequest other;
    other.description = "Fix the logout";
    other.start = entries().front().start;
    other.stop = entries().front().stop;
    ASSERT_TRUE(await(account->client().updateTimeEntry(workspaceId(), entries().front().id, other, {})));
    const auto late = await(undoable->undo());
    EXPECT_EQ(late.ending, Ending::changedSince);
    EXPECT_THAT(late.message, HasSubstr("The entry has changed since this was applied."));
}

TEST_F(AgentProposalsTest, AreDismissedOrDoneByHand)
{
    const std::string no = propose("No");
    const std::string byHand = propose("By hand");
    ASSERT_TRUE(await(proposals().load()));
    const auto dismissed = await(proposals().dismiss(no));
    ASSERT_TRUE(dismissed);
    EntryRequest request;
    request.details.description = "By hand";
    request.start = AppClock::now() - 5min;
    request.stop = AppClock::now();
    const auto entry = await(account->tracker().create(request));
    ASSERT_TRUE(entry.entry);
    const auto handled = await(proposals().noteHandled(byHand, {entry.entry->id}));
    ASSERT_TRUE(handled) << describe(handled.error());
    EXPECT_EQ(handled->entryId, entry.entry->id);
    EXPECT_EQ(proposals().pendingCount(), 0);
    const auto undoable = undoableSettling(proposals(), *dismissed);
    EXPECT_EQ(await(undoable->undo()).ending, Ending::done);
    EXPECT_EQ(proposals().pending().front().id, no);
    EXPECT_EQ(await(undoable->redo()).ending, Ending::done);
    EXPECT_EQ(proposals().find(no)->status, "dismissed");
    EXPECT_THAT(entries(), SizeIs(1)) << "what was done by hand stays";
}

TEST_F(AgentProposalsTest, ARefusalBringsTheListAsItIs)
{
    const std::string id = propose("Gone");
    ASSERT_TRUE(await(proposals().load()));
    ASSERT_TRUE(await(account->client().withdrawAgentProposals(workspaceId(), {{id}})));
    const auto late = await(proposals().apply(id));
    ASSERT_FALSE(late);
    EXPECT_THAT(proposalFailure(late.error()), HasSubstr("withdrawn"));
    EXPECT_EQ(proposals().find(id)->status, "withdrawn");
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(AgentProposalsTest, WaitWhileTheServerIsAway)
{
    const std::string id = propose("Later");
    await(account->close());
    account = std::move(*await(openAccount(installation, false)));
    ASSERT_TRUE(await(proposals().load()));
    ASSERT_TRUE(folder.killServer());
    const auto undoable = undoableSettling(proposals(), *proposals().find(id));
    const auto away = await(proposals().apply(id));
    ASSERT_FALSE(away);
    EXPECT_THAT(proposalFailure(away.error()), HasSubstr("they wait"));
    EXPECT_EQ(proposals().pendingCount(), 1) << "as it was known last";
    EXPECT_EQ(await(undoable->redo()).ending, Ending::away);
}

TEST_F(AgentProposalsTest, AnAnswerFromBeforeIsNoNews)
{
    const std::string id = propose("Race");
    ASSERT_TRUE(await(proposals().load()));
    auto dismissing = proposals().dismiss(id);
    auto loading = proposals().load();
    await(std::move(dismissing));
    await(std::move(loading));
    EXPECT_EQ(proposals().find(id)->status, "dismissed");
}

} // namespace
} // namespace orvane
