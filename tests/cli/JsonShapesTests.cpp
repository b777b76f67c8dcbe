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
