// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/TypedAmounts.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(TypedAmounts, ReadRatesWithEitherDecimalSign)
{
    EXPECT_EQ(parseTypedRate("12.50"), 12.5);
    EXPECT_EQ(parseTypedRate(" 12,5 "), 12.5);
    EXPECT_EQ(parseTypedRate("0.29"), 0.29);
    EXPECT_EQ(parseTypedRate("1000000"), 1e6);
    for (const char *text : {"", "12.", ".5", "12.505", "-3", "80 EUR", "1,000.00", "1000000.01", "1e3"})
        EXPECT_FALSE(parseTypedRate(text)) << text;
    EXPECT_EQ(rateText(12.5), "12.50");
    EXPECT_EQ(rateText(1e6), "1000000.00");
}

TEST(TypedAmounts, ReadEstimatesThatNameTheirUnit)
{
    EXPECT_EQ(parseTypedEstimate("40h"), 144000);
    EXPECT_EQ(parseTypedEstimate("1:30"), 5400);
    EXPECT_EQ(parseTypedEstimate("1.5"), 5400) << "decimals are hours";
    for (const char *text : {"", "40", "much", "-1h"})
        EXPECT_FALSE(parseTypedEstimate(text)) << text;
}

} // namespace
} // namespace orvane
