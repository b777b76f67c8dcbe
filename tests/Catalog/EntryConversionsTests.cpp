// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntryConversions.h"
#include "Support/DateText.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

EntryRequest splitRequest(bool describeParts)
{
    EntryRequest request;
    request.details = {.description = "Review",
                       .projectId = "p",
                       .taskId = "k",
                       .tagIds = {"t", "u"},
                       .isBillable = true,
                       .shares = {{"p", "k", true, 60, "first"}, {"q", std::nullopt, false, 40, "second"}}};
    request.start = *instantFromIso8601("2026-03-01T09:00:00Z");
    request.stop = *instantFromIso8601("2026-03-01T10:00:00Z");
    request.describeParts = describeParts;
    return request;
}

TEST(EntryConversions, ShowAnEntryThatGivesItsRequestBack)
{
    const EntryRequest request = splitRequest(true);
    const TimeEntryResponse entry = entryResponse(request, "e", "w", "3");
    EXPECT_EQ(entry.id, "e");
    EXPECT_EQ(entry.workspaceId, "w");
    EXPECT_EQ(entry.version, "3");
    EXPECT_EQ(entry.shares.at(1).description, "second");
    EXPECT_EQ(entryRequest(entry), request);
    EXPECT_EQ(entryDetails(entry), request.details);

    EntryRequest running;
    running.details.description = "Plain";
    running.start = request.start;
    EXPECT_EQ(entryRequest(entryResponse(running, "e", "w")), running);
}

TEST(EntryConversions, GiveEachShareTheEntrysDescriptionUnlessThePartsDescribeThemselves)
{
    const TimeEntryResponse entry = entryResponse(splitRequest(false), "e", "w");
    for (const TimeShareResponse &share : entry.shares)
        EXPECT_EQ(share.description, "Review");
    EXPECT_FALSE(entryRequest(entry).describeParts);
    for (const TimeShareRequest &share : timeEntryRequest(splitRequest(false)).shares)
        EXPECT_EQ(share.description, "Review");
}

TEST(EntryConversions, CarryEveryMemberToTheServer)
{
    const EntryRequest request = splitRequest(true);
    const CreateTimeEntryRequest created = createTimeEntryRequest(request, "e");
    EXPECT_EQ(
        encodeJson(created),
        R"({"id":"e","description":"Review","projectId":"p","taskId":"k","tagIds":["t","u"],"isBillable":true,)"
        R"("shares":[{"projectId":"p","taskId":"k","isBillable":true,"percent":60,"description":"first"},)"
        R"({"projectId":"q","isBillable":false,"percent":40,"description":"second"}],"describeParts":true,)"
        R"("start":"2026-03-01T09:00:00.000Z","stop":"2026-03-01T10:00:00.000Z"})");
    const std::string updated = encodeJson(timeEntryRequest(request));
    EXPECT_EQ("{\"id\":\"e\"," + updated.substr(1), encodeJson(created));
}

} // namespace
} // namespace orvane
