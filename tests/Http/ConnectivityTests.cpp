// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Connectivity.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(Connectivity, TellsOnlyOfComingBack)
{
    Connectivity connectivity;
    int back = 0;
    int changes = 0;
    connectivity.setOnline(true);
    connectivity.onOnline = [&] { ++back; };
    QObject::connect(&connectivity, &Connectivity::isOnlineChanged, [&] { ++changes; });
    connectivity.setOnline(true);
    connectivity.setOnline(false);
    connectivity.setOnline(false);
    EXPECT_EQ(back, 0);
    EXPECT_FALSE(connectivity.isOnline());
    connectivity.setOnline(true);
    EXPECT_EQ(back, 1);
    EXPECT_EQ(changes, 2);
}

} // namespace
} // namespace orvane
