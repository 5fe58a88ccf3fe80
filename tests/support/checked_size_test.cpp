// Sizes that cannot wrap, and the roundings of a row.
#include "support/checked_size.h"
#include "support/row_bytes.h"

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

TEST(RowBytes, ALineRoundsUpToBytes) {
    EXPECT_EQ(lineBytes(0, 1).fit(), 0u);
    EXPECT_EQ(lineBytes(1, 1).fit(), 1u);
    EXPECT_EQ(lineBytes(8, 1).fit(), 1u);
    EXPECT_EQ(lineBytes(9, 1).fit(), 2u);
    EXPECT_EQ(lineBytes(3, 4).fit(), 2u);
    EXPECT_EQ(lineBytes(3, 24).fit(), 9u);
}

TEST(RowBytes, ADibRowRoundsUpToFourBytes) {
    EXPECT_EQ(dibRowBytes(1, 1).fit(), 4u);
    EXPECT_EQ(dibRowBytes(32, 1).fit(), 4u);
    EXPECT_EQ(dibRowBytes(33, 1).fit(), 8u);
    EXPECT_EQ(dibRowBytes(3, 24).fit(), 12u);
}

TEST(RowBytes, ABitmapRowRoundsUpToTwoBytes) {
    EXPECT_EQ(wordRowBytes(1, 1).fit(), 2u);
    EXPECT_EQ(wordRowBytes(16, 1).fit(), 2u);
    EXPECT_EQ(wordRowBytes(17, 1).fit(), 4u);
    EXPECT_EQ(wordRowBytes(3, 24).fit(), 10u);
}

TEST(RowBytes, TheWidestImagesDoNotWrap) {
    EXPECT_EQ(lineBytes(0xFFFFFFFF, 1).fit(), 0x20000000u);
    EXPECT_EQ(dibRowBytes(0xFFFFFFFF, 1).fit(), 0x20000000u);
    EXPECT_EQ(wordRowBytes(0xFFFFFFFF, 1).fit(), 0x20000000u);
    EXPECT_TRUE(lineBytes(0xFFFFFFFF, 24).tooLarge());
    EXPECT_TRUE(dibRowBytes(0xFFFFFFFF, 24).tooLarge());
}

} // namespace
} // namespace vellum
