// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/JsonShapes.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(JsonShapes, WriteEveryMemberInItsPlace)
{
    using namespace std::chrono;
    EXPECT_EQ(shapes::text(shapes::Outcome{SaveOutcome::waiting, true, {}, {}}),
              "{\"outcome\":\"waiting\",\"queued\":true,\"entry\":null,\"message\":null,\"notes\":[]}\n");
    EXPECT_EQ(shapes::text(shapes::Days{{{year{2026} / 3 / 1, 90, {}}}}),
              "{\"days\":[{\"day\":\"2026-03-01\",\"seconds\":90,\"entries\":[]}]}\n");
    EXPECT_EQ(shapes::text(shapes::SignIn{{}, {"http://127.0.0.1:1", true, false}}),
              "{\"account\":null,\"server\":{\"url\":\"http://"
              "127.0.0.1:1\",\"local\":true,\"reachable\":false},\"notes\":[]}\n");
    EXPECT_EQ(shapes::text(shapes::Status{{"u", false, true},
                                          {"1", "a@b", false},
                                          {"2", "W", WorkspaceRole::owner},
                                          {},
                                          {year{2026} / 3 / 1, 0, {}},
                                          {}}),
              "{\"server\":{\"url\":\"u\",\"local\":false,\"reachable\":true},"
              "\"account\":{\"id\":\"1\",\"email\":\"a@b\",\"automatic\":false},"
              "\"workspace\":{\"id\":\"2\",\"name\":\"W\",\"role\":\"owner\"},\"running\":null,"
              "\"today\":{\"day\":\"2026-03-01\",\"seconds\":0,\"entries\":[]},"
              "\"outbox\":{\"pending\":0,\"offline\":false,\"conflicts\":0}}\n");
}

TEST(JsonShapes, TellWhatAFilterTakesOfASplitEntry)
{
    DayGroup group;
    TimeEntryResponse split;
    split.start = Instant{};
    split.stop = Instant{std::chrono::hours{2}};
    split.shares = {{.projectId = "p1", .percent = 25, .description = {}},
                    {.projectId = "p2", .percent = 75, .description = {}}};
    TimeEntryResponse running;
    running.start = Instant{std::chrono::hours{2}};
    running.projectId = "p1";
    group.entries = {split, running};
    const Instant now{std::chrono::hours{3}};
    const auto day = shapes::listedDay(group, Catalog{}, now, {.projectId = "p1"});
    EXPECT_EQ(day.seconds, 1800 + 3600);
    ASSERT_EQ(day.entries.size(), 2U);
    EXPECT_EQ(day.entries[0].seconds, 7200) << "its own stay";
    EXPECT_EQ(day.entries[0].matchingSeconds, 1800);
    EXPECT_EQ(day.entries[1].matchingSeconds, 3600);
    EXPECT_EQ(shapes::listedDay(group, Catalog{}, now, {}).entries[0].matchingSeconds, 7200);
}

TEST(JsonShapes, WriteFailuresWithWhatTheServerSaid)
{
    EXPECT_EQ(shapes::text(shapes::Failure{shapes::error(CommandFailure::of("No."))}),
              "{\"error\":{\"status\":null,\"type\":null,\"title\":null,\"detail\":null,\"fieldErrors\":null,"
              "\"message\":\"No.\"}}\n");
    const APIError refused{.status = 422,
                           .title = "Invalid",
                           .detail = "Look again.",
                           .fieldErrors = {{"name", {"Too long."}}},
                           .type = "about:blank"};
    EXPECT_EQ(shapes::text(shapes::Failure{shapes::error(CommandFailure::of(CallError(refused)))}),
              "{\"error\":{\"status\":422,\"type\":\"about:blank\",\"title\":\"Invalid\",\"detail\":\"Look "
              "again.\","
              "\"fieldErrors\":{\"name\":[\"Too long.\"]},\"message\":\"Name: Too long.\"}}\n");
}

} // namespace
} // namespace orvane
