// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntryConversions.h"
#include "Outbox/OutboxRules.h"
#include "Outbox/OutboxStore.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

CallError refusal(int status, std::optional<std::string> type = {},
                  std::optional<TimeEntryResponse> current = {})
{
    APIError error{.status = status};
    error.type = std::move(type);
    error.current = std::move(current);
    return error;
}

TimeEntryResponse entryOf(const EntryRequest &request)
{
    TimeEntryResponse entry = entryResponse(request, "e", "w");
    entry.version = "7";
    return entry;
}

TEST(OutboxRules, TellsConflictTransientAndRefusalApart)
{
    const std::string changed(entryChangedProblemType);
    EXPECT_EQ(classify(refusal(412, changed, TimeEntryResponse{})), FailureKind::Conflict);
    EXPECT_EQ(classify(refusal(412, changed)), FailureKind::Refusal)
        << "without the server's entry nothing can be settled";
    EXPECT_EQ(classify(refusal(412, "urn:other", TimeEntryResponse{})), FailureKind::Refusal);
    EXPECT_EQ(classify(refusal(409, changed, TimeEntryResponse{})), FailureKind::Refusal);
    for (const int status : {500, 503, 599, 401, 408, 429})
        EXPECT_EQ(classify(refusal(status)), FailureKind::Transient) << status;
    for (const int status : {400, 403, 404, 409, 422, 451})
        EXPECT_EQ(classify(refusal(status)), FailureKind::Refusal) << status;
    EXPECT_EQ(classify(ConnectionError{"cut"}), FailureKind::Transient);
    EXPECT_EQ(classify(DecodingError{"garbage"}), FailureKind::Transient);
}

TEST(OutboxRules, RetriesSlowDownToAMinute)
{
    std::vector<long> seconds;
    for (int failures = 0; failures <= 8; ++failures)
        seconds.push_back(std::chrono::duration_cast<std::chrono::seconds>(retryDelay(failures)).count());
    EXPECT_EQ(seconds, (std::vector<long>{2, 2, 5, 15, 30, 60, 60, 60, 60}));
}

TEST(OutboxRules, AnEchoOfALostAnswerIsNoConflict)
{
    const std::string changed(entryChangedProblemType);
    EntryRequest request;
    request.details.description = "Review";
    request.details.tagIds = {"t"};
    request.start = instantFromMilliseconds(1'772'000'000'000);
    request.stop = request.start + std::chrono::hours{1};
    const EntryChange update{EntryChange::Update{request, "e", "w", "6"}};
    const auto lost = lostFirstAnswer(update, refusal(412, changed, entryOf(request)));
    ASSERT_TRUE(lost);
    EXPECT_EQ(lost->entry->version, "7");

    EntryRequest other = request;
    other.details.tagIds = {};
    EXPECT_FALSE(lostFirstAnswer(update, refusal(412, changed, entryOf(other))))
        << "somebody else took the tag away";

    const EntryChange stop{EntryChange::Stop{*request.stop, "e", "w", "6"}};
    EXPECT_TRUE(lostFirstAnswer(stop, refusal(412, changed, entryOf(other))));
    EXPECT_FALSE(lostFirstAnswer(EntryChange{EntryChange::Stop{request.start, "e", "w", "6"}},
                                 refusal(412, changed, entryOf(request))));

    EXPECT_TRUE(lostFirstAnswer(EntryChange{EntryChange::Delete{"e", "w", "6"}}, refusal(404)));
    EXPECT_FALSE(lostFirstAnswer(update, refusal(404)));
    EXPECT_FALSE(lostFirstAnswer(EntryChange{EntryChange::Delete{"e", "w", "6"}},
                                 refusal(412, changed, entryOf(request))));
}

TEST(VersionSuccession, FollowsOnlyAnUnbrokenLineOfOurOwnChanges)
{
    VersionDocument document;
    noteSuccession(document, "e", std::nullopt, "1");
    noteSuccession(document, "e", "1", "2");
    noteSuccession(document, "e", "2", "3");
    EXPECT_EQ(succeedingVersion(document, "e", "1"), "3");
    EXPECT_EQ(succeedingVersion(document, "e", "3"), "3");
    EXPECT_EQ(succeedingVersion(document, "e", "unknown"), "unknown");
    EXPECT_EQ(succeedingVersion(document, "other", "1"), "1");

    // "4" was somebody else's: a change made against 1 or 3 has not seen it and must be told.
    noteSuccession(document, "e", "4", "5");
    EXPECT_EQ(succeedingVersion(document, "e", "1"), "1");
    EXPECT_EQ(succeedingVersion(document, "e", "4"), "5");

    for (int i = 0; i < 1000; ++i)
        noteSuccession(document, "entry" + std::to_string(i), "1", "2");
    EXPECT_LT(document.entries.size(), 200U) << "the document stays small";
    EXPECT_EQ(succeedingVersion(document, "entry999", "1"), "2");
}

} // namespace
} // namespace orvane
