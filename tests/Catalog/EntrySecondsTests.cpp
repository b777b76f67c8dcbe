// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntrySeconds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>

namespace orvane {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Instant start = instantFromMilliseconds(1'000'000);

TimeEntryResponse lasting(milliseconds length, const std::vector<std::int64_t> &percents = {})
{
    TimeEntryResponse entry;
    entry.start = start;
    entry.stop = start + length;
    for (const std::int64_t percent : percents)
        entry.shares.emplace_back().percent = percent;
    return entry;
}

TEST(EntrySeconds, AreSummedBeforeTheyAreCut)
{
    std::vector<TimeEntryResponse> entries(3, lasting(milliseconds{700}));
    EXPECT_EQ(entrySeconds(entries, start), 2);
    EXPECT_EQ(entrySeconds(entries.front(), start), 0);
    entries[0].stop.reset();
    EXPECT_EQ(entrySeconds(entries, start + seconds{10}), 11) << "a running one counts until now";
    EXPECT_EQ(entrySeconds(entries, start - seconds{10}), 1) << "one that is still to come counts nothing";
}

TEST(EntrySeconds, OfSharesMakeUpTheWhole)
{
    const auto shares = [](milliseconds length, const std::vector<std::int64_t> &percents) {
        return shareSeconds(lasting(length, percents), start);
    };
    EXPECT_THAT(shares(hours{1}, {}), IsEmpty());
    EXPECT_THAT(shares(hours{1}, {60, 40}), ElementsAre(2160, 1440));
    EXPECT_THAT(shares(seconds{10}, {33, 33, 34}), ElementsAre(3, 3, 4));
    EXPECT_THAT(shares(seconds{1}, {50, 50}), ElementsAre(1, 0)) << "of equals the first";
    EXPECT_THAT(shares(milliseconds{1999}, {25, 75}), ElementsAre(0, 1)) << "of the seconds that are shown";
    EXPECT_THAT(shares(hours{200'000}, {1, 99}), ElementsAre(7'200'000, 712'800'000));
    for (int length = 0; length < 300; ++length) {
        const auto parts = shares(seconds{length}, {7, 13, 1, 46, 33});
        EXPECT_EQ(std::accumulate(parts.begin(), parts.end(), std::int64_t{0}), length);
    }
}

TEST(EntrySeconds, OfSharesGrowWithARunningEntry)
{
    TimeEntryResponse running = lasting(seconds{0}, {90, 10});
    running.stop.reset();
    EXPECT_THAT(shareSeconds(running, start + seconds{60}), ElementsAre(54, 6));
    EXPECT_THAT(shareSeconds(running, start - seconds{60}), ElementsAre(0, 0));
}

} // namespace
} // namespace orvane
