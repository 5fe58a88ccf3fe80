// The scaler, pixel by pixel against its rule, at every depth.
#include "annot/rectangle_scaler.h"

#include "display/packed_pixels.h"
#include "support/faults.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace vellum::test {
namespace {

// The first pixel of row `row`, from the top, of a DIB's block.
const BYTE *rowOf(const DibView &dib, LONG row) {
    return dib.bits() + static_cast<std::size_t>(dib.header().biHeight - 1 - row) * dib.stride();
}

// Where pixel `i` of `to` comes from, of `from` pixels that begin at `first`.
LONG origin(LONG first, LONG i, LONG from, LONG to) {
    return first + static_cast<LONG>(std::floor(static_cast<double>(i) * from / to + 0.5));
}

unsigned expectedPixel(const DibView &dib, const PixelRectangle &part, LONG width, LONG height, LONG x, LONG y) {
    const LONG row = origin(part.y, y, part.height, height);
    const LONG column = origin(part.x, x, part.width, width);
    if (row >= part.y + part.height || row >= dib.header().biHeight || column >= dib.header().biWidth) {
        return 0;
    }
    return pixelOf(rowOf(dib, row), column, dib.bitsPerPixel());
}

void expectScaled(const PackedDib &picture, const PixelRectangle &part, LONG width, LONG height) {
    SCOPED_TRACE(testing::Message() << picture.header.biBitCount << " bits, " << part.x << "," << part.y << " "
                                    << part.width << "x" << part.height << " to " << width << "x" << height);
    const DibBlock block(picture);
    const DibView source(block.get());
    const GlobalBlock scaled = scaleRectangle(source, part, width, height);
    const DibView result(scaled.get());
    ASSERT_TRUE(result);
    ASSERT_EQ(result.header().biWidth, width);
    ASSERT_EQ(result.header().biHeight, height);
    ASSERT_EQ(result.bitsPerPixel(), picture.header.biBitCount);
    for (LONG y = 0; y < height; ++y) {
        for (LONG x = 0; x < width; ++x) {
            ASSERT_EQ(pixelOf(rowOf(result, y), x, result.bitsPerPixel()),
                      expectedPixel(source, part, width, height, x, y))
                << "at " << x << ", " << y;
        }
        // The padding is zero.
        const std::size_t pixelBits = static_cast<std::size_t>(width) * result.bitsPerPixel();
        for (std::size_t bit = pixelBits; bit < std::size_t{result.stride()} * 8; ++bit) {
            ASSERT_EQ(rowOf(result, y)[bit / 8] >> (7 - bit % 8) & 1, 0) << "bit " << bit << " of row " << y;
        }
    }
}

TEST(RectangleScaler, FollowsItsRuleAtEveryDepthForAnyRectangle) {
    std::mt19937 random(20);
    const auto upTo = [&random](LONG most) { return static_cast<LONG>(random() % static_cast<unsigned>(most)); };
    for (const WORD bits : kBitsPerPixel) {
        for (int i = 0; i < 150; ++i) {
            PackedDib picture(1 + upTo(40), 1 + upTo(20), bits);
            picture.seed = static_cast<BYTE>(random());
            const PixelRectangle part = {upTo(picture.header.biWidth), upTo(picture.header.biHeight), 1 + upTo(50),
                                         1 + upTo(30)};
            expectScaled(picture, part, 1 + upTo(60), 1 + upTo(40));
        }
    }
}

TEST(RectangleScaler, CopiesAtOneToOneFromEveryColumn) {
    for (const WORD bits : kBitsPerPixel) {
        for (LONG x = 0; x < 19; ++x) {
            expectScaled(PackedDib(19, 3, bits), {x, 1, 19 - x, 2}, 19 - x, 2);
        }
    }
}

// Odd columns lie in the low half of a byte.
TEST(RectangleScaler, TakesNibblesFromOddColumns) {
    Bytes bytes = PackedDib(4, 1, 4).bytes();
    bytes[bytes.size() - 4] = 0x12;
    bytes[bytes.size() - 3] = 0x34;
    const DibBlock block(bytes);
    const GlobalBlock scaled = scaleRectangle(DibView(block.get()), {1, 0, 3, 1}, 3, 1);
    const DibView result(scaled.get());
    ASSERT_TRUE(result);
    EXPECT_EQ(result.bits()[0], 0x23);
    EXPECT_EQ(result.bits()[1], 0x40);
}

// By design: the position of the last rows is rounded up to the row below the rectangle, which is not shown.
TEST(RectangleScaler, EnlargedLeavesItsLastRowsZero) {
    Bytes bytes = PackedDib(1, 2, 8).bytes();
    bytes[bytes.size() - 8] = 9; // the lower row
    bytes[bytes.size() - 4] = 7; // the upper row
    const DibBlock block(bytes);
    const GlobalBlock scaled = scaleRectangle(DibView(block.get()), {0, 0, 1, 2}, 1, 8);
    const DibView result(scaled.get());
    ASSERT_TRUE(result);
    std::string rows;
    for (LONG y = 0; y < 8; ++y) {
        rows += static_cast<char>('0' + *rowOf(result, y));
    }
    EXPECT_EQ(rows, "77999900");
}

// By design, likewise: columns are rounded up, too, and show what is beside the rectangle.
TEST(RectangleScaler, EnlargedShowsTheColumnBesideItsRectangle) {
    Bytes bytes = PackedDib(2, 1, 8).bytes();
    bytes[bytes.size() - 4] = 7;
    bytes[bytes.size() - 3] = 9;
    const DibBlock block(bytes);
    const GlobalBlock one = scaleRectangle(DibView(block.get()), {0, 0, 1, 1}, 4, 1);
    ASSERT_TRUE(DibView(one.get()));
    EXPECT_EQ(Bytes(DibView(one.get()).bits(), DibView(one.get()).bits() + 4), (Bytes{7, 7, 9, 9}));
    const GlobalBlock other = scaleRectangle(DibView(block.get()), {1, 0, 1, 1}, 4, 1);
    ASSERT_TRUE(DibView(other.get()));
    EXPECT_EQ(Bytes(DibView(other.get()).bits(), DibView(other.get()).bits() + 4), (Bytes{9, 9, 0, 0}))
        << "beyond the picture there is nothing";
}

TEST(RectangleScaler, KeepsHeaderColoursAndResolution) {
    PackedDib picture(5, 4, 8, manyColours(17));
    picture.header.biXPelsPerMeter = 1234;
    picture.header.biYPelsPerMeter = 4321;
    picture.header.biSizeImage = 999;
    const DibBlock block(picture);
    const GlobalBlock scaled = scaleRectangle(DibView(block.get()), {0, 0, 5, 4}, 3, 2);
    const DibView result(scaled.get());
    ASSERT_TRUE(result);
    EXPECT_EQ(result.header().biXPelsPerMeter, 1234);
    EXPECT_EQ(result.header().biYPelsPerMeter, 4321);
    EXPECT_EQ(result.header().biSizeImage, 0U) << "that of another picture";
    EXPECT_EQ(result.colourCount(), 17U);
    EXPECT_EQ(std::memcmp(result.colours(), picture.colours.data(), 17 * sizeof(RGBQUAD)), 0);
    EXPECT_EQ(GlobalSize(scaled.get()), 40U + 17 * 4 + (2 + 1) * 4 + 16);
}

TEST(RectangleScaler, OfALongerHeaderKeepsTheFirst40Bytes) {
    PackedDib picture(3, 2, 24);
    Bytes bytes = picture.bytes();
    picture.header.biSize = 52;
    std::memcpy(bytes.data(), &picture.header, sizeof picture.header);
    bytes.insert(bytes.begin() + 40, 12, BYTE{0x33});
    const DibBlock block(bytes);
    const DibView source(block.get());
    ASSERT_TRUE(source);
    const GlobalBlock scaled = scaleRectangle(source, {0, 0, 3, 2}, 3, 2);
    const DibView result(scaled.get());
    ASSERT_TRUE(result);
    EXPECT_EQ(result.header().biSize, 40U);
    EXPECT_EQ(std::memcmp(rowOf(result, 0), rowOf(source, 0), 9), 0);
}

TEST(RectangleScaler, RefusesRectanglesThatDoNotBeginInThePicture) {
    const DibBlock block(PackedDib(10, 5, 8));
    const DibView dib(block.get());
    EXPECT_TRUE(scaleRectangle(dib, {9, 4, 1, 1}, 1, 1));
    EXPECT_TRUE(scaleRectangle(dib, {9, 4, 2147483647, 2147483647}, 1, 1));
    const PixelRectangle refused[] = {{10, 0, 1, 1},         {0, 5, 1, 1},         {-1, 0, 1, 1}, {0, -1, 1, 1},
                                      {0, 0, 0, 1},          {0, 0, 1, 0},         {0, 0, -1, 1}, {0, 0, 1, -1},
                                      {2147483647, 0, 1, 1}, {0, 2147483647, 1, 1}};
    for (const PixelRectangle &part : refused) {
        EXPECT_FALSE(scaleRectangle(dib, part, 1, 1)) << part.x << "," << part.y;
    }
    EXPECT_FALSE(scaleRectangle(dib, {0, 0, 1, 1}, 0, 1));
    EXPECT_FALSE(scaleRectangle(dib, {0, 0, 1, 1}, 1, 0));
    EXPECT_FALSE(scaleRectangle(dib, {0, 0, 1, 1}, -1, 1));
    EXPECT_FALSE(scaleRectangle(dib, {0, 0, 1, 1}, 1, -1));
    EXPECT_FALSE(scaleRectangle(DibView(nullptr), {0, 0, 1, 1}, 1, 1));
}

TEST(RectangleScaler, RefusesOtherDepthsAndSizesThatNoBlockHas) {
    for (const WORD bits : {WORD{16}, WORD{32}}) {
        const DibBlock block(PackedDib(4, 4, bits));
        ASSERT_TRUE(DibView(block.get()));
        EXPECT_FALSE(scaleRectangle(DibView(block.get()), {0, 0, 4, 4}, 4, 4)) << bits;
    }
    const DibBlock block(PackedDib(4, 4, 24));
    EXPECT_FALSE(scaleRectangle(DibView(block.get()), {0, 0, 4, 4}, 2147483647, 2147483647));
    EXPECT_FALSE(scaleRectangle(DibView(block.get()), {0, 0, 4, 4}, 65536, 65536));
}

// A rectangle that is as large as a number can tell: products of two of them need 64 bits.
TEST(RectangleScaler, StepsThroughTheLargestRectangles) {
    const DibBlock block(PackedDib(10, 5, 8));
    const DibView dib(block.get());
    const GlobalBlock scaled = scaleRectangle(dib, {1, 1, 2147483647, 2147483647}, 3, 2);
    const DibView result(scaled.get());
    ASSERT_TRUE(result);
    EXPECT_EQ(Bytes(rowOf(result, 0), rowOf(result, 0) + 3), (Bytes{rowOf(dib, 1)[1], 0, 0}));
    EXPECT_EQ(Bytes(rowOf(result, 1), rowOf(result, 1) + 3), (Bytes{0, 0, 0}));
}

TEST(RectangleScaler, WithoutMemoryGivesNothing) {
    const DibBlock block(PackedDib(4, 4, 8));
    const DibView dib(block.get());
    const FailNth fault(Call::Allocate, 0);
    EXPECT_FALSE(scaleRectangle(dib, {0, 0, 4, 4}, 4, 4));
    EXPECT_TRUE(fault.happened());
}

} // namespace
} // namespace vellum::test
