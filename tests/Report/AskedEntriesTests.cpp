// SPDX-License-Identifier: GPL-3.0-or-later
#include "Report/AskedEntries.h"

#include "Catalog/EntryConversions.h"
#include "Support/DateText.h"
#include "Time/AppClock.h"
#include "support/Await.h"
#include "support/TokenServer.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;
using testing::LoopbackServer;
using testing::SeenRequest;

Instant january(const char *dayAndTime)
{
    return instantFromIso8601(std::string("2026-01-").append(dayAndTime).append(":00Z")).value();
}

TimeEntryResponse lastingAnHour(const char *id, Instant start)
{
    TimeEntryResponse entry;
    entry.id = id;
    entry.workspaceId = "w";
    entry.start = start;
    entry.stop = start + std::chrono::hours{1};
    return entry;
}

MeResponse profile()
{
    MeResponse me;
    me.id = "u";
    me.email = "ada@example.org";
    me.timeZone = "UTC";
    me.defaultWorkspaceId = "w";
    me.workspaces.emplace_back().id = "w";
    return me;
}

void answerWith(testing::TokenServer &server, const std::vector<TimeEntryResponse> &entries)
{
    server.setAnswer(
        [list = encodeJson(entries)](const SeenRequest &request, LoopbackServer::Connection &connection) {
            connection.answer(200, request.path == "/api/me" ? encodeJson(profile()) : list);
        });
}

std::vector<std::string> idsOf(const CallResult<std::vector<TimeEntryResponse>> &entries)
{
    std::vector<std::string> ids;
    for (const TimeEntryResponse &entry : entries.value())
        ids.push_back(entry.id);
    return ids;
}

TEST(AskedEntries, HaveWhatWaitsOnTop)
{
    const QTemporaryDir folder;
    Installation installation(folder.path().toStdString());
    testing::TokenServer server;
    const TimeEntryResponse current = lastingAnHour("current", millisecondsFloor(AppClock::now()));
    answerWith(server, {current});
    const auto access = std::make_shared<ServerAccess>(
        ServerAccess::Options{.installation = &installation, .server = server.url(), .startsServer = false});
    ASSERT_TRUE(await(access->find()));
    const auto account =
        await(Account::signIn(access, {.livesOn = false}, PasswordSignIn{"ada@example.org", "right"}))
            .value();
    Tracker &tracker = account->tracker();
    ASSERT_TRUE(await(tracker.refresh(Topic::entries)));

    // Moved into the days and added to them while nothing is sent, and what only reaches into them.
    await(account->outbox().close());
    EntryRequest moved = entryRequest(current);
    moved.start = january("13T09:00");
    moved.stop = january("13T10:00");
    EXPECT_TRUE(await(tracker.update("current", moved)).isQueued);
    moved.start = january("14T09:00");
    moved.stop = january("14T10:00");
    EXPECT_TRUE(await(tracker.create(moved)).isQueued);
    const std::string made = account->outbox().changes().back().entryId();
    answerWith(server,
               {lastingAnHour("evening", january("11T23:30")), lastingAnHour("old", january("12T09:00"))});
    const InstantInterval days{january("12T00:00"), january("15T00:00")};
    EXPECT_EQ(idsOf(await(askedEntries(account.get(), days))),
              (std::vector<std::string>{made, "current", "old", "evening"}));
    EXPECT_EQ(tracker.entry("old"), std::nullopt) << "the tracker keeps none of them";

    server.setDown(true);
    EXPECT_FALSE(await(askedEntries(account.get(), days)));
    await(account->close());
}

} // namespace
} // namespace orvane
