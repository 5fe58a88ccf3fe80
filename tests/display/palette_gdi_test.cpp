// The rules by which a packed DIB's header and colour table become a logical palette.
#include "display/palette.h"
#include "support/global_memory.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

// A header with room for colours behind it; colour i is (i, 2i, 3i).
struct PackedDib {
    BITMAPINFOHEADER header{};
    RGBQUAD colours[300];

    explicit PackedDib(WORD bits, DWORD used = 0) {
        header.biSize = sizeof header;
        header.biWidth = 4;
        header.biHeight = 4;
        header.biPlanes = 1;
        header.biBitCount = bits;
        header.biClrUsed = used;
        for (DWORD i = 0; i < 300; ++i) {
            colours[i] = {static_cast<BYTE>(3 * i), static_cast<BYTE>(2 * i), static_cast<BYTE>(i), 0x77};
        }
    }
    [[nodiscard]] OwnedPalette palette() const { return makePalette(&header, sizeof *this); }
};

UINT sizeOf(const OwnedPalette &palette) {
    return GetPaletteEntries(palette.get(), 0, 0, nullptr);
}

PALETTEENTRY entryOf(const OwnedPalette &palette, UINT index) {
    PALETTEENTRY entry{};
    GetPaletteEntries(palette.get(), index, 1, &entry);
    return entry;
}

TEST(Palette, HasTheColoursUsed) {
    for (const DWORD used : {DWORD{1}, DWORD{2}, DWORD{17}, DWORD{256}, DWORD{300}}) {
        for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{16}, WORD{24}, WORD{32}}) {
            const OwnedPalette palette = PackedDib(bits, used).palette();
            ASSERT_TRUE(palette);
            ASSERT_EQ(sizeOf(palette), used) << bits << " bits";
            const PALETTEENTRY last = entryOf(palette, used - 1);
            EXPECT_EQ(last.peRed, static_cast<BYTE>(used - 1));
            EXPECT_EQ(last.peGreen, static_cast<BYTE>(2 * (used - 1)));
            EXPECT_EQ(last.peBlue, static_cast<BYTE>(3 * (used - 1)));
            EXPECT_EQ(last.peFlags, 0) << "whatever the colour table's fourth byte says";
        }
    }
}

TEST(Palette, WithoutACountHasAsManyColoursAsTheDepth) {
    EXPECT_EQ(sizeOf(PackedDib(1).palette()), 2U);
    EXPECT_EQ(sizeOf(PackedDib(4).palette()), 16U);
    EXPECT_EQ(sizeOf(PackedDib(8).palette()), 256U);
    for (const WORD bits : {WORD{0}, WORD{2}, WORD{16}, WORD{32}}) {
        EXPECT_FALSE(PackedDib(bits).palette()) << bits;
    }
}

TEST(Palette, Of24BitsIsACubeOfEightRedsEightGreensAndFourBlues) {
    const OwnedPalette palette = PackedDib(24).palette();
    ASSERT_EQ(sizeOf(palette), 256U);
    for (UINT k = 0; k < 255; ++k) {
        const PALETTEENTRY entry = entryOf(palette, k);
        EXPECT_EQ(entry.peRed, 32 * (k % 8)) << k;
        EXPECT_EQ(entry.peGreen, 32 * (k / 8 % 8)) << k;
        EXPECT_EQ(entry.peBlue, 64 * (k / 64)) << k;
        EXPECT_EQ(entry.peFlags, 0) << k;
    }
}

// By design: the steps of the cube end at 224, 224, 192; pictures need a true white.
TEST(Palette, TheCubesLastEntryIsWhite) {
    const PALETTEENTRY white = entryOf(PackedDib(24).palette(), 255);
    EXPECT_EQ(white.peRed, 255);
    EXPECT_EQ(white.peGreen, 255);
    EXPECT_EQ(white.peBlue, 255);
    EXPECT_EQ(white.peFlags, 0);
}

TEST(Palette, NeedsAHeaderOf40Bytes) {
    EXPECT_FALSE(makePalette(nullptr, 1000));
    PackedDib other(8);
    other.header.biSize = 12;
    EXPECT_FALSE(other.palette());
    other.header.biSize = 108;
    EXPECT_FALSE(other.palette());
    const PackedDib cut(24);
    EXPECT_FALSE(makePalette(&cut.header, sizeof cut.header - 1));
    EXPECT_TRUE(makePalette(&cut.header, sizeof cut.header)) << "a cube needs no colour table";
}

TEST(Palette, NeedsTheColoursThatTheHeaderPromises) {
    const PackedDib dib(8);
    EXPECT_TRUE(makePalette(&dib.header, 40 + 256 * 4));
    EXPECT_FALSE(makePalette(&dib.header, 40 + 256 * 4 - 1));
    EXPECT_FALSE(PackedDib(8, 301).palette());
    EXPECT_FALSE(PackedDib(8, 0x10000).palette());
    EXPECT_FALSE(PackedDib(8, 0xFFFFFFFF).palette());
}

TEST(Palette, IsMadeOfABlockToo) {
    const PackedDib dib(8, 5);
    const auto *bytes = reinterpret_cast<const BYTE *>(&dib);
    const HGLOBAL block = makeBlock(Bytes(bytes, bytes + 40 + 5 * 4));
    EXPECT_EQ(sizeOf(makePalette(block)), 5U);
    EXPECT_EQ(lockCount(block), 0U);
    GlobalFree(block);
    EXPECT_FALSE(makePalette(static_cast<HGLOBAL>(nullptr)));
}

} // namespace
} // namespace vellum::test
