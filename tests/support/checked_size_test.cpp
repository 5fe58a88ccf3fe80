// Sizes that cannot wrap.
#include "support/checked_size.h"

#include <gtest/gtest.h>

namespace vellum {
namespace {

TEST(Size, FitsUpToTheLargestBlock) {
    EXPECT_EQ(Size(0).fit(), 0u);
    EXPECT_EQ(Size(0x7FFFFFFF).fit(), 0x7FFFFFFFu);
    EXPECT_FALSE(Size(0x80000000u).fit());
}

TEST(Size, OnceTooLargeStaysTooLarge) {
    const Size large = Size(0x7FFFFFFF) + Size(1);
    EXPECT_TRUE(large.tooLarge());
    EXPECT_TRUE((large + Size(0)).tooLarge());
    EXPECT_TRUE((large * Size(2)).tooLarge());
    EXPECT_TRUE((Size(0x10000) * Size(0x10000)).tooLarge());
    EXPECT_TRUE((Size(~std::uint64_t{0}) + Size(2)).tooLarge());
}

} // namespace
} // namespace vellum
