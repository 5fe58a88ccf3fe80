// Bilevel pictures put on DIBs of every depth, pixel by pixel.
#include "annot/stamp.h"

#include "display/packed_pixels.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

#include <random>

namespace vellum::test {
namespace {

const BYTE *rowOf(const DibView &dib, LONG fromTop) {
    return dib.bits() + static_cast<std::size_t>(dib.header().biHeight - 1 - fromTop) * dib.stride();
}

// Black and white by the depth; with a colour table they are colours 1 and 0, or 5 and 9.
PackedDib paper(LONG width, LONG height, WORD bits) {
    PackedDib dib(width, height, bits);
    if (bits == 4 || bits == 8) {
        dib.colours[5] = kBlackQuad;
        dib.colours[9] = kWhiteQuad;
    }
    return dib;
}

unsigned valueOf(WORD bits, bool white) {
    switch (bits) {
    case 1:
        return white ? 0 : 1;
    case 16:
        return white ? 0x7FFF : 0;
    case 24:
    case 32:
        return white ? 0xFFFFFF : 0;
    default:
        return white ? 9 : 5;
    }
}

void expectStamped(const PackedDib &paper, LONG left, LONG top, const PackedDib &picture, Ink ink) {
    SCOPED_TRACE(testing::Message() << paper.header.biBitCount << " bits, at " << left << ", " << top);
    const WORD bits = paper.header.biBitCount;
    const DibBlock before(paper);
    const DibBlock after(paper);
    const DibBlock stamped(picture);
    const DibView from(stamped.get());
    stamp(DibView(after.get()), left, top, from, ink);
    const DibView plain(before.get());
    const DibView result(after.get());
    ASSERT_TRUE(result);
    for (LONG y = 0; y < paper.header.biHeight; ++y) {
        for (LONG x = 0; x < paper.header.biWidth; ++x) {
            unsigned expected = pixelOf(rowOf(plain, y), x, bits);
            const std::int64_t column = std::int64_t{x} - left;
            const std::int64_t row = std::int64_t{y} - top;
            if (column >= 0 && row >= 0 && column < picture.header.biWidth && row < picture.header.biHeight) {
                const bool white = pixelOf(rowOf(from, static_cast<LONG>(row)), static_cast<LONG>(column), 1) != 0;
                expected = !white || ink == Ink::BlackAndWhite ? valueOf(bits, white) : expected;
            }
            ASSERT_EQ(pixelOf(rowOf(result, y), x, bits), expected) << x << ", " << y;
        }
        const std::size_t padding = paper.stride() - paper.lineBytes();
        ASSERT_EQ(std::memcmp(rowOf(result, y) + paper.lineBytes(), rowOf(plain, y) + paper.lineBytes(), padding), 0);
    }
}

TEST(Stamp, CoversItsPixelsAtEveryDepthAndPlace) {
    std::mt19937 random(7);
    const auto upTo = [&random](LONG most) { return static_cast<LONG>(random() % static_cast<unsigned>(most)); };
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{16}, WORD{24}, WORD{32}}) {
        for (int i = 0; i < 60; ++i) {
            PackedDib picture(1 + upTo(20), 1 + upTo(8), 1);
            picture.seed = static_cast<BYTE>(random());
            expectStamped(paper(1 + upTo(30), 1 + upTo(12), bits), upTo(50) - 25, upTo(30) - 15, picture,
                          i % 2 == 0 ? Ink::BlackOnly : Ink::BlackAndWhite);
        }
    }
}

TEST(Stamp, FarBesideThePaperTouchesNothing) {
    constexpr LONG kMost = 2147483647;
    for (const LONG remote : {kMost, -kMost, -kMost - 1}) {
        expectStamped(paper(9, 9, 8), remote, 0, PackedDib(20, 20, 1), Ink::BlackAndWhite);
        expectStamped(paper(9, 9, 8), 0, remote, PackedDib(20, 20, 1), Ink::BlackAndWhite);
    }
}

TEST(Stamp, TakesTheFirstOfTheNearestColours) {
    PackedDib dib(8, 1, 8, {quad(255, 0, 0), quad(9, 0, 0), quad(0, 9, 0), quad(250, 250, 250), quad(250, 250, 250)});
    const DibBlock block(dib);
    const DibBlock picture(PackedDib(8, 1, 1));
    stamp(DibView(block.get()), 0, 0, DibView(picture.get()), Ink::BlackAndWhite);
    const DibView result(block.get());
    for (LONG x = 0; x < 8; ++x) {
        EXPECT_EQ(result.bits()[x], pixelOf(rowOf(DibView(picture.get()), 0), x, 1) != 0 ? 3 : 1);
    }
}

TEST(Stamp, OfAnythingButABilevelPictureOnAPictureTouchesNothing) {
    const PackedDib dib(8, 4, 8);
    const DibBlock block(dib);
    stamp(DibView(block.get()), 0, 0, DibView(nullptr), Ink::BlackAndWhite);
    stamp(DibView(block.get()), 0, 0, DibView(block.get()), Ink::BlackAndWhite);
    stamp(DibView(nullptr), 0, 0, DibView(block.get()), Ink::BlackAndWhite);
    EXPECT_EQ(blockBytes(block.get()), dib.bytes());
}

} // namespace
} // namespace vellum::test
