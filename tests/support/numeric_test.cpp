// Conversions of real numbers, and the arithmetic that the resolutions depend on.
#include "support/numeric.h"

#include <gtest/gtest.h>

#include <limits>

namespace vellum {
namespace {

TEST(Numeric, DropsTheFraction) {
    EXPECT_EQ(truncateToLong(2.999), 2);
    EXPECT_EQ(truncateToLong(-2.999), -2);
    EXPECT_EQ(truncateToLong(-0.5), 0);
}

TEST(Numeric, WhatALongCannotHoldBecomesItsNearestValue) {
    EXPECT_EQ(truncateToLong(2147483647.0), 2147483647);
    EXPECT_EQ(truncateToLong(2147483648.0), 2147483647);
    EXPECT_EQ(truncateToLong(-2147483649.0), -2147483647 - 1);
    EXPECT_EQ(truncateToLong(std::numeric_limits<double>::infinity()), 2147483647);
    EXPECT_EQ(truncateToLong(std::numeric_limits<double>::quiet_NaN()), 0);
}

// Extended precision would give 11810 and 199.
TEST(Numeric, ProductsAreRoundedToDoublesBeforeTheyAreTruncated) {
    volatile double dotsPerInch = 300;
    volatile double pixelsPerMeter = 7874;
    EXPECT_EQ(truncateToLong(dotsPerInch * 39.37), 11811);
    EXPECT_EQ(truncateToLong(pixelsPerMeter * 0.0254000508001016), 200);
}

} // namespace
} // namespace vellum
