// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/NearestName.h"

#include <gtest/gtest.h>
#include <vector>

namespace orvane {
namespace {

TEST(NearestName, ForgivesAThirdOfTheLetters)
{
    const std::vector<std::string> names{"start", "stop", "status", "projects", "Café Zürich", "undo", "ab"};
    const auto nearest = [&](std::string_view typed) { return nearestName(typed, names).value_or("none"); };
    EXPECT_EQ(nearest("strat"), "start") << "two letters swapped are one slip";
    EXPECT_EQ(nearest("STOPP"), "stop");
    EXPECT_EQ(nearest("stat"), "status") << "which it begins, before one slip to \"start\"";
    EXPECT_EQ(nearest("proj"), "projects");
    EXPECT_EQ(nearest("porjets"), "projects") << "two slips in eight letters, and one left out";
    EXPECT_EQ(nearest("cafe zurch"), "Café Zürich");
    EXPECT_EQ(nearest("udno"), "undo");
    EXPECT_EQ(nearest("rpjts"), "none") << "four slips";
    EXPECT_EQ(nearest("ac"), "none") << "one of two letters is half of it";
    EXPECT_EQ(nearest(""), "none");
    EXPECT_EQ(nearestName("sto", std::vector<std::string>{"stoa", "stop"}), "stoa") << "of equals the first";
    EXPECT_EQ(didYouMean("ord", std::vector<std::string>{"or\033d"}), " Did you mean \"or d\"?");
    EXPECT_EQ(didYouMean("x", names), "");
}

} // namespace
} // namespace orvane
