// SPDX-License-Identifier: GPL-3.0-or-later
#include "Suggestions/SplitMath.h"

#include "Catalog/EntryParts.h"

#include <gmock/gmock.h>
#include <numeric>
#include <random>

namespace orvane {
namespace {

using ::testing::ElementsAre;
using Numbers = std::vector<std::int64_t>;

Numbers hundred(const Numbers &weights, std::int64_t minimum = 0)
{
    return SplitMath::apportion(weights, 100, minimum);
}

std::int64_t sumOf(const Numbers &numbers)
{
    return std::accumulate(numbers.begin(), numbers.end(), std::int64_t{0});
}

TEST(SplitMath, GivesWhatIsLeftOverToTheLargestRemainders)
{
    EXPECT_THAT(hundred({}), ElementsAre());
    EXPECT_THAT(hundred({7}), ElementsAre(100));
    EXPECT_THAT(hundred({1, 1, 1}), ElementsAre(34, 33, 33)) << "the first of equal ones";
    EXPECT_THAT(hundred({2700, 300}), ElementsAre(90, 10));
    EXPECT_THAT(hundred({1, 2, 4}), ElementsAre(14, 29, 57)) << "14.29, 28.57 and 57.14";
    EXPECT_THAT(hundred({1, 1, 1, 1, 1, 1, 1}), ElementsAre(15, 15, 14, 14, 14, 14, 14));
    EXPECT_THAT(SplitMath::apportion(Numbers{3, 1}, 2), ElementsAre(2, 0)) << "1.5 and 0.5";
}

TEST(SplitMath, CountsNoWeightsAlikeAndNegativeOnesAsNone)
{
    EXPECT_THAT(hundred({0, 0}), ElementsAre(50, 50));
    EXPECT_THAT(hundred({-5, 0, -1}), ElementsAre(34, 33, 33));
    EXPECT_THAT(hundred({-5, 1, 3}), ElementsAre(0, 25, 75));
}

TEST(SplitMath, KeepsAMinimumForEach)
{
    EXPECT_THAT(hundred({0, 1}, 1), ElementsAre(1, 99));
    EXPECT_THAT(hundred({1'000'000, 1, 1}, 5), ElementsAre(90, 5, 5));
    EXPECT_THAT(hundred({1, 1}, 50), ElementsAre(50, 50));
    EXPECT_DEATH(hundred({INT64_MAX, 1}), "64 bits");
}

TEST(SplitMath, DividesAnythingIntoAWholeInProportion)
{
    std::mt19937_64 random(11);
    const auto upTo = [&](std::int64_t most) {
        return std::uniform_int_distribution<std::int64_t>(0, most)(random);
    };
    for (int round = 0; round < 20'000; ++round) {
        Numbers weights(static_cast<std::size_t>(1 + upTo(11)));
        for (std::int64_t &weight : weights)
            weight = upTo(3) == 0 ? -upTo(3) : upTo(90'000);
        const std::int64_t minimum = upTo(3);
        const std::int64_t total = minimum * static_cast<std::int64_t>(weights.size()) + upTo(5000);
        const Numbers shares = SplitMath::apportion(weights, total, minimum);
        ASSERT_EQ(shares.size(), weights.size());
        ASSERT_EQ(sumOf(shares), total);
        const auto spare = static_cast<double>(total - minimum * static_cast<std::int64_t>(weights.size()));
        double whole = 0;
        for (const std::int64_t weight : weights)
            whole += static_cast<double>(std::max<std::int64_t>(weight, 0));
        for (std::size_t i = 0; i < weights.size(); ++i) {
            ASSERT_GE(shares[i], minimum);
            const double exact =
                whole > 0 ? static_cast<double>(std::max<std::int64_t>(weights[i], 0)) * spare / whole
                          : spare / static_cast<double>(weights.size());
            ASSERT_LT(std::abs(static_cast<double>(shares[i] - minimum) - exact), 1.0) << "of " << exact;
            for (std::size_t j = 0; j < i; ++j)
                ASSERT_TRUE(weights[i] <= weights[j] || weights[i] <= 0 || shares[i] >= shares[j])
                    << "more weight never has less";
        }
    }
}

/// The percents that are offered for parts, turned back into time, are all of the entry.
TEST(SplitMath, MakesPartsThatAreTheWholeEntry)
{
    std::mt19937_64 random(5);
    const auto upTo = [&](std::int64_t most) {
        return std::uniform_int_distribution<std::int64_t>(0, most)(random);
    };
    for (int round = 0; round < 2'000; ++round) {
        Numbers seconds(static_cast<std::size_t>(2 + upTo(4)));
        std::ranges::generate(seconds, [&] { return upTo(20'000); });
        TimeEntryResponse entry;
        entry.start = Instant{std::chrono::hours{400'000}};
        entry.stop = entry.start + std::chrono::milliseconds{upTo(90'000'000)};
        for (const std::int64_t percent : hundred(seconds))
            entry.shares.emplace_back().percent = percent;
        Instant::duration whole{0};
        for (const EntryPart &part : partsOf(entry, *entry.stop)) {
            EXPECT_GE(part.length, Instant::duration{0});
            whole += part.length;
        }
        ASSERT_EQ(whole, *entry.stop - entry.start);
    }
}

} // namespace
} // namespace orvane
