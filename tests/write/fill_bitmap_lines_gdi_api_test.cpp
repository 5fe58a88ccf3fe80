// The fill functions that take lines out of a bitmap, with records as programs make them.
#include "write/bitmaps.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

struct Filling {
    struct {
        BITMAPINFOHEADER header{};
        RGBQUAD colours[256]{};
    } info;
    SaveLineContext context{};
    Bytes line = Bytes(64, BYTE{0xAA});

    Filling(HBITMAP bitmap, int width, int height, WORD bits) {
        info.header = {sizeof info.header, width, height, 1, bits, BI_RGB, 0, 0, 0, 0, 0};
        context.dc = GetDC(nullptr);
        context.bitmap = bitmap;
        context.bitmapInfo = reinterpret_cast<BITMAPINFO *>(&info);
        context.strideOrUsage = DIB_RGB_COLORS;
    }
    Filling(const Filling &) = delete;
    Filling &operator=(const Filling &) = delete;
    ~Filling() { ReleaseDC(nullptr, context.dc); }

    [[nodiscard]] Bytes first(std::size_t count) const {
        return {line.begin(), line.begin() + static_cast<std::ptrdiff_t>(count)};
    }
};

const Pixels kTwoLines = {0xFF0000, 0x00FF00, 0x123456, 0xFFFFFF, 0x000000, 0x0000FF};

TEST(FillBitmapLines, ALineIsTheBitmapsRowFromTheTopBlueFirst) {
    const TestBitmap bitmap = screenBitmap(3, 2);
    paint(bitmap.get(), 3, kTwoLines);
    Filling filling(bitmap.get(), 3, 2, 24);
    EXPECT_EQ(DllFillTiffLine(filling.line.data(), 0, &filling.context), 0U);
    EXPECT_EQ(filling.first(9), (Bytes{0, 0, 0xFF, 0, 0xFF, 0, 0x56, 0x34, 0x12}));
    EXPECT_EQ(DllFillTiffLine(filling.line.data(), 1, &filling.context), 0U);
    EXPECT_EQ(filling.first(9), (Bytes{0xFF, 0xFF, 0xFF, 0, 0, 0, 0xFF, 0, 0}));
}

TEST(FillBitmapLines, For24BitsRedComesFirst) {
    const TestBitmap bitmap = screenBitmap(3, 2);
    paint(bitmap.get(), 3, kTwoLines);
    Filling filling(bitmap.get(), 3, 2, 24);
    EXPECT_EQ(DllFillTiffLineBitmap24Bit(filling.line.data(), 0, &filling.context), 0U);
    EXPECT_EQ(filling.first(9), (Bytes{0xFF, 0, 0, 0, 0xFF, 0, 0x12, 0x34, 0x56}));
}

TEST(FillBitmapLines, MonochromeLinesAreComplementedInWholeWords) {
    const TestBitmap bitmap = monochromeBitmap(20, 1);
    Pixels pixels(20, kWhitePixel);
    pixels[0] = pixels[3] = pixels[19] = kBlackPixel;
    paint(bitmap.get(), 20, pixels);
    Filling plain(bitmap.get(), 20, 1, 1);
    EXPECT_EQ(DllFillTiffLine(plain.line.data(), 0, &plain.context), 0U);
    EXPECT_EQ(plain.first(2), (Bytes{0x6F, 0xFF}));
    EXPECT_EQ(plain.line[2] & 0xF0, 0xE0);
    Filling mono(bitmap.get(), 20, 1, 1);
    EXPECT_EQ(DllFillMonoTiffLine(mono.line.data(), 0, &mono.context), 0U);
    EXPECT_EQ(mono.first(2), (Bytes{0x90, 0x00}));
    for (std::size_t i = 2; i < 4; ++i) {
        EXPECT_EQ(mono.line[i], static_cast<BYTE>(~plain.line[i])) << i;
    }
    EXPECT_EQ(mono.line[4], 0xAA) << "20 pixels are two words";
}

TEST(FillBitmapLines, ALineOutsideTheBitmapStaysAsItIs) {
    const TestBitmap bitmap = screenBitmap(3, 2);
    Filling filling(bitmap.get(), 3, 2, 24);
    const Bytes untouched = filling.line;
    for (const DWORD row : {DWORD{2}, DWORD{0x80000000}, DWORD{0xFFFFFFFF}}) {
        EXPECT_EQ(DllFillTiffLine(filling.line.data(), row, &filling.context), 0U);
        EXPECT_EQ(DllFillMonoTiffLine(filling.line.data(), row, &filling.context), 0U);
        EXPECT_EQ(DllFillTiffLineBitmap24Bit(filling.line.data(), row, &filling.context), 0U);
        EXPECT_EQ(filling.line, untouched);
    }
}

TEST(FillBitmapLines, ABitmapThatCannotBeReadLeavesTheLineAsItIs) {
    Filling filling(reinterpret_cast<HBITMAP>(0x1234), 3, 2, 24);
    const Bytes untouched = filling.line;
    EXPECT_EQ(DllFillTiffLine(filling.line.data(), 0, &filling.context), 0U);
    EXPECT_EQ(DllFillMonoTiffLine(filling.line.data(), 0, &filling.context), 0U);
    EXPECT_EQ(DllFillTiffLineBitmap24Bit(filling.line.data(), 0, &filling.context), 0U);
    EXPECT_EQ(filling.line, untouched);
}

TEST(FillBitmapLines, OutsideASaveTheCcittFunctionHasNoBitmap) {
    const TestBitmap bitmap = monochromeBitmap(20, 1);
    CcittLineContext context{GetDC(nullptr), bitmap.get()};
    Bytes line(64, BYTE{0xAA});
    EXPECT_EQ(DllFillCcittLine(line.data(), 0, &context), 0U);
    EXPECT_EQ(line, Bytes(64, BYTE{0xAA}));
    ReleaseDC(nullptr, context.dc);
}

} // namespace
