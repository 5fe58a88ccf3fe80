// The roundings of a row, at the widths where they change and at those where 32 bits would wrap.
#include "support/row_bytes.h"

#include <gtest/gtest.h>

namespace vellum {
namespace {

TEST(RowBytes, OfALineAreWholeBytes) {
    EXPECT_EQ(lineBytes(0, 1).fit(), 0u);
    EXPECT_EQ(lineBytes(1, 1).fit(), 1u);
    EXPECT_EQ(lineBytes(8, 1).fit(), 1u);
    EXPECT_EQ(lineBytes(9, 1).fit(), 2u);
    EXPECT_EQ(lineBytes(3, 4).fit(), 2u);
    EXPECT_EQ(lineBytes(3, 24).fit(), 9u);
}

TEST(RowBytes, OfADibAre32Bits) {
    EXPECT_EQ(dibRowBytes(0, 1).fit(), 0u);
    EXPECT_EQ(dibRowBytes(1, 1).fit(), 4u);
    EXPECT_EQ(dibRowBytes(32, 1).fit(), 4u);
    EXPECT_EQ(dibRowBytes(33, 1).fit(), 8u);
    EXPECT_EQ(dibRowBytes(5, 24).fit(), 16u);
}

TEST(RowBytes, OfADeviceBitmapAre16Bits) {
    EXPECT_EQ(wordRowBytes(0, 1).fit(), 0u);
    EXPECT_EQ(wordRowBytes(1, 1).fit(), 2u);
    EXPECT_EQ(wordRowBytes(16, 1).fit(), 2u);
    EXPECT_EQ(wordRowBytes(17, 1).fit(), 4u);
    EXPECT_EQ(wordRowBytes(5, 24).fit(), 16u);
    EXPECT_EQ(wordRowBytes(1, 24).fit(), 4u);
}

TEST(RowBytes, DoNotWrap) {
    EXPECT_EQ(lineBytes(0xFFFFFFFF, 1).fit(), 0x20000000u);
    EXPECT_EQ(dibRowBytes(0xFFFFFFFF, 1).fit(), 0x20000000u);
    EXPECT_EQ(wordRowBytes(0xFFFFFFFF, 1).fit(), 0x20000000u);
    for (const Size &size : {lineBytes(0xFFFFFFFF, 24), dibRowBytes(0xFFFFFFFF, 24), wordRowBytes(0xFFFFFFFF, 24)}) {
        EXPECT_TRUE(size.tooLarge());
    }
}

} // namespace
} // namespace vellum
