// GetTiffImagePalette: the colours of an image in a file as a logical palette.
#include "display/pictures.h"
#include "support/gdi_calls.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

std::vector<PALETTEENTRY> entriesOfPalette(HPALETTE palette) {
    std::vector<PALETTEENTRY> entries(GetPaletteEntries(palette, 0, 0, nullptr));
    GetPaletteEntries(palette, 0, static_cast<UINT>(entries.size()), entries.data());
    DeleteObject(palette);
    return entries;
}

DWORD rgb(const PALETTEENTRY &entry) {
    return DWORD{entry.peRed} << 16 | DWORD{entry.peGreen} << 8 | entry.peBlue;
}

TEST(ImagePalette, HasTheEntriesOfTheImagesColourTable) {
    for (const Depth &depth : {Depth{4, 1}, Depth{8, 1}}) {
        SCOPED_TRACE(depth.bits);
        const TempFile file(picture(4, 4, depth).tiff());
        const Dib dib(LoadTiffIntoDIB(file.path(), 0, 0));
        const GdiCalls calls;
        const HPALETTE palette = GetTiffImagePalette(file.path(), 0);
        EXPECT_EQ(calls.counts().objects, 1);
        ASSERT_NE(palette, nullptr);
        const std::vector<PALETTEENTRY> entries = entriesOfPalette(palette);
        ASSERT_EQ(entries.size(), std::size_t{1} << depth.bits);
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const BYTE *quad = dib.bytes().data() + 40 + 4 * i;
            EXPECT_EQ(rgb(entries[i]), DWORD{quad[2]} << 16 | DWORD{quad[1]} << 8 | quad[0]) << i;
            EXPECT_EQ(entries[i].peFlags, 0);
        }
    }
}

TEST(ImagePalette, AColourMapsRedsGreensAndBluesAreInTheirPlaces) {
    std::vector<std::uint32_t> map(48);
    for (std::uint32_t i = 0; i < 16; ++i) {
        map[i] = (i * 3) << 8;
        map[16 + i] = (i * 5 + 1) << 8;
        map[32 + i] = (i * 7 + 2) << 8;
    }
    tiff::Builder builder;
    builder.page({tiff::shorts(256, {2}), tiff::shorts(257, {1}), tiff::shorts(258, {4}), tiff::shorts(262, {3}),
                  tiff::shorts(320, map)},
                 {{0x12}});
    const TempFile file(builder.bytes());
    const HPALETTE palette = GetTiffImagePalette(file.path(), 0);
    ASSERT_NE(palette, nullptr);
    const std::vector<PALETTEENTRY> entries = entriesOfPalette(palette);
    ASSERT_EQ(entries.size(), 16U);
    for (std::uint32_t i = 0; i < 16; ++i) {
        EXPECT_EQ(rgb(entries[i]), (i * 3) << 16 | (i * 5 + 1) << 8 | (i * 7 + 2)) << i;
    }
}

TEST(ImagePalette, A24BitImageHasTheColourCube) {
    const TempFile file(picture(4, 4, {8, 3}).tiff());
    const HPALETTE palette = GetTiffImagePalette(file.path(), 0);
    ASSERT_NE(palette, nullptr);
    const std::vector<PALETTEENTRY> entries = entriesOfPalette(palette);
    ASSERT_EQ(entries.size(), 256U);
    EXPECT_EQ(rgb(entries[0]), 0U);
    EXPECT_EQ(rgb(entries[254]), 0xC0E0C0U);
    EXPECT_EQ(rgb(entries[255]), 0xFFFFFFU);
}

TEST(ImagePalette, ABilevelImageHasNone) {
    const TempFile file(picture(4, 4, {1, 1}).tiff());
    const GdiCalls calls;
    EXPECT_EQ(GetTiffImagePalette(file.path(), 0), nullptr);
    EXPECT_EQ(calls.counts().objects, 0);
}

TEST(ImagePalette, FilesAndImagesThatAreNotThereHaveNone) {
    EXPECT_EQ(GetTiffImagePalette("no such file.tif", 0), nullptr);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    const TempFile file(picture(4, 4, {8, 1}).tiff());
    EXPECT_EQ(GetTiffImagePalette(file.path(), 1), nullptr);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    Picture deep = picture(4, 4, {8, 1});
    deep.page.bits = 16;
    const TempFile badDepth(deep.tiff());
    EXPECT_EQ(GetTiffImagePalette(badDepth.path(), 0), nullptr);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_BAD_COLOR_FORMAT});
}

} // namespace
