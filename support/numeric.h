// Conversions from real numbers to integers. Resolutions come from files, so every value can occur.
#pragma once

#include <windows.h>

namespace vellum {

// Drops the fraction. What a LONG cannot hold becomes its nearest value; not a number becomes 0.
constexpr LONG truncateToLong(double value) {
    constexpr LONG kLeast = -0x7FFFFFFF - 1;
    constexpr LONG kMost = 0x7FFFFFFF;
    if (value != value) {
        return 0;
    }
    if (value <= kLeast) {
        return kLeast;
    }
    return value >= kMost ? kMost : static_cast<LONG>(value);
}

static_assert(truncateToLong(1.99) == 1);
static_assert(truncateToLong(-1.99) == -1);
static_assert(truncateToLong(1e12) == 0x7FFFFFFF);
static_assert(truncateToLong(-1e12) == -0x7FFFFFFF - 1);

} // namespace vellum
