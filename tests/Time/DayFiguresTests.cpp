// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/DayFigures.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(DayFigures, FollowTheOrderOfThePreferences)
{
    const DayKey day{2026, 3, 9};
    EXPECT_EQ(dayFigures(day, "dd/MM/yyyy"), "09/03/2026");
    EXPECT_EQ(dayFigures(day, "MM/dd/yyyy"), "03/09/2026");
    EXPECT_EQ(dayFigures(day, "dd.MM.yyyy"), "09.03.2026");
    for (const char *format : {"yyyy-MM-dd", "", "dd/MM", "whatever"})
        EXPECT_EQ(dayFigures(day, format), "2026-03-09");
}

} // namespace
} // namespace orvane
