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
    EXPECT_EQ(classify(refusal(412, changed, TimeEntryResponse{})), FailureKind::conflict);
    EXPECT_EQ(classify(refusal(412, changed)), FailureKind::refusal)
        << "without the server's entry nothing can be settled";
    EXPECT_EQ(classify(refusal(412, "urn:other", TimeEntryResponse{})), FailureKind::refusal);
    EXPECT_EQ(classify(refusal(409, changed, TimeEntryResponse{})), FailureKind::refusal);
    for (const int status : {500, 503, 599, 401, 408, 429})
        EXPECT_EQ(classify(refusal(status)), FailureKind::transient) << status;
    for (const int status : {400, 403, 404, 409, 422, 451})
        EXPECT_EQ(classify(refusal(status)), FailureKind::refusal) << status;
    EXPECT_EQ(classify(ConnectionError{"cut"}), FailureKind::transient);
    EXPECT_EQ(classify(DecodingError{"garbage"}), FailureKind::transient);
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
    const auto lost = lostFirstAnswer(update, {}, refusal(412, changed, entryOf(request)));
    ASSERT_TRUE(lost);
    EXPECT_EQ(lost->entry->version, "7");

    EntryRequest other = request;
    other.details.tagIds = {};
    EXPECT_FALSE(lostFirstAnswer(update, {}, refusal(412, changed, entryOf(other))))
        << "somebody else took the tag away";

    const EntryChange stop{EntryChange::Stop{*request.stop, "e", "w", "6"}};
    EXPECT_TRUE(lostFirstAnswer(stop, {}, refusal(412, changed, entryOf(other))));
    EXPECT_FALSE(lostFirstAnswer(EntryChange{EntryChange::Stop{request.start, "e", "w", "6"}}, {},
                                 refusal(412, changed, entryOf(request))));

    EXPECT_TRUE(lostFirstAnswer(EntryChange{EntryChange::Delete{"e", "w", "6"}}, {}, refusal(404)));
    EXPECT_FALSE(lostFirstAnswer(update, {}, refusal(404)));
    EXPECT_FALSE(lostFirstAnswer(EntryChange{EntryChange::Delete{"e", "w", "6"}}, {},
                                 refusal(412, changed, entryOf(request))));
}

TEST(OutboxRules, ALostAnswerHandsNobodyElsesVersionOn)
{
    const std::string changed(entryChangedProblemType);
    EntryRequest running;
    running.details.description = "Review";
    running.start = instantFromMilliseconds(1'772'000'000'000);
    const Instant end = running.start + std::chrono::hours{1};
    EntryRequest stopped = running;
    stopped.stop = end;
    const EntryChange stop{EntryChange::Stop{end, "e", "w", "6"}};
    EXPECT_TRUE(
        lostFirstAnswer(stop, entryOf(running), refusal(412, changed, entryOf(stopped)))->isOursAlone);
    EXPECT_FALSE(lostFirstAnswer(stop, {}, refusal(412, changed, entryOf(stopped)))->isOursAlone)
        << "nothing is known of what it was";
    stopped.details.description = "somebody else's words";
    EXPECT_FALSE(
        lostFirstAnswer(stop, entryOf(running), refusal(412, changed, entryOf(stopped)))->isOursAlone);

    const EntryChange::Create create{running, "e", "w"};
    EXPECT_TRUE(isAsCreated(create, entryOf(running)));
    EXPECT_FALSE(isAsCreated(create, entryOf(stopped)));
}

} // namespace
} // namespace orvane
