// The tags of a saved picture.
#include "write/save_calls.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace vellum::test;

TEST(SaveTags, TheCodeDecidesCompressionAndItsExtraTag) {
    struct Expected {
        LONG code;
        DWORD compression;
        DWORD predictor; // 0: no such tag
        DWORD t4Options;
    };
    constexpr Expected kExpected[] = {{201, 1, 0, 0}, {202, 32773, 0, 0}, {203, 5, 0, 0}, {204, 5, 2, 0},
                                      {205, 2, 0, 0}, {206, 3, 0, 0},     {207, 3, 0, 1}, {208, 4, 0, 0}};
    for (const Expected &expected : kExpected) {
        SCOPED_TRACE(expected.code);
        const TempFile file;
        ASSERT_EQ(save(file.path(), PackedDib(20, 5, 1), expected.code), kDecoded);
        const SavedTiff saved(file.path());
        EXPECT_EQ(saved.number(259), expected.compression);
        EXPECT_EQ(saved.has(317), expected.predictor != 0);
        EXPECT_EQ(saved.has(292), expected.t4Options != 0);
        if (expected.predictor != 0) {
            EXPECT_EQ(saved.number(317), expected.predictor);
        }
        if (expected.t4Options != 0) {
            EXPECT_EQ(saved.number(292), expected.t4Options);
        }
        EXPECT_EQ(saved.shape(259), (SavedTiff::Shape{3, 1}));
    }
}

TEST(SaveTags, TheTextsAreThere) {
    const TempFile file;
    ASSERT_EQ(save(file.path(), PackedDib(20, 5, 8), VELLUM_SAVE_PACKBITS), kDecoded);
    const SavedTiff saved(file.path());
    EXPECT_EQ(saved.text(305), "VELLUM.DLL from Corvane Software, Inc.Version 7.00");
    EXPECT_EQ(saved.shape(305), (SavedTiff::Shape{2, 51}));
    EXPECT_EQ(saved.text(306), "");
    EXPECT_EQ(saved.shape(306), (SavedTiff::Shape{2, 1})) << "DateTime is there, and empty";
    EXPECT_EQ(saved.shape(270), (SavedTiff::Shape{2, 1}));
    EXPECT_EQ(saved.shape(315), (SavedTiff::Shape{2, 1}));
}

TEST(SaveTags, TheTagsAreThoseOfTheirDepth) {
    const std::vector<DWORD> always = {256, 257, 258, 259, 262, 266, 270, 273, 278, 279, 282, 283, 296, 305, 306, 315};
    const auto with = [&always](std::vector<DWORD> more) {
        more.insert(more.end(), always.begin(), always.end());
        std::sort(more.begin(), more.end());
        return more;
    };
    const auto tagsOf = [](WORD bits) {
        const TempFile file;
        EXPECT_EQ(save(file.path(), PackedDib(20, 5, bits), VELLUM_SAVE_UNCOMPRESSED), kDecoded);
        return SavedTiff(file.path()).tags();
    };
    EXPECT_EQ(tagsOf(1), always);
    EXPECT_EQ(tagsOf(8), with({320}));
    EXPECT_EQ(tagsOf(24), with({277, 284}));
}

TEST(SaveTags, PicturesOf4And8BitsArePaletteImagesAndOthersRgb) {
    for (const WORD bits : {WORD{4}, WORD{8}}) {
        const TempFile file;
        const PackedDib dib(20, 5, bits);
        ASSERT_EQ(save(file.path(), dib, VELLUM_SAVE_LZW), kDecoded);
        const SavedTiff saved(file.path());
        EXPECT_EQ(saved.number(262), 3U);
        EXPECT_EQ(saved.number(258), bits);
        const std::size_t colours = dib.colours.size();
        EXPECT_EQ(saved.shape(320), (SavedTiff::Shape{3, static_cast<DWORD>(3 * colours)}));
        const std::vector<DWORD> map = saved.numbers(320);
        ASSERT_EQ(map.size(), 3 * colours);
        for (std::size_t i = 0; i < colours; ++i) {
            EXPECT_EQ(map[i], dib.colours[i].rgbRed * 256U);
            EXPECT_EQ(map[colours + i], dib.colours[i].rgbGreen * 256U);
            EXPECT_EQ(map[2 * colours + i], dib.colours[i].rgbBlue * 256U);
        }
    }
    const TempFile file;
    ASSERT_EQ(save(file.path(), PackedDib(20, 5, 24), VELLUM_SAVE_LZW), kDecoded);
    const SavedTiff saved(file.path());
    EXPECT_EQ(saved.number(262), 2U);
    EXPECT_EQ(saved.numbers(258), (std::vector<DWORD>{8, 8, 8}));
    EXPECT_FALSE(saved.has(320));
}

