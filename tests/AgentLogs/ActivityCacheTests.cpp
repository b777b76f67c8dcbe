// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/ActivityCache.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace orvane
