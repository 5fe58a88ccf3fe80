// Packed DIBs as bitmaps that can be drawn on, and bitmaps as packed DIBs: nothing changes on the way.
#include "display/dib_bitmap.h"
#include "write/bitmaps.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

TEST(DibBitmap, ADrawableDibHasTheDibsPixels) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{24}}) {
        for (const LONG width : {1, 7, 8, 31, 33}) {
            const PackedDib dib(width, 5, bits);
            const DibBlock block(dib);
            const DrawableDib drawable{DibView(block.get())};
            ASSERT_TRUE(drawable);
            EXPECT_TRUE(pixelsOf(drawable.bitmap()) == pixelsOf(Dib(makeBlock(dib.bytes())))) << bits << ", " << width;
        }
    }
}

TEST(DibBitmap, PackedAgainItIsTheSameDib) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{16}, WORD{24}, WORD{32}}) {
        PackedDib dib(13, 6, bits);
        dib.header.biXPelsPerMeter = 1234;
        dib.header.biClrImportant = 1;
        const DibBlock block(dib);
        DrawableDib drawable{DibView(block.get())};
        const GlobalBlock packed = std::move(drawable).pack();
        EXPECT_TRUE(blockBytes(packed.get()) == dib.bytes()) << bits;
    }
}

TEST(DibBitmap, WhatIsDrawnIsInThePackedDib) {
    const DibBlock block(PackedDib(20, 6, 24));
    DrawableDib drawable{DibView(block.get())};
    {
        const MemoryDc dc(nullptr);
        const SelectedObject selected(dc.get(), drawable.bitmap());
        SetPixel(dc.get(), 3, 1, RGB(1, 2, 3));
    }
    const GlobalBlock packed = std::move(drawable).pack();
    EXPECT_EQ(pixelsOf(Dib(makeBlock(blockBytes(packed.get()))))[20 + 3], 0x010203U);
}

TEST(DibBitmap, APackedBitmapHasItsPixelsAndItsColourTable) {
    const std::vector<RGBQUAD> colours = manyColours(256);
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{24}, WORD{32}}) {
        const auto count = static_cast<std::ptrdiff_t>(bits <= 8 ? 1 << bits : 0);
        const TestBitmap bitmap = sectionBitmap(35, 9, bits, {colours.begin(), colours.begin() + count});
        const Dib dib(packBitmap(bitmap.get()).release());
        ASSERT_TRUE(dib);
        EXPECT_EQ(dib.header().biBitCount, bits == 32 ? 24 : bits);
        EXPECT_EQ(dib.header().biClrUsed, static_cast<DWORD>(count));
        EXPECT_EQ(dib.header().biXPelsPerMeter, 0);
        EXPECT_TRUE(pixelsOf(dib) == pixelsOf(bitmap.get())) << bits;
        EXPECT_EQ(dib.bytes().size(), dib.bitsOffset() + dib.header().biSizeImage);
    }
    const TestBitmap mono = monochromeBitmap(35, 9);
    EXPECT_TRUE(pixelsOf(Dib(packBitmap(mono.get()).release())) == bilevelPixels(35, 9));
    const TestBitmap screen = screenBitmap(35, 9);
    EXPECT_TRUE(pixelsOf(Dib(packBitmap(screen.get()).release())) == colouredPixels(35, 9));
}

TEST(DibBitmap, APackedBilevelBitmapHasNothingBehindItsRows) {
    for (const LONG width : {1, 7, 8, 9, 15, 16, 17, 31, 32, 33, 100}) {
        SCOPED_TRACE(width);
        const TestBitmap mono = monochromeBitmap(width, 5);
        const Dib dib(packBitmap(mono.get()).release());
        ASSERT_TRUE(dib);
        EXPECT_TRUE(pixelsOf(dib) == bilevelPixels(width, 5));
        const std::size_t stride = static_cast<std::size_t>((width + 31) / 32 * 4);
        for (std::size_t row = 0; row < 5; ++row) {
            for (auto bit = static_cast<std::size_t>(width); bit < stride * 8; ++bit) {
                const BYTE byte = dib.bytes()[dib.bitsOffset() + row * stride + bit / 8];
                EXPECT_EQ(byte >> (7 - bit % 8) & 1, 0) << bit;
            }
        }
    }
}

TEST(DibBitmap, ACopiedBitmapIsAnotherOneWithTheSamePixels) {
    for (const TestBitmap &bitmap : {monochromeBitmap(35, 9), screenBitmap(35, 9)}) {
        const OwnedBitmap copy = copyBitmap(bitmap.get());
        ASSERT_TRUE(copy);
        EXPECT_NE(copy.get(), bitmap.get());
        EXPECT_TRUE(pixelsOf(copy.get()) == pixelsOf(bitmap.get()));
        BITMAP from{};
        BITMAP to{};
        GetObject(bitmap.get(), sizeof from, &from);
        GetObject(copy.get(), sizeof to, &to);
        EXPECT_EQ(to.bmBitsPixel, from.bmBitsPixel);
        EXPECT_EQ(to.bmPlanes, from.bmPlanes);
    }
}

TEST(DibBitmap, WhatIsNoBitmapGivesNothing) {
    const auto none = reinterpret_cast<HBITMAP>(0x1234);
    EXPECT_EQ(describeBitmap(none).bmWidth, 0);
    EXPECT_EQ(describeBitmap(nullptr).bmWidth, 0);
    EXPECT_FALSE(packBitmap(none));
    EXPECT_FALSE(copyBitmap(none));
    setResolution(nullptr, 200, 200);
}

TEST(DibBitmap, AResolutionIsInPixelsPerMetreTruncated) {
    const DibBlock block(PackedDib(3, 3, 1));
    struct Case {
        DWORD dotsPerInch;
        LONG pixelsPerMeter;
    };
    for (const Case &entry : {Case{0, 0}, Case{98, 3858}, Case{200, 7873}, Case{204, 8031}, Case{300, 11811},
                              Case{0xFFFFFFFF, 0x7FFFFFFF}}) {
        setResolution(block.get(), entry.dotsPerInch, 72);
        const GlobalView<BITMAPINFOHEADER> header(block.get());
        EXPECT_EQ(header->biXPelsPerMeter, entry.pixelsPerMeter);
        EXPECT_EQ(header->biYPelsPerMeter, 2834);
    }
}

} // namespace
} // namespace vellum::test