TEST(SaveTags, AColourMapHasAnEntryForEveryPixelValue) {
    const TempFile file;
    ASSERT_EQ(save(file.path(), PackedDib(20, 5, 8, manyColours(3)), VELLUM_SAVE_PACKBITS), kDecoded);
    const std::vector<DWORD> map = SavedTiff(file.path()).numbers(320);
    ASSERT_EQ(map.size(), 768U);
    EXPECT_EQ(map[2], 3U * 256);
    EXPECT_EQ(map[3], 0U);
    EXPECT_EQ(map[256], 255U * 256);
    EXPECT_EQ(map[512 + 2], 6U * 256);
    EXPECT_EQ(map[512 + 3], 0U);
}

TEST(SaveTags, ResolutionIsInDotsPerInch) {
    struct Case {
        LONG x, y;
        DWORD xDpi, yDpi; // 0: the screen's
    };
    constexpr Case kCases[] = {{11811, 7874, 300, 200}, {2835, 3780, 72, 96}, {7873, 2834, 199, 71}, {0, 0, 0, 0},
                               {7874, 0, 200, 0},       {0, 7874, 0, 200},    {-7874, -1, 0, 0}};
    for (const Case &c : kCases) {
        const TempFile file;
        PackedDib dib(20, 5, 8);
        dib.header.biXPelsPerMeter = c.x;
        dib.header.biYPelsPerMeter = c.y;
        ASSERT_EQ(save(file.path(), dib, VELLUM_SAVE_PACKBITS), kDecoded);
        const SavedTiff saved(file.path());
        const HDC screen = GetDC(nullptr);
        const auto xDpi = c.xDpi != 0 ? c.xDpi : static_cast<DWORD>(GetDeviceCaps(screen, LOGPIXELSX));
        const auto yDpi = c.yDpi != 0 ? c.yDpi : static_cast<DWORD>(GetDeviceCaps(screen, LOGPIXELSY));
        ReleaseDC(nullptr, screen);
        EXPECT_EQ(saved.number(296), 2U);
        EXPECT_EQ(saved.numbers(282), (std::vector<DWORD>{xDpi, 1}));
        EXPECT_EQ(saved.numbers(283), (std::vector<DWORD>{yDpi, 1}));
    }
}

TEST(SetTiffImageDpi, DefinesBothResolutions) {
    const TempFile file;
    const TiffHandle tiff = OpenTiffFile(file.path(), T_CREAT);
    ASSERT_EQ(DefineTiffImage(tiff), 0);
    EXPECT_EQ(SetTiffImageDPI(tiff, 0, 0x00CB0064), 0U);
    const auto resolution = [tiff](LONG tag) {
        DWORD parts[2] = {};
        EXPECT_EQ(GetTiffImageInfo(tiff, 0, tag, parts), 1);
        return std::vector<DWORD>(parts, parts + 2);
    };
    EXPECT_EQ(resolution(282), (std::vector<DWORD>{203, 1})) << "the high word is the horizontal one";
    EXPECT_EQ(resolution(283), (std::vector<DWORD>{100, 1}));
    EXPECT_EQ(SetTiffImageDPI(tiff, 0, 0xFFFF0000), 0U);
    EXPECT_EQ(resolution(282), (std::vector<DWORD>{65535, 1}));
    EXPECT_EQ(resolution(283), (std::vector<DWORD>{0, 1}));
    DropTiffImage(tiff, 0);
    CloseTiffFile(tiff);
}

TEST(SetTiffImageDpi, OnAnImageThatIsNotRegisteredIsError10) {
    const TempFile file;
    const TiffHandle tiff = OpenTiffFile(file.path(), T_CREAT);
    for (const DWORD index : {DWORD{0}, DWORD{999}, DWORD{1000}}) {
        SetTiffError(VELLUM_OK);
        EXPECT_EQ(SetTiffImageDPI(tiff, index, 0x00CB0064), DWORD{VELLUM_TAG_MISSING});
        EXPECT_EQ(TiffError(), DWORD{VELLUM_TAG_MISSING});
    }
    CloseTiffFile(tiff);
    EXPECT_EQ(SetTiffImageDPI(nullptr, 0, 1), DWORD{VELLUM_TAG_MISSING});
}

} // namespace
