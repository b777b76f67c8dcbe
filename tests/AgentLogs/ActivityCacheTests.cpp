// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/ActivityCache.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace orvane {
namespace {

TEST(ActivityCacheTest, LetsTheLongestUnusedGo)
{
    ActivityCache<int> cache(100, 3);
    cache.insert("a", 1, 30);
    cache.insert("b", 2, 30);
    cache.insert("c", 3, 30);
    ASSERT_NE(cache.find("a"), nullptr);
    cache.insert("d", 4, 5);
    EXPECT_EQ(cache.find("b"), nullptr) << "one too many";
    cache.insert("a", 9, 80);
    EXPECT_EQ(cache.bytes(), 85) << "c was too heavy beside the new a";
    ASSERT_NE(cache.find("a"), nullptr);
    EXPECT_EQ(*cache.find("a"), 9);
    EXPECT_EQ(cache.find("c"), nullptr);
}

TEST(ActivityCacheTest, DoesNotMakeRoomForWhatDoesNotFitAtAll)
{
    ActivityCache<int> cache(100, 3);
    cache.insert("a", 1, 60);
    cache.insert("b", 2, 40);
    cache.insert("c", 3, 101);
    EXPECT_EQ(cache.find("c"), nullptr);
    EXPECT_EQ(cache.count(), 2U);
    cache.insert("b", 4, 101);
    EXPECT_EQ(cache.find("b"), nullptr) << "the older value counts no more";
    EXPECT_EQ(cache.bytes(), 60);
}

TEST(ActivityCacheTest, HoldsWhatASimpleListHolds)
{
    struct Item {
        std::string key;
        int value;
        std::int64_t cost;
    };
    std::mt19937 random(3);
    ActivityCache<int> cache(50, 6);
    std::vector<Item> list; // the longest unused first
    for (int i = 0; i < 5000; ++i) {
        const std::string key(1, static_cast<char>('a' + random() % 10));
        const auto found = std::ranges::find(list, key, &Item::key);
        if (random() % 2 == 0) {
            const int *value = cache.find(key);
            ASSERT_EQ(value == nullptr, found == list.end());
            if (value != nullptr) {
                ASSERT_EQ(*value, found->value);
                std::rotate(found, found + 1, list.end());
            }
            continue;
        }
        const std::int64_t cost = random() % 20;
        cache.insert(key, i, cost);
        if (found != list.end())
            list.erase(found);
        list.push_back({key, i, cost});
        const auto bytes = [&] {
            std::int64_t sum = 0;
            for (const Item &item : list)
                sum += item.cost;
            return sum;
        };
        while (list.size() > 6 || bytes() > 50)
            list.erase(list.begin());
        ASSERT_EQ(cache.count(), list.size());
        ASSERT_EQ(cache.bytes(), bytes());
    }
}

} // namespace
} // namespace orvane
