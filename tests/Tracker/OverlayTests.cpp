// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/Overlay.h"

#include "Catalog/EntryConversions.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using std::chrono::minutes;

const Instant morning = instantFromMilliseconds(1'772'000'000'000);

EntryRequest request(const std::string &description, int startMinute, std::optional<int> stopMinute)
{
    EntryRequest request;
    request.details.description = description;
    request.start = morning + minutes{startMinute};
    if (stopMinute)
        request.stop = morning + minutes{*stopMinute};
    return request;
}

TimeEntryResponse entry(const std::string &id, int startMinute, std::optional<int> stopMinute)
{
    TimeEntryResponse entry = entryResponse(request(id, startMinute, stopMinute), id, "w");
    entry.version = "1";
    return entry;
}

EntryChange create(const std::string &id, int startMinute, std::optional<int> stopMinute,
                   const std::string &workspace = "w")
{
    return EntryChange{EntryChange::Create{request(id, startMinute, stopMinute), id, workspace}};
}

std::vector<std::string> ids(const ShownEntries &shown)
{
    std::vector<std::string> ids;
    for (const TimeEntryResponse &each : shown.entries)
        ids.push_back(each.id);
    return ids;
}

TEST(Overlay, AppliesChangesInTheirOrder)
{
    const std::vector<EntryChange> changes{
        create("new", 60, std::nullopt),
        {EntryChange::Update{request("renamed", 60, std::nullopt), "new", "w", {}}},
        {EntryChange::Stop{morning + minutes{75}, "new", "w", {}}},
        {EntryChange::Update{request("rewritten", 5, 20), "old", "w", "1"}},
    };
    const ShownEntries shown = overlay({entry("old", 0, 30)}, std::nullopt, changes, "w");
    ASSERT_EQ(ids(shown), (std::vector<std::string>{"new", "old"}));
    EXPECT_EQ(shown.entries[0].description, "renamed");
    EXPECT_EQ(shown.entries[0].stop, morning + minutes{75});
    EXPECT_EQ(shown.entries[1].description, "rewritten");
    EXPECT_EQ(shown.entries[1].start, morning + minutes{5});
    EXPECT_EQ(shown.entries[1].version, "1") << "an edit keeps the version that the next one is made against";
    EXPECT_FALSE(shown.running);
}

TEST(Overlay, AnUnsentCreateAndItsDeleteLeaveNothing)
{
    const std::vector<EntryChange> changes{create("new", 0, 10),
                                           {EntryChange::Delete{"new", "w", {}}},
                                           {EntryChange::Stop{morning, "new", "w", {}}}};
    EXPECT_TRUE(overlay({}, std::nullopt, changes, "w").entries.empty());
}

TEST(Overlay, OfTwoStopsTheFirstOnesTimeShows)
{
    const auto stop = [](int minute) {
        return EntryChange{EntryChange::Stop{morning + minutes{minute}, "old", "w", {}}};
    };
    const std::vector<EntryChange> changes{stop(20), stop(30)};
    const auto running = entry("old", 0, std::nullopt);
    EXPECT_EQ(overlay({running}, running, changes, "w").entries[0].stop, morning + minutes{20});
    // Running again since, it can be stopped again.
    const std::vector<EntryChange> again{
        stop(20), {EntryChange::Update{request("old", 0, std::nullopt), "old", "w", {}}}, stop(30)};
    EXPECT_EQ(overlay({running}, running, again, "w").entries[0].stop, morning + minutes{30});
}

TEST(Overlay, OneEntryRunsAtMost)
{
    const std::vector<EntryChange> changes{create("second", 30, std::nullopt)};
    const ShownEntries shown =
        overlay({entry("first", 0, std::nullopt)}, entry("first", 0, std::nullopt), changes, "w");
    ASSERT_TRUE(shown.running);
    EXPECT_EQ(shown.running->id, "second");
    ASSERT_EQ(shown.entries.size(), 2U) << "an identifier is never shown twice";
    EXPECT_EQ(shown.entries[1].stop, morning + minutes{30});
}

TEST(Overlay, ACreateThatTheServerHasAlreadyChangesNothing)
{
    // The answer to a create can arrive with the list before its own answer does.
    TimeEntryResponse known = entry("new", 0, std::nullopt);
    known.description = "as the server has it";
    const std::vector<EntryChange> changes{create("new", 0, std::nullopt)};
    const ShownEntries shown = overlay({known}, known, changes, "w");
    ASSERT_EQ(shown.entries.size(), 1U);
    EXPECT_EQ(shown.entries[0].description, "as the server has it");
}

TEST(Overlay, TheTimerOfAnotherWorkspaceIsRunningButNotListed)
{
    TimeEntryResponse elsewhere = entry("elsewhere", 0, std::nullopt);
    elsewhere.workspaceId = "other";
    ShownEntries shown = overlay({entry("here", 0, 10)}, elsewhere, {}, "w");
    EXPECT_EQ(ids(shown), std::vector<std::string>{"here"});
    ASSERT_TRUE(shown.running);
    EXPECT_EQ(shown.running->id, "elsewhere");

    const std::vector<EntryChange> changes{create("finished there", 3, 4, "other"),
                                           create("here too", 5, std::nullopt)};
    shown = overlay({}, elsewhere, changes, "w");
    EXPECT_EQ(ids(shown), std::vector<std::string>{"here too"});
    EXPECT_EQ(shown.running->id, "here too");
}

} // namespace
} // namespace orvane
