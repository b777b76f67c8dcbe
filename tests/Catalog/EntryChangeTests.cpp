// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntryChange.h"
#include "Support/DateText.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

constexpr JsonStyle storeStyle{.dates = DateCoding::secondsSince2001};
constexpr JsonReading storeReading{.dates = DateCoding::secondsSince2001};

Instant at(std::string_view iso)
{
    return instantFromIso8601(iso).value();
}

EntryRequest splitRequest()
{
    EntryRequest request;
    request.details = {
        .description = "Review \"the\" plan\n",
        .projectId = "p1",
        .taskId = std::nullopt,
        .tagIds = {"t1", "t2"},
        .isBillable = true,
        .shares = {{"p1", "k1", true, 60, "first"}, {std::nullopt, std::nullopt, false, 40, ""}}};
    request.start = at("2026-03-01T09:30:00.123Z");
    request.stop = at("2026-03-01T10:00:00Z");
    request.describeParts = true;
    return request;
}

EntryRequest runningRequest()
{
    EntryRequest request;
    request.start = at("2001-01-01T00:00:01Z");
    return request;
}

struct Sample {
    EntryChange change;
    std::string stored;
    std::string iso;
};

std::vector<Sample> samples()
{
    const std::string running =
        R"({"details":{"description":"","tagIds":[],"isBillable":false,"shares":[]},)";
    const std::string split =
        R"({"details":{"description":"Review \"the\" plan\n","projectId":"p1","tagIds":["t1","t2"],"isBillable":true,)"
        R"("shares":[{"projectId":"p1","taskId":"k1","isBillable":true,"percent":60,"description":"first"},)"
        R"({"isBillable":false,"percent":40,"description":""}]},)";
    return {
        {{EntryChange::Create{runningRequest(), "e1", "w1"}},
         R"({"create":{"_0":)" + running +
             R"("start":1,"describeParts":false},"id":"e1","workspaceId":"w1"}})",
         R"({"create":{"_0":)" + running +
             R"("start":"2001-01-01T00:00:01.000Z","describeParts":false},"id":"e1","workspaceId":"w1"}})"},
        {{EntryChange::Update{splitRequest(), "e1", "w1", "7"}},
         R"({"update":{"_0":)" + split +
             R"("start":794050200.123,"stop":794052000,"describeParts":true},"id":"e1","workspaceId":"w1","version":"7"}})",
         R"({"update":{"_0":)" + split +
             R"("start":"2026-03-01T09:30:00.123Z","stop":"2026-03-01T10:00:00.000Z","describeParts":true},)"
             R"("id":"e1","workspaceId":"w1","version":"7"}})"},
        {{EntryChange::Stop{at("2001-01-01T00:00:00.5Z"), "e2", "w1", std::nullopt}},
         R"({"stop":{"at":0.5,"id":"e2","workspaceId":"w1"}})",
         R"({"stop":{"at":"2001-01-01T00:00:00.500Z","id":"e2","workspaceId":"w1"}})"},
        {{EntryChange::Delete{"e3", "w2", "v"}},
         R"({"delete":{"id":"e3","workspaceId":"w2","version":"v"}})",
         R"({"delete":{"id":"e3","workspaceId":"w2","version":"v"}})"},
    };
}

TEST(EntryChange, IsWrittenAndReadAsOneMemberNamedAfterTheAction)
{
    for (const auto &[change, stored, iso] : samples()) {
        EXPECT_EQ(encodeJson(change, storeStyle), stored);
        EXPECT_EQ(decodeJson<EntryChange>(stored, storeReading), change);
        EXPECT_EQ(encodeJson(change), iso);
        EXPECT_EQ(decodeJson<EntryChange>(iso), change);
    }
}

TEST(EntryChange, AcceptsNullsOtherOrdersAndMembersItDoesNotKnow)
{
    const auto change = decodeJson<EntryChange>(
        R"( {"delete":{"note":{"a":[1,{}]},"version":null,"workspaceId":"w","id":"e"}} )", storeReading);
    EXPECT_EQ(change, (EntryChange{EntryChange::Delete{"e", "w", std::nullopt}}));
}

TEST(EntryChange, RefusesWhatIsNoChange)
{
    for (const char *text : {
             "",
             "{}",
             "[]",
             "null",
             "1",
             R"("delete")",
             "{",
             R"({"delete":)",
             R"({"rename":{"id":"e","workspaceId":"w"}})",
             R"({"Delete":{"id":"e","workspaceId":"w"}})",
             R"({"delet":{"id":"e","workspaceId":"w"}})",
             R"({"deleted":{"id":"e","workspaceId":"w"}})",
             R"({"delete":{"id":"e","workspaceId":"w"},"stop":{"at":0,"id":"e","workspaceId":"w"}})",
             R"({"delete":{"id":"e","workspaceId":"w"},"delete":{"id":"e","workspaceId":"w"}})",
             R"({"delete":{"id":"e"}})",
             R"({"delete":{"id":3,"workspaceId":"w"}})",
             R"({"delete":{"id":"e","workspaceId":"w","version":7}})",
             R"({"delete":null})",
             R"({"delete":{"id":"e","workspaceId":"w"}} x)",
             R"({"stop":{"id":"e","workspaceId":"w"}})",
             R"({"stop":{"at":"2026-03-01T09:30:00Z","id":"e","workspaceId":"w"}})",
             R"({"stop":{"at":1e300,"id":"e","workspaceId":"w"}})",
             R"({"stop":{"at":-3187296001,"id":"e","workspaceId":"w"}})", // a second before 1900
             R"({"create":{"id":"e","workspaceId":"w"}})",
             R"({"create":{"_0":{"start":0,"describeParts":false},"id":"e","workspaceId":"w"}})",
         })
        EXPECT_FALSE(decodeJson<EntryChange>(text, storeReading)) << text;
    const auto error =
        decodeJson<EntryChange>(R"({"stop":{"at":true,"id":"e","workspaceId":"w"}})", storeReading);
    ASSERT_FALSE(error);
    EXPECT_EQ(error.error().path, "stop.at");
}

TEST(EntryChange, TellsWhatItConcerns)
{
    const auto all = samples();
    const std::vector<const char *> ids = {"e1", "e1", "e2", "e3"};
    const std::vector<std::optional<std::string>> versions = {std::nullopt, "7", std::nullopt, "v"};
    for (std::size_t i = 0; i < all.size(); ++i) {
        const EntryChange &change = all[i].change;
        EXPECT_EQ(change.entryId(), ids[i]);
        EXPECT_EQ(change.workspaceId(), i == 3 ? "w2" : "w1");
        EXPECT_EQ(change.version(), versions[i]);
        const EntryChange next = change.withVersion("8");
        if (i == 0)
            EXPECT_EQ(next, change);
        else
            EXPECT_EQ(next.version(), "8");
        EXPECT_EQ(next.entryId(), change.entryId());
        EXPECT_EQ(change.request() != nullptr, i < 2);
    }
    EXPECT_EQ(*all[1].change.request(), splitRequest());
}

} // namespace
} // namespace orvane
